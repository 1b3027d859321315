#include <gtest/gtest.h>

#include "rules/NumberChecks.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

struct RangeCase {
    const char* text;
    int32_t textId;  // 0: accepted
};

class InRange : public ::testing::TestWithParam<RangeCase> {};

TEST_P(InRange, AcceptsOnlyNumbersWithinTheBounds) {
    const Translator tr;
    const auto c = GetParam();
    const NumberCheck check = checkNumberInRange(0, 255, c.text, tr);
    EXPECT_EQ(check.ok, c.textId == 0) << c.text;
    EXPECT_EQ(check.textId, c.textId) << c.text;
    if (c.textId == kTextOutOfRange) {
        EXPECT_EQ(check.message, "<Please enter a value between> 0 & 255!");
    }
    if (c.textId == kTextNotANumber) {
        EXPECT_EQ(check.message, "<Please enter a number.>");
    }
}

INSTANTIATE_TEST_SUITE_P(Texts, InRange,
                         ::testing::Values(RangeCase{"0", 0}, RangeCase{"255", 0}, RangeCase{" 7 ", 0},
                                           RangeCase{"05", 0}, RangeCase{"256", kTextOutOfRange},
                                           RangeCase{"-1", kTextOutOfRange}, RangeCase{"", kTextOutOfRange},
                                           RangeCase{"   ", kTextOutOfRange},
                                           RangeCase{"1234567890123456789012345678901234567890", kTextOutOfRange},
                                           RangeCase{"abc", kTextNotANumber}, RangeCase{"1a", kTextNotANumber},
                                           RangeCase{"1 2", kTextNotANumber}, RangeCase{"-", kTextNotANumber}));

struct EqualsCase {
    const char* text;
    int32_t textId;
};

class Equals : public ::testing::TestWithParam<EqualsCase> {};

TEST_P(Equals, IsTrueWhenTheValueIsWrong) {
    const Translator tr;
    RecordingPrompter prompter;
    const auto c = GetParam();
    const bool wrong = CheckNumberEquals(8, c.text, "", prompter, tr);
    EXPECT_EQ(wrong, c.textId != 0);
    ASSERT_EQ(prompter.messages.size(), c.textId != 0 ? 1u : 0u);
    if (c.textId == kTextNotExactly) {
        EXPECT_EQ(prompter.messages[0].text, "<The value must be exactly> 8!");
    }
    if (c.textId != 0) {
        EXPECT_EQ(prompter.messages[0].title, "Kestrin");
    }
}

INSTANTIATE_TEST_SUITE_P(Texts, Equals,
                         ::testing::Values(EqualsCase{"8", 0}, EqualsCase{" 8", 0}, EqualsCase{"9", kTextNotExactly},
                                           EqualsCase{"", kTextNotExactly}, EqualsCase{"x", kTextNotANumber}));

TEST(NumberChecks, RangeCheckShowsItsMessageWithTheGivenTitle) {
    const Translator tr;
    RecordingPrompter prompter;
    EXPECT_TRUE(CheckNumberInRange(5, 31, "31", "Props", prompter, tr));
    EXPECT_FALSE(CheckNumberInRange(5, 31, "4", "Props", prompter, tr));
    ASSERT_EQ(prompter.messages.size(), 1u);
    EXPECT_EQ(prompter.messages[0].title, "Props");
    EXPECT_EQ(prompter.messages[0].icon, Icon::Exclamation);
    EXPECT_EQ(prompter.messages[0].text, "<Please enter a value between> 5 & 31!");
}

}  // namespace
