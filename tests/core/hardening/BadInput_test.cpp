// Malformed and hostile input of every kind the control reads, built from the bundled files:
// nothing crashes, what opens saves and opens again to the same items, and what goes beyond
// the input limits is left out or cut and told to the operator once.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "persist/InputLimits.h"
#include "persist/LayoutReader.h"
#include "persist/LayoutRenderer.h"
#include "support/TestSupport.h"
#include "text/CatalogRegistry.h"
#include "text/PeStringTable.h"
#include "text/TextCatalog.h"

namespace kestrin {
namespace {

using test::crlf;
using test::readBytes;
using test::RecordingPrompter;

const std::filesystem::path kExamples = KESTRIN_EXAMPLES;
const std::filesystem::path kFixtures = KESTRIN_FIXTURES;

struct Opened {
    LayoutReadResult result;
    CIClass card;
    RecordArray records;
    RecordingPrompter prompter;
};

std::unique_ptr<Opened> open(const std::string& bytes) {
    auto o = std::make_unique<Opened>();
    o->result = readLayoutBytes(bytes, o->card, o->records, o->prompter);
    return o;
}

// Opens bytes as a layout; when they open, the layout saved from them opens to the same items.
void expectOpensSafely(const std::string& bytes, const std::string& what) {
    const auto first = open(bytes);
    if (!first->result.opened) return;
    const auto again = open(renderLayoutFile(first->card, first->records, HostFieldList{}).bytes);
    ASSERT_TRUE(again->result.opened) << what;
    ASSERT_EQ(again->records.size(), first->records.size()) << what;
    for (const ItemRecord& r : first->records)
        ASSERT_NE(std::find(again->records.begin(), again->records.end(), r), again->records.end())
            << what << ": item " << r.name << " lost";
}

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> out;
    for (size_t start = 0, end; start < text.size(); start = end + 2) {
        end = std::min(text.find("\r\n", start), text.size());
        out.push_back(text.substr(start, end - start));
    }
    return out;
}

std::string joined(const std::vector<std::string>& lines) {
    std::string out;
    for (const auto& l : lines) out += l + "\r\n";
    return out;
}

const std::vector<std::string> kSampleLayouts = {readBytes(kExamples / "layouts/Staff.IIF"),
                                                 readBytes(kExamples / "layouts/Visitors16K.IIF")};

TEST(BadInput, TruncatedFilesOfEveryKind) {
    for (const std::string& layout : kSampleLayouts)
        for (size_t n = 0; n < layout.size(); ++n) expectOpensSafely(layout.substr(0, n), "prefix");
    const std::string project = readBytes(kExamples / "project/Sample.ini");
    for (size_t n = 0; n < project.size(); ++n) {
        HostFieldList list;
        list.fetchFromBytes(project.substr(0, n));
        EXPECT_LE(list.count(), 8);  // its NUMCOLUMNS; a cut TagField lets the tag column in
    }
    for (const char* dll : {"strings32.dll", "strings64.dll"}) {
        const std::string image = readBytes(kFixtures / "lang" / dll);
        for (size_t n = 0; n < image.size(); ++n) {
            std::string error;
            EXPECT_TRUE(PeStringTable::parse(std::string_view(image).substr(0, n), &error) || !error.empty());
        }
    }
    const std::string catalog = readBytes(kExamples / "lang/kestrin-en.txt");
    for (size_t n = 0; n < catalog.size(); ++n) (void)TextCatalog::parse(std::string_view(catalog).substr(0, n));
}

TEST(BadInput, RandomBinaryBytes) {
    std::mt19937 rng(20261121);
    for (int i = 0; i < 500; ++i) {
        std::string bytes(rng() % 4096, '\0');
        for (char& c : bytes) c = static_cast<char>(rng());
        if (i % 2) bytes.replace(0, std::min<size_t>(bytes.size(), 2), "MZ");
        expectOpensSafely(bytes, "binary " + std::to_string(i));
        HostFieldList list;
        list.fetchFromBytes(bytes);
        std::string error;
        EXPECT_TRUE(PeStringTable::parse(bytes, &error) || !error.empty());
        (void)TextCatalog::parse(bytes, &error);
    }
}

// Every line of the bundled layouts duplicated, left out, and with each run of digits
// replaced by absurd and negative numbers; every section duplicated and left out.
TEST(BadInput, AbsurdNumbersAndDuplicateOrMissingLines) {
    const char* absurd[] = {"-1", "-32768", "-32769", "32767", "32768", "65536", "2147483647", "2147483648",
                            "-2147483649", "99999999999999999999999", "0x7fffffff", "0b101", "-0", "1e9", ""};
    size_t cases = 0;
    for (const std::string& layout : kSampleLayouts) {
        const std::vector<std::string> original = linesOf(layout);
        for (size_t i = 0; i < original.size(); ++i) {
            const std::string& line = original[i];
            auto variant = [&](size_t from, size_t to, std::vector<std::string> replacement) {
                std::vector<std::string> changed = original;
                changed.erase(changed.begin() + static_cast<std::ptrdiff_t>(from), changed.begin() + static_cast<std::ptrdiff_t>(to));
                changed.insert(changed.begin() + static_cast<std::ptrdiff_t>(from), replacement.begin(), replacement.end());
                expectOpensSafely(joined(changed), line);
                ++cases;
            };
            variant(i, i + 1, {line, line});
            variant(i, i + 1, {});
            for (size_t start = line.find_first_of("0123456789"); start != std::string::npos;) {
                const size_t end = std::min(line.find_first_not_of("0123456789", start), line.size());
                for (const char* value : absurd) variant(i, i + 1, {line.substr(0, start) + value + line.substr(end)});
                start = line.find_first_of("0123456789", end);
            }
            if (line.empty() || line[0] != '[') continue;
            size_t end = i + 1;
            while (end < original.size() && (original[end].empty() || original[end][0] != '[')) ++end;
            std::vector<std::string> section(original.begin() + static_cast<std::ptrdiff_t>(i),
                                             original.begin() + static_cast<std::ptrdiff_t>(end));
            variant(original.size(), original.size(), section);
            variant(i, end, {});
        }
    }
    EXPECT_GT(cases, 2000u);
}

TEST(BadInput, LanguageLibrariesWithBrokenResourceOffsets) {
    const uint32_t values[] = {0u, 1u, 0x7fffffffu, 0xffffffffu, 0x10000u, 0xfffffff0u};
    size_t refused = 0;
    for (const char* dll : {"strings32.dll", "strings64.dll", "standard.dll", "custom.dll"}) {
        const std::string image = readBytes(kFixtures / "lang" / dll);
        // Every aligned 32-bit word of the image (headers, directories, offsets, sizes) broken in turn.
        for (size_t at = 0; at + 4 <= image.size(); at += 4)
            for (uint32_t v : values) {
                std::string broken = image;
                for (int b = 0; b < 4; ++b) broken[at + static_cast<size_t>(b)] = static_cast<char>(v >> (8 * b));
                std::string error;
                if (!PeStringTable::parse(broken, &error)) {
                    EXPECT_FALSE(error.empty());
                    ++refused;
                }
            }
    }
    EXPECT_GT(refused, 0u);
}

TEST(BadInput, FilesBeyondTheSizeLimitsAreRefusedWithAMessage) {
    test::TempDir dir;
    const auto huge = dir / "huge.IIF";
    test::writeBytes(huge, "[GENERAL]\r\n");
    std::filesystem::resize_file(huge, 100u << 20);  // 100 MiB, sparse
    RecordingPrompter prompter;
    CIClass card;
    RecordArray records;
    EXPECT_FALSE(readLayout(huge, card, records, prompter).opened);
    ASSERT_EQ(prompter.messages.size(), 1u);
    EXPECT_NE(prompter.messages[0].text.find("too large"), std::string::npos);

    HostFieldList fields;
    std::vector<std::string> warnings;
    fields.fetch(huge, &warnings);
    EXPECT_EQ(fields.count(), 0);
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_NE(warnings[0].find("too large"), std::string::npos);

    CatalogRegistry registry;
    std::string error;
    EXPECT_EQ(registry.open(huge, &error), 0);
    EXPECT_NE(error.find("too large"), std::string::npos);

    const auto o = open(std::string(kMaxLayoutFileBytes + 1, '\n'));
    EXPECT_FALSE(o->result.opened);
    ASSERT_EQ(o->prompter.messages.size(), 1u);
    EXPECT_EQ(o->prompter.messages[0].text, "The layout is larger than 64 MiB and was not opened.");
    EXPECT_TRUE(open(std::string(kMaxLayoutFileBytes, '\n'))->result.opened);
}

// Values longer than the read buffer arrive cut, counted in characters (the outer quotes do
// not count); the operator is told once, with the first such entry.
TEST(InputLimits, LongValuesAreCutAndTold) {
    std::string accented;
    for (size_t i = 0; i < kMaxValueChars; ++i) accented += "\xE9";
    const std::string big(8u << 20, 'x');
    const struct {
        std::string layout;
        const char* told;  // nullptr: nothing
    } cases[] = {
        {crlf({"[SETTINGS]", "Font=" + std::string(kMaxValueChars, '7')}), nullptr},
        {crlf({"[SETTINGS]", "Font=" + std::string(kMaxValueChars + 1, '7')}), "1 values are longer than 1023 characters and were cut (the first: [SETTINGS] Font)"},
        {crlf({"[SETTINGS]", "Font=" + accented}), nullptr},
        {crlf({"[SETTINGS]", "Font=" + accented + "\xE9", "[s]", "x=" + big}), "2 values are longer than 1023 characters and were cut (the first: [SETTINGS] Font)"},
        {crlf({"[SETTINGS]", "Font=\"" + std::string(kMaxValueChars, 'q') + "\""}), nullptr},
        {crlf({"[SETTINGS]", "Font=\"" + std::string(kMaxValueChars + 1, 'q') + "\""}), "1 values are longer"},
        {crlf({"[SETTINGS]", "Font=1", "[SETTINGS]", "Font=" + big}), nullptr},  // a repeated section reads as its first
        {crlf({"[INITCARD]", "1Value=Constant(\"" + big + "\")", "1Place=0,19,0,8"}), "1 values are longer"},
        {crlf({"[ENCODE]", big + "(1)=0,19,0,8,0"}), nullptr},
        {"[" + big + "]\r\nA=1\r\n" + big, nullptr},
    };
    for (const auto& c : cases) {
        const auto o = open(c.layout);
        ASSERT_TRUE(o->result.opened);
        ASSERT_EQ(o->prompter.messages.size(), c.told ? 1u : 0u) << c.layout.substr(0, 40);
        if (c.told) {
            EXPECT_NE(o->prompter.messages[0].text.find(c.told), std::string::npos) << o->prompter.messages[0].text;
        }
        for (const ItemRecord& r : o->records) EXPECT_LE(r.param1.size(), kMaxValueChars);
    }
}

// Items beyond the limit are left out and told; dropped-entry warnings beyond theirs counted.
TEST(InputLimits, ItemsAndWarningsBeyondTheirLimits) {
    for (const int items : {kMaxItems, kMaxItems + 33}) {
        std::string layout = "[CARDDESIGN]\r\nSize=16K\r\nPages=1\r\n[ENCODE]\r\n";
        for (int i = 0; i < items; ++i) layout += "F" + std::to_string(i) + "(1)=0,19,0,1,0\r\n";
        const auto o = open(layout);
        ASSERT_TRUE(o->result.opened);
        EXPECT_EQ(o->records.size(), kMaxItems);
        EXPECT_EQ(o->result.dropped.size(), static_cast<size_t>(items - kMaxItems));  // a check lists each
        ASSERT_EQ(o->prompter.messages.size(), items > kMaxItems ? 1u : 0u);
        if (items > kMaxItems) {
            EXPECT_NE(o->prompter.messages[0].text.find("more than 32767 items; 33 were left out"), std::string::npos);
        }
    }
    for (const size_t bad : {kMaxReadWarnings, kMaxReadWarnings + 4000}) {
        std::string layout = "[CARDDESIGN]\r\nSize=2K\r\n[ENCODE]\r\n";
        for (size_t i = 0; i < bad; ++i) layout += "Bad" + std::to_string(i) + "(1)=not numbers\r\n";
        const auto o = open(layout);
        ASSERT_TRUE(o->result.opened);
        ASSERT_EQ(o->result.warnings.size(), bad > kMaxReadWarnings ? kMaxReadWarnings + 1 : bad);
        ASSERT_EQ(o->result.dropped.size(), o->result.warnings.size());  // a check reports the count too
        if (bad > kMaxReadWarnings) {
            EXPECT_EQ(o->result.warnings.back(), "... and 4000 more entries dropped");
            EXPECT_EQ(o->result.dropped.back().reason, o->result.warnings.back());
        }
        EXPECT_TRUE(o->prompter.messages.empty());
    }
}

}  // namespace
}  // namespace kestrin
