#include <gtest/gtest.h>

#include <climits>
#include <optional>
#include <string>
#include <vector>

#include "text/TextCatalog.h"

namespace kestrin {
namespace {

struct Expected {
    int32_t id;
    std::optional<std::string> text;
};

struct FormatCase {
    const char* name;
    std::string content;
    std::vector<Expected> expected;
};

void PrintTo(const FormatCase& c, std::ostream* out) { *out << c.name; }

class TextCatalogFormat : public ::testing::TestWithParam<FormatCase> {};

TEST_P(TextCatalogFormat, GivesTheTextsAsWritten)
{
    std::string error;
    const auto catalog = TextCatalog::parse(GetParam().content, &error);
    ASSERT_NE(catalog, nullptr) << error;
    EXPECT_TRUE(catalog->warnings().empty());
    for (const Expected& e : GetParam().expected)
        EXPECT_EQ(catalog->lookup(e.id), e.text) << "id " << e.id;
}

std::string repeated(std::string_view piece, std::size_t count)
{
    std::string out;
    for (std::size_t i = 0; i < count; ++i)
        out += piece;
    return out;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, TextCatalogFormat,
    ::testing::Values(
        FormatCase{"Plain", "3106=Value\n3107=Step\n", {{3106, "Value"}, {3107, "Step"}, {3108, std::nullopt}}},
        FormatCase{"NoFinalNewline", "3106=Value", {{3106, "Value"}}},
        FormatCase{"CrLf", "3106=Value\r\n3107=Step\r\n", {{3106, "Value"}, {3107, "Step"}}},
        FormatCase{"OnlyOneCrRemoved", "1=a\r\r\n", {{1, "a\r"}}},
        FormatCase{"Bom", "\xEF\xBB\xBF" "3106=Value\n", {{3106, "Value"}}},
        FormatCase{"BomOnlyAtStart", "1=\xEF\xBB\xBFx\n", {{1, "\xEF\xBB\xBFx"}}},
        FormatCase{"CommentsAndBlanks", "# header\n\n   \n\t# indented comment\n1=one\n#2=two\n",
                   {{1, "one"}, {2, std::nullopt}}},
        FormatCase{"BlanksAroundId", "  \t42 \t=text\n", {{42, "text"}}},
        FormatCase{"TextKeptAsWritten", "1= leading and trailing  \n2=a = b # not a comment\n3=#hash\n",
                   {{1, " leading and trailing  "}, {2, "a = b # not a comment"}, {3, "#hash"}}},
        FormatCase{"Escapes", "1=Line one\\nLine two\n2=a\\tb\\rc\n3=C:\\\\layouts\n",
                   {{1, "Line one\nLine two"}, {2, "a\tb\rc"}, {3, "C:\\layouts"}}},
        FormatCase{"OtherBackslashesStay", "1=C:\\layouts\\old\n2=ends\\\n3=\\\\n\n",
                   {{1, "C:\\layouts\\old"}, {2, "ends\\"}, {3, "\\n"}}},
        FormatCase{"LaterLineWins", "1=first\n1=second\n", {{1, "second"}}},
        FormatCase{"LaterEmptyLineWins", "1=first\n1=\n", {{1, std::nullopt}}},
        FormatCase{"EmptyTextIsNone", "1=\n", {{1, std::nullopt}}},
        FormatCase{"LeadingZeros", "007=agent\n", {{7, "agent"}}},
        FormatCase{"IdRangeEnds", "0=zero\n65535=last\n", {{0, "zero"}, {65535, "last"}}},
        FormatCase{"LowSixteenBitsCount", "0=zero\n65535=last\n32=x\n",
                   {{-1, "last"}, {65536, "zero"}, {65536 * 3 + 32, "x"}, {INT32_MIN, "zero"}}},
        FormatCase{"NonAscii", "1=Gr\xC3\xB6\xC3\x9F" "e \xE6\x97\xA5 \xF0\x9F\x98\x80\n",
                   {{1, "Gr\xC3\xB6\xC3\x9F" "e \xE6\x97\xA5 \xF0\x9F\x98\x80"}}},
        FormatCase{"CutAt255Units", "1=" + std::string(300, 'x') + "\n2=" + repeated("\xC3\xA4", 300) + "\n",
                   {{1, std::string(255, 'x')}, {2, repeated("\xC3\xA4", 255)}}},
        FormatCase{"CutNeverSplitsAPair", "1=" + std::string(254, 'a') + "\xF0\x9F\x98\x80\n",
                   {{1, std::string(254, 'a')}}},
        FormatCase{"CutCountsEscapesOnce", "1=" + repeated("\\n", 300) + "\n", {{1, std::string(255, '\n')}}},
        FormatCase{"Empty", "", {{0, std::nullopt}}}),
    [](const auto& p) { return std::string(p.param.name); });

TEST(TextCatalogWarnings, ListsEachMalformedLineAndKeepsTheRest)
{
    const std::string content =
        "# the catalog\n"      // 1
        "1=one\n"              // 2
        "no equals sign\n"     // 3
        "=no id\n"             // 4
        "12a=letters\n"        // 5
        "-1=negative\n"        // 6
        "65536=too big\n"      // 7
        "+5=plus\n"            // 8
        "1 2=two numbers\n"    // 9
        "3=Gr\xF6\xDF" "e\n"  // 10: Windows-1252, not UTF-8
        "4=four\r\n";          // 11
    std::string error;
    const auto catalog = TextCatalog::parse(content, &error);
    ASSERT_NE(catalog, nullptr) << error;

    std::vector<std::size_t> lines;
    for (const auto& warning : catalog->warnings()) {
        lines.push_back(warning.line);
        EXPECT_FALSE(warning.message.empty());
    }
    EXPECT_EQ(lines, (std::vector<std::size_t>{3, 4, 5, 6, 7, 8, 9, 10}));
    EXPECT_EQ(catalog->size(), 2u);
    EXPECT_EQ(catalog->lookup(1), "one");
    EXPECT_EQ(catalog->lookup(3), std::nullopt);
    EXPECT_EQ(catalog->lookup(4), "four");
    EXPECT_NE(catalog->warnings().at(0).message.find("'='"), std::string::npos);
    EXPECT_NE(catalog->warnings().at(2).message.find("\"12a\""), std::string::npos);
    EXPECT_NE(catalog->warnings().at(7).message.find("UTF-8"), std::string::npos);
}

TEST(TextCatalogWarnings, CountLinesAfterABom)
{
    const auto catalog = TextCatalog::parse("\xEF\xBB\xBF" "junk\n1=one\njunk\n");
    ASSERT_NE(catalog, nullptr);
    ASSERT_EQ(catalog->warnings().size(), 2u);
    EXPECT_EQ(catalog->warnings()[0].line, 1u);
    EXPECT_EQ(catalog->warnings()[1].line, 3u);
}

struct RefusedCase {
    const char* name;
    std::string content;
    const char* reason;
};

void PrintTo(const RefusedCase& c, std::ostream* out) { *out << c.name; }

class TextCatalogRefused : public ::testing::TestWithParam<RefusedCase> {};

TEST_P(TextCatalogRefused, SaysWhy)
{
    std::string error;
    EXPECT_EQ(TextCatalog::parse(GetParam().content, &error), nullptr);
    EXPECT_NE(error.find(GetParam().reason), std::string::npos) << error;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, TextCatalogRefused,
    ::testing::Values(RefusedCase{"Utf16Le", std::string("\xFF\xFE" "1\0=\0a\0", 8), "UTF-16"},
                      RefusedCase{"Utf16Be", std::string("\xFE\xFF\0" "1\0=\0a", 8), "UTF-16"},
                      RefusedCase{"Binary", std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16), "NUL"}),
    [](const auto& p) { return std::string(p.param.name); });

}  // namespace
}  // namespace kestrin
