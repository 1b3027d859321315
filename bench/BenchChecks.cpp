#include "BenchChecks.h"

#include <fstream>
#include <iterator>
#include <string_view>
#include <system_error>
#include <utility>

#include "persist/LayoutReader.h"
#include "persist/LayoutSaver.h"
#include "persist/ProfileDocument.h"
#include "persist/SafeFile.h"

namespace kestrin::bench {

namespace fs = std::filesystem;

namespace {

std::string describe(const ItemRecord& r) {
    return "\"" + r.name + "\" at page " + std::to_string(r.page) + ", block " + std::to_string(r.block) + ", byte " +
           std::to_string(r.beginByte) + ", bit " + std::to_string(r.beginBit) + ", " + std::to_string(r.numBytes) +
           " bytes, " + std::to_string(r.numBits) + " bits, type " + std::to_string(r.fieldType) + ", colour " +
           std::to_string(r.color);
}

}  // namespace

std::string compareRecords(const RecordArray& expected, const RecordArray& actual) {
    if (expected.size() != actual.size())
        return "expected " + std::to_string(expected.size()) + " items, got " + std::to_string(actual.size());
    for (int32_t i = 0; i < expected.size(); ++i)
        if (!(expected[i] == actual[i]))
            return "item " + std::to_string(i) + " came back different: expected " + describe(expected[i]) + ", got " +
                   describe(actual[i]);
    return {};
}

std::string compareCards(const CIClass& expected, const CIClass& actual) {
    if (expected.ChipSize() != actual.ChipSize()) return "the chip type changed";
    if (expected.UseHIDSection() != actual.UseHIDSection()) return "the HID switch changed";
    if (expected.EnableBitwise() != actual.EnableBitwise()) return "the bit-wise switch changed";
    if (expected.PagesCount() != actual.PagesCount()) return "the page count changed";
    for (int32_t p = 0; p < expected.PagesCount(); ++p) {
        const CPage* a = expected.page(p);
        const CPage* b = actual.page(p);
        if (!a || !b || a->Boundary != b->Boundary || a->BeginFreeSpace != b->BeginFreeSpace)
            return "page " + std::to_string(p) + " changed";
    }
    return {};
}

std::string checkChipEncodeBytes(const std::string& bytes, const BenchLayout& layout) {
    const ProfileDocument doc = ProfileDocument::parse(bytes);
    const int32_t count = doc.getInt("Track1", "FieldCount", -1);
    if (count != layout.hostFieldCount)
        return "the chip encode file lists " + std::to_string(count) + " fields, expected " +
               std::to_string(layout.hostFieldCount);
    const auto& fields = layout.fields.fields();
    for (int32_t n = 1; n <= count; ++n) {
        const std::string section = std::to_string(n) + "Field";
        const std::string data = doc.getString(section, "Data", "");
        if (data != fields[static_cast<size_t>(n - 1)].name)
            return "chip encode entry " + section + " is \"" + data + "\", expected \"" +
                   fields[static_cast<size_t>(n - 1)].name + "\"";
    }
    return {};
}

std::string checkLayoutBytes(const std::string& bytes, const BenchLayout& layout) {
    const ProfileDocument doc = ProfileDocument::parse(bytes);
    int32_t bits = 0;
    for (const ItemRecord& r : layout.records) bits += r.isBit ? 1 : 0;
    const int32_t bytesItems = layout.records.size() - bits;
    const std::pair<std::string_view, int32_t> expected[] = {{"ENCODE", bytesItems},    {"ITEMCOLOR", bytesItems},
                                                             {"BITENCODE", bits},        {"BITITEMCOLOR", bits},
                                                             {"FIELDTYPE", layout.records.size()}};
    for (const auto& [section, count] : expected) {
        const auto found = static_cast<int32_t>(doc.keys(section).size());
        if (found != count)
            return "the layout file holds " + std::to_string(found) + " entries in [" + std::string(section) +
                   "], expected " + std::to_string(count);
    }
    return {};
}

std::string checkSavedFiles(const fs::path& layoutFile, const BenchLayout& layout, bool expectBackup) {
    std::error_code ec;
    const fs::path encodeFile = chipEncodePathFor(layoutFile);
    if (!fs::is_regular_file(layoutFile, ec)) return "the layout file was not written";
    if (!fs::is_regular_file(encodeFile, ec)) return "the chip encode file was not written";
    if (expectBackup && !fs::is_regular_file(backupPathFor(layoutFile), ec)) return "the backup was not written";
    for (const auto& entry : fs::directory_iterator(layoutFile.parent_path(), ec))
        if (entry.path().extension() == ".tmp") return "a staged file was left behind: " + entry.path().string();

    std::ifstream in(encodeFile, std::ios::binary);
    const std::string encodeBytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    if (!in) return "the chip encode file could not be read";
    if (std::string why = checkChipEncodeBytes(encodeBytes, layout); !why.empty()) return why;

    SilentPrompter prompter;
    CIClass card;
    RecordArray records;
    const LayoutReadResult read = readLayout(layoutFile, card, records, prompter, &layout.fields);
    if (!read.opened) return "the saved layout does not open: " + read.message;
    if (!read.warnings.empty()) return "the saved layout opens with warnings: " + read.warnings.front();
    if (std::string why = compareCards(layout.card, card); !why.empty()) return why;
    return compareRecords(layout.records, records);
}

}  // namespace kestrin::bench
