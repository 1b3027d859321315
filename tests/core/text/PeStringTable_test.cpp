// Language libraries: the string tables of 32- and 64-bit DLL images, read as the host's
// string loader reads them, and hostile images refused with a reason that names the fault.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <optional>

#include "support/TestSupport.h"
#include "text/PeStringTable.h"
#include "text/UtfConvert.h"

namespace kestrin::test {
namespace {

// Small PE images built in memory, so that the reader can be fed exact, and hostile, resource
// tables that no resource compiler would write.
constexpr uint32_t Subdirectory = 0x80000000u;
constexpr uint32_t ResourceRva = 0x1000;        // where peImage() maps the resource section
constexpr std::size_t ResourceSection = 0x200;  // and where it lies in the file
constexpr std::size_t OptionalHeader = 0x58;
constexpr std::size_t rvaCountAt(bool plus) { return OptionalHeader + (plus ? 108 : 92); }
constexpr std::size_t resourceDirectoryAt(bool plus) { return rvaCountAt(plus) + 20; }
constexpr std::size_t sectionTableAt(bool plus) { return OptionalHeader + (plus ? 240 : 224); }

// Little-endian writer.
struct ByteWriter {
    std::string s;
    ByteWriter& u16(uint32_t v) { s.append(2, '\0'); return put(s.size() - 2, v, 2); }
    ByteWriter& u32(uint32_t v) { s.append(4, '\0'); return put(s.size() - 4, v, 4); }
    ByteWriter& bytes(std::string_view b) { s += b; return *this; }
    ByteWriter& zerosTo(std::size_t size) { s.resize(std::max(size, s.size()), '\0'); return *this; }
    ByteWriter& directory(uint32_t named, uint32_t ids) { return u32(0).u32(0).u32(0).u16(named).u16(ids); }
    ByteWriter& entry(uint32_t name, uint32_t target) { return u32(name).u32(target); }
    ByteWriter& dataEntry(uint32_t rva, uint32_t size) { return u32(rva).u32(size).u32(0).u32(0); }
    // A string block: 16 slots, each a length and its UTF-16LE units.
    ByteWriter& block(const std::vector<std::u16string>& slots) {
        for (std::size_t i = 0; i < 16; ++i) {
            u16(i < slots.size() ? static_cast<uint32_t>(slots[i].size()) : 0);
            for (const char16_t unit : i < slots.size() ? slots[i] : u"") u16(unit);
        }
        return *this;
    }
    // Overwrites width bytes at offset at.
    ByteWriter& put(std::size_t at, uint32_t v, int width = 4) {
        for (int i = 0; i < width; ++i) s[at + i] = static_cast<char>(v >> 8 * i & 0xFF);
        return *this;
    }
};

// A DLL image with one section that holds rsrc at ResourceRva, named as the resource table
// by the data directory.
inline ByteWriter peImage(std::string_view rsrc, bool plus = false) {
    const auto size = static_cast<uint32_t>(rsrc.size());
    const uint32_t rawSize = (size + 0x1FF) / 0x200 * 0x200;
    ByteWriter image;
    image.bytes("MZ").zerosTo(0x3C).u32(0x40).bytes(std::string_view("PE\0\0", 4));
    image.u16(plus ? 0x8664 : 0x14C).u16(1).u32(0).u32(0).u32(0);
    image.u16(static_cast<uint32_t>(sectionTableAt(plus) - OptionalHeader)).u16(0x2102).u16(plus ? 0x20B : 0x10B);
    image.zerosTo(rvaCountAt(plus)).u32(16).zerosTo(resourceDirectoryAt(plus)).u32(ResourceRva).u32(size);
    image.zerosTo(sectionTableAt(plus)).bytes(".rsrc").zerosTo(sectionTableAt(plus) + 8);
    image.u32(size).u32(ResourceRva).u32(rawSize).u32(ResourceSection);
    image.zerosTo(ResourceSection).bytes(rsrc).zerosTo(ResourceSection + rawSize);
    return image;
}

std::unique_ptr<PeStringTable> parsed(std::string_view image) {
    std::string error;
    auto table = PeStringTable::parse(image, &error);
    EXPECT_NE(table, nullptr) << error;
    return table;
}

// PE32 (false) and PE32+ (true): the DLLs built from strings.rc and images built here.
class PeStringTableFormat : public ::testing::TestWithParam<bool> {};

TEST_P(PeStringTableFormat, AnswersLikeTheHostsStringLoader) {
    const auto table =
        parsed(readBytes(std::filesystem::path(KESTRIN_FIXTURES) / "lang" / (GetParam() ? "strings64.dll" : "strings32.dll")));
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->format(), GetParam() ? PeStringTable::Format::Pe32Plus : PeStringTable::Format::Pe32);
    EXPECT_EQ(table->size(), 14u);  // every non-empty text of strings.rc
    // Slot 5 holds 300 characters, cut to 255; 6 is empty, 7 never written; at 8 the cut would
    // split an emoji; at 10 it counts UTF-16 units, not bytes. Block 2 does not exist. 32: German
    // and English give English; 33 only in German is not chosen; 48: German, English, neutral give
    // neutral; 64: French only, the first language. Only the low 16 bits of an id count.
    const std::pair<int32_t, std::optional<std::string>> cases[] = {
        {0, "Zero"}, {1, "Gr\xC3\xB6\xC3\x9F" "e: 10 \xC3\x97 20 mm"},
        {2, "\xCE\x95\xCE\xBB\xCE\xBB\xCE\xB7\xCE\xBD\xCE\xB9\xCE\xBA\xCE\xAC \xD0\xB8 "
             "\xD1\x80\xD1\x83\xD1\x81\xD1\x81\xD0\xBA\xD0\xB8\xD0\xB9"},
        {3, "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xE3\x81\xAE\xE3\x83\x86\xE3\x82\xAD\xE3\x82\xB9\xE3\x83\x88"},
        {4, "Emoji \xF0\x9F\x98\x80 outside the BMP"}, {5, repeated("0123456789", 30).substr(0, 255)}, {6, std::nullopt},
        {7, std::nullopt}, {8, std::string(254, 'a')}, {9, "Two lines\nsecond line"}, {10, repeated("\xC3\xA4", 255)},
        {15, "Fifteen"}, {16, std::nullopt}, {32, "English"}, {33, std::nullopt}, {48, "Neutral"}, {64, "Fran\xC3\xA7" "ais"},
        {5000, std::nullopt}, {65535, "Last id"}, {-1, "Last id"}, {65536, "Zero"}, {65536 * 7 + 32, "English"},
        {INT32_MIN, "Zero"}};
    for (const auto& [id, text] : cases) EXPECT_EQ(table->lookup(id), text) << "id " << id;
}

INSTANTIATE_TEST_SUITE_P(Formats, PeStringTableFormat, ::testing::Bool(),
                         [](const auto& p) { return std::string(p.param ? "Pe32Plus" : "Pe32"); });

// A text of exactly 255 units fits and comes back whole, even when it ends in a high surrogate
// and what follows it in memory is a low one; a longer text is cut before the pair it would split.
// The last code point below U+10000 takes three bytes of UTF-8, the first and the last beyond it four.
TEST(Utf16Text, IsCutAtTheLimitAndConvertedToUtf8) {
    const std::u16string units = std::u16string(254, u'a') + u"\U0001F600";
    EXPECT_EQ(cutUtf16(std::u16string_view(units).substr(0, 255)).size(), 255u);
    EXPECT_EQ(cutUtf16(units).size(), 254u);
    EXPECT_EQ(utf16ToUtf8(u"\uFFFF\U00010000\U0010FFFF"), "\xEF\xBF\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF");
}

std::string withTable(const ByteWriter& rsrc) { return peImage(rsrc.s).s; }
// A resource table whose one type entry (string tables) points at target.
ByteWriter stringType(uint32_t target) { return ByteWriter().directory(0, 1).entry(6, target); }
// A resource table down to one language entry; what it points at follows from offset 0x48.
ByteWriter oneLanguage(uint32_t target) {
    return stringType(Subdirectory | 0x18).directory(0, 1).entry(1, Subdirectory | 0x30).directory(0, 1).entry(0x0409, target);
}
// A well-formed image: one string block, "ok" in English.
ByteWriter soundImage() { return peImage(oneLanguage(0x48).dataEntry(ResourceRva + 0x58, 36).block({u"ok"}).s); }
std::string patched(std::size_t at, uint32_t value, int width = 4) { return soundImage().put(at, value, width).s; }
// 4096 blocks that all share one language directory of 65535 entries.
std::string hugeTree() {
    ByteWriter rsrc = stringType(Subdirectory | 0x18).directory(0, 4096);
    const uint32_t languages = 0x18 + 16 + 4096 * 8, data = languages + 16 + 0xFFFF * 8;
    for (uint32_t block = 1; block <= 4096; ++block) rsrc.entry(block, Subdirectory | languages);
    rsrc.directory(0, 0xFFFF);
    for (uint32_t i = 0; i < 0xFFFF; ++i) rsrc.entry(0x0407, data);
    return withTable(rsrc.dataEntry(ResourceRva + data + 16, 32).block({}));
}

TEST(PeStringTableHostile, IsRefusedWithItsReason) {
    const std::string sound = soundImage().s;
    const std::pair<std::string, const char*> cases[] = {
        {"", "no MZ signature"}, {patched(0, 'Z' | 'M' << 8, 2), "no MZ signature"},
        {std::string("MZ\x90\0", 4), "DOS header is incomplete"}, {patched(0x3C, 0xFFFFFFF0), "points past the end"},
        // cut right after the DOS header, right after the COFF header
        {sound.substr(0, 0x40), "points past the end"}, {sound.substr(0, 0x58), "optional header is incomplete"},
        {patched(0x40, 'N' | 'E' << 8, 2), "16-bit Windows (NE)"}, {patched(0x40, 'L' | 'E' << 8, 2), "no PE signature"},
        {sound.substr(0, 0x4A), "COFF header is incomplete"}, {hugeTree(), "too many directory entries"},
        {sound.substr(0, OptionalHeader + 50), "optional header is incomplete"},
        {patched(0x54, 1, 2), "optional header is incomplete"},  // shorter than its magic
        {patched(OptionalHeader, 0x107, 2), "magic 0x107"}, {patched(0x46, 0xFFFF, 2), "section table is incomplete"},
        {patched(resourceDirectoryAt(false), 0x9000), "resource table lies outside every section"},
        {patched(0x46, 0, 2), "resource table lies outside every section"},  // no sections; the header still follows
        {patched(sectionTableAt(false) + 16, 0), "lies outside its section's data"},
        {patched(sectionTableAt(false) + 20, 0x7FFFFFFF), "ends past the end of the file"},
        {patched(ResourceSection + 14, 0xFFFF, 2), "entries run past the end"},
        {withTable(stringType(Subdirectory)), "deeper than three levels"},
        {withTable(stringType(0x18).dataEntry(ResourceRva, 4)), "string-table entry is not a directory"},
        {withTable(stringType(Subdirectory | 0x18).directory(0, 1).entry(1, 0x30).dataEntry(ResourceRva, 4)),
         "string block 1 is not a directory"},
        {withTable(stringType(Subdirectory | 0x7FFFFFF0)), "directory lies past the end"},
        {withTable(oneLanguage(0x7FFFFFF0)), "data entry lies past the end"},
        {withTable(oneLanguage(0x48).dataEntry(0x80000000, 34)), "data of string block 1 lies outside every section"},
        {withTable(oneLanguage(0x48).dataEntry(ResourceRva, 0x10000)), "data of string block 1 runs past its section's data"},
        // The section maps its first byte only; then a block reaching 2 bytes into the bytes after the section's data.
        {patched(sectionTableAt(false) + 8, 1), "data of string block 1 lies outside every section"},
        {withTable(oneLanguage(0x48).dataEntry(ResourceRva + 0x58, 0x1AA).block({u"ok"})) + std::string(0x200, '\0'),
         "data of string block 1 runs past its section's data"},
        // The block at 0x58: a text of 300 units in 8 bytes; then 4 of its 16 slots in 10 bytes.
        {withTable(oneLanguage(0x48).dataEntry(ResourceRva + 0x58, 8).u16(300).u32(0).u16(0)), "a text runs past the block's end"},
        {withTable(oneLanguage(0x48).dataEntry(ResourceRva + 0x58, 10).u16(1).u16('a').u32(0).u16(0)), "ends before its 16 texts"}};
    for (const auto& [image, reason] : cases) {
        std::string error;
        EXPECT_EQ(PeStringTable::parse(image, &error), nullptr) << reason;
        EXPECT_NE(error.find(reason), std::string::npos) << "expected " << reason << ", error was: " << error;
    }
    // An optional header of its magic alone names no resource table: the image has no texts.
    const auto magicOnly = parsed(patched(0x54, 2, 2));
    EXPECT_TRUE(magicOnly && magicOnly->size() == 0u);
}

}  // namespace
}  // namespace kestrin::test
