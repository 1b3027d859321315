// Malformed and hostile layouts built from the bundled files: nothing crashes, what opens saves
// and opens again to the same items, and what goes beyond the input limits of any file the
// control reads is left out or cut and told to the operator once. (The fuzz targets' replays
// give every reader truncated and random bytes.)
#include <gtest/gtest.h>

#include <algorithm>

#include "persist/InputLimits.h"
#include "persist/LayoutRenderer.h"
#include "support/SavedFiles.h"
#include "text/CatalogRegistry.h"

namespace kestrin {
namespace {

using namespace test;
const std::filesystem::path kExamples = KESTRIN_EXAMPLES;

// Opens bytes as a layout; when they open, the layout saved from them opens to the same items.
void expectOpensSafely(const std::string& bytes, const std::string& what) {
    const auto first = openLayout(bytes);
    if (!first->result.opened) return;
    const auto again = openLayout(renderLayoutFile(first->card, first->records, HostFieldList{}).bytes);
    ASSERT_TRUE(again->result.opened) << what;
    ASSERT_EQ(again->records.size(), first->records.size()) << what;
    for (const ItemRecord& r : first->records)
        ASSERT_NE(std::find(again->records.begin(), again->records.end(), r), again->records.end())
            << what << ": item " << r.name << " lost";
}

const std::string kLayouts[] = {readBytes(kExamples / "layouts/Staff.IIF"), readBytes(kExamples / "layouts/Visitors16K.IIF")};

// Every line of the bundled layouts duplicated, left out, and with each run of digits
// replaced by absurd and negative numbers; every section duplicated and left out.
TEST(BadInput, AbsurdNumbersAndDuplicateOrMissingLines) {
    const char* absurd[] = {"-1", "-32768", "-32769", "32767", "32768", "65536", "2147483647", "2147483648",
                            "-2147483649", "99999999999999999999999", "0x7fffffff", "0b101", "-0", "1e9", ""};
    size_t cases = 0;
    for (const std::string& layout : kLayouts) {
        std::vector<std::string> lines;
        for (size_t start = 0, end; start < layout.size(); start = end + 2)
            lines.push_back(layout.substr(start, (end = layout.find("\r\n", start)) - start));
        const auto at = [&](size_t i) { return lines.begin() + static_cast<std::ptrdiff_t>(i); };
        for (size_t i = 0; i < lines.size(); ++i) {
            const std::string& line = lines[i];
            // lines [from, to) replaced by the given ones
            auto variant = [&](size_t from, size_t to, std::vector<std::string> changed) {
                changed.insert(changed.begin(), lines.begin(), at(from));
                changed.insert(changed.end(), at(to), lines.end());
                expectOpensSafely(crlf(changed), line);
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
            while (end < lines.size() && (lines[end].empty() || lines[end][0] != '[')) ++end;
            variant(lines.size(), lines.size(), {at(i), at(end)});
            variant(i, end, {});
        }
    }
    EXPECT_GT(cases, 2000u);
}

// A layout, a project or a language catalog beyond its size limit is refused with a message.
TEST(BadInput, FilesBeyondTheSizeLimitsAreRefusedWithAMessage) {
    TempDir dir;
    const auto huge = dir / "huge.IIF";
    writeBytes(huge, "[GENERAL]\r\n");
    std::filesystem::resize_file(huge, 100u << 20);  // 100 MiB, sparse
    Opened read;
    EXPECT_FALSE(readLayout(huge, read.card, read.records, read.prompter).opened);
    HostFieldList fields;
    std::vector<std::string> warnings;
    std::string error;
    fields.fetch(huge, &warnings);
    EXPECT_EQ(std::tuple(fields.count(), CatalogRegistry().open(huge, &error)), std::tuple(0, 0));
    ASSERT_TRUE(read.prompter.messages.size() == 1u && warnings.size() == 1u);
    for (const std::string& told : {read.prompter.messages[0].text, warnings[0], error})
        EXPECT_NE(told.find("too large"), std::string::npos) << told;
    const auto o = openLayout(std::string(kMaxLayoutFileBytes + 1, '\n'));
    ASSERT_EQ(std::tuple(o->result.opened, o->prompter.messages.size()), std::tuple(false, 1u));
    EXPECT_EQ(o->prompter.messages[0].text, "The layout is larger than 64 MiB and was not opened.");
    EXPECT_TRUE(openLayout(std::string(kMaxLayoutFileBytes, '\n'))->result.opened);
}

// Values longer than the read buffer arrive cut, counted in characters (the outer quotes do
// not count); the operator is told once, with the first such entry.
TEST(InputLimits, LongValuesAreCutAndTold) {
    const std::string accented = repeated("\xE9", kMaxValueChars);
    const std::string big(8u << 20, 'x');
    const std::string first = "values are longer than 1023 characters and were cut (the first: [SETTINGS] Font)";
    const auto font = [](const std::string& value) { return crlf({"[SETTINGS]", "Font=" + value}); };
    const std::pair<std::string, std::string> cases[] = {  // the layout, what the operator is told ("": nothing)
        {font(std::string(kMaxValueChars, '7')), ""}, {font(std::string(kMaxValueChars + 1, '7')), "1 " + first},
        {font(accented), ""}, {font(accented + "\xE9") + crlf({"[s]", "x=" + big}), "2 " + first},
        {font('"' + std::string(kMaxValueChars, 'q') + '"'), ""},
        {font('"' + std::string(kMaxValueChars + 1, 'q') + '"'), "1 values are longer"},
        {font("1") + font(big), ""},  // a repeated section reads as its first
        {crlf({"[INITCARD]", "1Value=Constant(\"" + big + "\")", "1Place=0,19,0,8"}), "1 values are longer"},
        {crlf({"[ENCODE]", big + "(1)=0,19,0,8,0"}), ""}, {"[" + big + "]\r\nA=1\r\n" + big, ""}};
    for (const auto& [layout, told] : cases) {
        const auto o = openLayout(layout);
        ASSERT_TRUE(o->result.opened);
        ASSERT_EQ(o->prompter.messages.size(), told.empty() ? 0u : 1u) << layout.substr(0, 40);
        const std::string& text = o->prompter.messages.empty() ? told : o->prompter.messages[0].text;
        EXPECT_NE(text.find(told), std::string::npos) << text;
        for (const ItemRecord& r : o->records) EXPECT_LE(r.param1.size(), kMaxValueChars);
    }
    // A value of as many characters as the buffer holds, but more bytes in UTF-8, is kept whole.
    EXPECT_EQ(openLayout(font(accented))->result.settings.at(0).second, repeated("\xC3\xA9", kMaxValueChars));
}

// Items beyond the limit are left out and told; dropped-entry warnings beyond theirs counted.
TEST(InputLimits, ItemsAndWarningsBeyondTheirLimits) {
    for (const int items : {kMaxItems, kMaxItems + 33}) {
        std::string layout = "[CARDDESIGN]\r\nSize=16K\r\nPages=1\r\n[ENCODE]\r\n";
        for (int i = 0; i < items; ++i) layout += "F" + std::to_string(i) + "(1)=0,19,0,1,0\r\n";
        const auto o = openLayout(layout);
        ASSERT_TRUE(o->result.opened);
        EXPECT_EQ(std::tuple(o->records.size(), o->result.dropped.size()),  // a check lists each dropped item
                  std::tuple(kMaxItems, static_cast<size_t>(items - kMaxItems)));
        ASSERT_EQ(o->prompter.messages.size(), items > kMaxItems ? 1u : 0u);
        if (items > kMaxItems) {
            EXPECT_NE(o->prompter.messages[0].text.find("more than 32767 items; 33 were left out"), std::string::npos);
        }
    }
    for (const size_t bad : {kMaxReadWarnings, kMaxReadWarnings + 4000}) {
        std::string layout = "[CARDDESIGN]\r\nSize=2K\r\n[ENCODE]\r\n";
        for (size_t i = 0; i < bad; ++i) layout += "Bad" + std::to_string(i) + "(1)=not numbers\r\n";
        const auto o = openLayout(layout);
        ASSERT_TRUE(o->result.opened);
        ASSERT_EQ(o->result.warnings.size(), bad > kMaxReadWarnings ? kMaxReadWarnings + 1 : bad);
        ASSERT_EQ(o->result.dropped.size(), o->result.warnings.size());  // a check reports the count too
        if (bad > kMaxReadWarnings) {
            EXPECT_EQ(std::tuple(o->result.warnings.back(), o->result.dropped.back().reason),
                      std::tuple("... and 4000 more entries dropped", "... and 4000 more entries dropped"));
        }
        EXPECT_TRUE(o->prompter.messages.empty());
    }
}

}  // namespace
}  // namespace kestrin
