#include <gtest/gtest.h>

#include <string>

#include "text/UtfConvert.h"

namespace kestrin {
namespace {

struct Utf16Case {
    const char* name;
    std::u16string units;
    std::string utf8;
};

class Utf16ToUtf8 : public ::testing::TestWithParam<Utf16Case> {};

TEST_P(Utf16ToUtf8, ConvertsAndReplacesUnpairedSurrogates)
{
    EXPECT_EQ(utf16ToUtf8(GetParam().units), GetParam().utf8);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Utf16ToUtf8,
    ::testing::Values(Utf16Case{"Empty", u"", ""}, Utf16Case{"Ascii", u"Value", "Value"},
                      Utf16Case{"TwoByte", u"Gr\u00F6\u00DFe", "Gr\xC3\xB6\xC3\x9F" "e"},
                      Utf16Case{"ThreeByte", u"\u65E5\u20AC\uFFFF", "\xE6\x97\xA5\xE2\x82\xAC\xEF\xBF\xBF"},
                      Utf16Case{"Pair", u"a\U0001F600b", "a\xF0\x9F\x98\x80" "b"},
                      Utf16Case{"HighestPair", std::u16string{0xDBFF, 0xDFFF}, "\xF4\x8F\xBF\xBF"},
                      Utf16Case{"LoneHighAtEnd", std::u16string{u'a', 0xD800}, "a\xEF\xBF\xBD"},
                      Utf16Case{"LoneHighBeforeText", std::u16string{0xD83D, u'x'}, "\xEF\xBF\xBDx"},
                      Utf16Case{"LoneLow", std::u16string{u'x', 0xDE00}, "x\xEF\xBF\xBD"},
                      Utf16Case{"LowThenHigh", std::u16string{0xDC00, 0xD800}, "\xEF\xBF\xBD\xEF\xBF\xBD"},
                      Utf16Case{"TwoHighsThenLow", std::u16string{0xD83D, 0xD83D, 0xDE00},
                                "\xEF\xBF\xBD\xF0\x9F\x98\x80"},
                      Utf16Case{"Nul", std::u16string(1, u'\0'), std::string(1, '\0')}),
    [](const auto& p) { return std::string(p.param.name); });

struct Utf16CutCase {
    const char* name;
    std::u16string units;
    std::size_t expectedLength;
};

class CutUtf16 : public ::testing::TestWithParam<Utf16CutCase> {};

TEST_P(CutUtf16, KeepsAtMost255UnitsWithoutSplittingAPair)
{
    const auto& c = GetParam();
    EXPECT_EQ(cutUtf16(c.units), std::u16string_view(c.units).substr(0, c.expectedLength));
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CutUtf16,
    ::testing::Values(Utf16CutCase{"Short", u"abc", 3}, Utf16CutCase{"Exactly255", std::u16string(255, u'x'), 255},
                      Utf16CutCase{"Long", std::u16string(300, u'x'), 255},
                      Utf16CutCase{"PairAcrossTheCut", std::u16string(254, u'x') + u"\U0001F600yz", 254},
                      Utf16CutCase{"PairEndingAtTheCut", std::u16string(253, u'x') + u"\U0001F600yz", 255},
                      Utf16CutCase{"LoneHighAtTheCut", std::u16string(254, u'x') + std::u16string{0xD800, u'y'}, 255}),
    [](const auto& p) { return std::string(p.param.name); });

TEST(CutUtf16Limit, CanBeChosen)
{
    EXPECT_EQ(cutUtf16(u"a\U0001F600", 2), u"a");
    EXPECT_EQ(cutUtf16(u"ab", 0), u"");
}

struct Utf8Case {
    const char* name;
    std::string text;
    bool valid;
};

class IsValidUtf8 : public ::testing::TestWithParam<Utf8Case> {};

TEST_P(IsValidUtf8, AcceptsOnlyWellFormedText)
{
    EXPECT_EQ(isValidUtf8(GetParam().text), GetParam().valid);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, IsValidUtf8,
    ::testing::Values(Utf8Case{"Empty", "", true}, Utf8Case{"Ascii", "Begin Byte", true},
                      Utf8Case{"Mixed", "Gr\xC3\xB6\xC3\x9F" "e \xE6\x97\xA5 \xF0\x9F\x98\x80", true},
                      Utf8Case{"Highest", "\xF4\x8F\xBF\xBF", true}, Utf8Case{"Latin1", "Gr\xF6\xDF" "e", false},
                      Utf8Case{"OverlongTwo", "\xC0\x80", false}, Utf8Case{"OverlongThree", "\xE0\x80\x80", false},
                      Utf8Case{"OverlongFour", "\xF0\x80\x80\x80", false},
                      Utf8Case{"Surrogate", "\xED\xA0\x80", false}, Utf8Case{"AboveUnicode", "\xF4\x90\x80\x80", false},
                      Utf8Case{"CutShort", "ab\xE2\x82", false}, Utf8Case{"StrayTail", "\x80" "a", false},
                      Utf8Case{"LeadF5", "\xF5\x80\x80\x80", false}),
    [](const auto& p) { return std::string(p.param.name); });

struct Utf8CutCase {
    const char* name;
    std::string text;
    std::string expected;
};

class CutUtf8 : public ::testing::TestWithParam<Utf8CutCase> {};

TEST_P(CutUtf8, CountsUtf16UnitsNotBytes)
{
    EXPECT_EQ(cutUtf8(GetParam().text), GetParam().expected);
}

std::string repeated(std::string_view piece, std::size_t count)
{
    std::string out;
    for (std::size_t i = 0; i < count; ++i)
        out += piece;
    return out;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CutUtf8,
    ::testing::Values(Utf8CutCase{"Short", "Page", "Page"},
                      Utf8CutCase{"Ascii300", std::string(300, 'x'), std::string(255, 'x')},
                      Utf8CutCase{"TwoByte300", repeated("\xC3\xA4", 300), repeated("\xC3\xA4", 255)},
                      Utf8CutCase{"ThreeByte300", repeated("\xE2\x82\xAC", 300), repeated("\xE2\x82\xAC", 255)},
                      Utf8CutCase{"PairAcrossTheCut", std::string(254, 'a') + "\xF0\x9F\x98\x80z",
                                  std::string(254, 'a')},
                      Utf8CutCase{"PairEndingAtTheCut", std::string(253, 'a') + "\xF0\x9F\x98\x80z",
                                  std::string(253, 'a') + "\xF0\x9F\x98\x80"}),
    [](const auto& p) { return std::string(p.param.name); });

}  // namespace
}  // namespace kestrin
