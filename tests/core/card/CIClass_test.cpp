#include <gtest/gtest.h>

#include "base/KestrinError.h"
#include "card/CIClass.h"
#include "card/CardGeometry.h"

using namespace kestrin;

namespace {

struct PageExpectation {
    IClassType type;
    int32_t pagesCount;
    int32_t pageSize;
    int32_t page0Boundary;
};

class ChipBuild : public ::testing::TestWithParam<PageExpectation> {};

TEST_P(ChipBuild, BuildsPagesWithTheirFixedAreas) {
    const auto e = GetParam();
    CIClass card;
    card.setUseHIDSection(false);
    card.setEnableBitwise(true);
    card.setChipSize(e.type);
    EXPECT_EQ(card.PagesCount(), e.pagesCount);
    ASSERT_EQ(card.Pages().Count(), e.pagesCount);
    // The builder always switches the HID section on and bit-wise items off.
    EXPECT_TRUE(card.UseHIDSection());
    EXPECT_FALSE(card.EnableBitwise());
    for (int32_t n = 0; n < e.pagesCount; ++n) {
        const CPage& p = card.Pages().Item(n + 1);
        EXPECT_EQ(p.Key, std::to_string(n));
        EXPECT_EQ(p.PageNumber, n);
        EXPECT_EQ(p.Parent, &card);
        EXPECT_EQ(p.PageSize, e.pageSize);
        EXPECT_TRUE(p.HasHeader);
        EXPECT_EQ(p.HasHIDSpace, n == 0);
        EXPECT_EQ(p.BeginFreeSpace, n == 0 ? 19 : 6);
        EXPECT_EQ(p.Boundary, n == 0 ? e.page0Boundary : 18);
    }
}

INSTANTIATE_TEST_SUITE_P(AllChips, ChipBuild,
                         ::testing::Values(PageExpectation{iSmallOnePage, 1, 256, 0},
                                           PageExpectation{iBigOnePage, 1, 2048, 0},
                                           PageExpectation{iBigEightPages, 8, 256, 18}));

TEST(CIClass, HidSwitchMovesOnlyTheFirstPagesFreeSpace) {
    CIClass card;
    card.setChipSize(iBigEightPages);
    card.setUseHIDSection(false);
    EXPECT_EQ(card.Pages().Item("0").BeginFreeSpace, 6);
    for (int n = 1; n < 8; ++n) EXPECT_EQ(card.Pages().Item(std::to_string(n)).BeginFreeSpace, 6);
    card.setUseHIDSection(true);
    EXPECT_EQ(card.Pages().Item("0").BeginFreeSpace, 19);
    EXPECT_EQ(card.Pages().Item("3").BeginFreeSpace, 6);
}

struct SetBoundaryCase {
    int32_t page, boundary;
    bool changes;
};

class SetBoundaryRange : public ::testing::TestWithParam<SetBoundaryCase> {};

TEST_P(SetBoundaryRange, AcceptsPagesOneToSevenAndBlocksSixTo32) {
    const auto c = GetParam();
    CIClass card;
    card.setChipSize(iBigEightPages);
    card.SetBoundary(c.page, c.boundary);
    for (int p = 0; p < 8; ++p) {
        const int expected = (c.changes && p == c.page) ? c.boundary : 18;
        EXPECT_EQ(card.Pages().Item(std::to_string(p)).Boundary, expected) << "page " << p;
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, SetBoundaryRange,
                         ::testing::Values(SetBoundaryCase{3, 32, true}, SetBoundaryCase{3, 6, true},
                                           SetBoundaryCase{3, 33, false}, SetBoundaryCase{3, 5, false},
                                           SetBoundaryCase{0, 10, false}, SetBoundaryCase{7, 20, true},
                                           SetBoundaryCase{8, 20, false}, SetBoundaryCase{-1, 20, false}));

TEST(CIClass, SetBoundaryIsIgnoredOnOnePageCards) {
    CIClass card;
    card.setChipSize(iBigOnePage);
    card.SetBoundary(1, 20);
    EXPECT_EQ(card.Pages().Item(1).Boundary, 0);
}

// Eight parts set every page, the first included, and are taken without the range check of
// SetBoundary.
TEST(CIClass, SetBoundariesWithEightPartsSetsEveryPageIncludingTheFirst) {
    CIClass card;
    card.setChipSize(iBigEightPages);
    card.SetBoundaries("1|11|12|13|14|15|16|100");
    for (int p = 0; p < 8; ++p)
        EXPECT_EQ(card.Pages().Item(std::to_string(p)).Boundary, p == 0 ? 1 : p == 7 ? 100 : 10 + p);
}

TEST(CIClass, SetBoundariesWithOtherCountsOrEmptyTextChangesNothing) {
    for (const char* text : {"10|11", "", "1|2|3|4|5|6|7|8|9"}) {
        CIClass card;
        card.setChipSize(iBigEightPages);
        card.SetBoundaries(text);
        for (int p = 0; p < 8; ++p) EXPECT_EQ(card.GetBoundary(p), 18) << text;
    }
}

TEST(CIClass, SetBoundariesOnOnePageCardRaisesSubscriptErrorAndKeepsZero) {
    for (IClassType type : {iSmallOnePage, iBigOnePage}) {
        CIClass card;
        card.setChipSize(type);
        try {
            card.SetBoundaries("10|11|12|13|14|15|16|17");
            FAIL() << "expected the collection's error";
        } catch (const KestrinError& e) {
            EXPECT_EQ(e.number(), kErrSubscriptOutOfRange);
        }
        EXPECT_EQ(card.Pages().Item(1).Boundary, 0);
    }
}

// A part that is no number raises a type mismatch (13), one beyond 32 bits an overflow (6);
// either way no page changes.
TEST(CIClass, SetBoundariesRejectsWhatIsNoBoundaryWithoutChangingPages) {
    for (const auto& [text, error] : {std::pair{"10|11|x|13|14|15|16|17", 13}, {"-3000000000|1|2|3|4|5|6|7", 6},
                                      {"1|2|3|4|5|6|7|3000000000", 6}}) {
        CIClass card;
        card.setChipSize(iBigEightPages);
        try {
            card.SetBoundaries(text);
            ADD_FAILURE() << text;
        } catch (const KestrinError& e) {
            EXPECT_EQ(e.number(), error) << text;
        }
        EXPECT_EQ(card.GetBoundary(0), 18);
    }
}

TEST(CIClass, GetBoundaryLimits) {
    CIClass card;
    card.setChipSize(iBigEightPages);
    EXPECT_EQ(card.GetBoundary(9), -1);                // beyond the page count
    EXPECT_THROW(card.GetBoundary(8), KestrinError);   // equal to the count: a key that does not exist
    EXPECT_THROW(card.GetBoundary(-1), KestrinError);  // no lower bound check
    CIClass small;
    EXPECT_EQ(small.GetBoundary(0), 0);
    EXPECT_EQ(small.GetBoundary(2), -1);
}

TEST(CIClass, HidOffThenChipSizeSwitchesHidBackOn) {
    CIClass card;
    card.setUseHIDSection(false);
    card.setChipSize(iBigOnePage);
    EXPECT_TRUE(card.UseHIDSection());
    EXPECT_EQ(card.Pages().Item("0").BeginFreeSpace, 19);
}

TEST(CIClass, UnknownChipTypeBuildsNoPages) {
    CIClass card;
    card.setChipSize(static_cast<IClassType>(7));
    EXPECT_EQ(card.Pages().Count(), 0);
    EXPECT_EQ(card.GetBoundary(0), -1);
    card.SetBoundaries("1|2|3|4|5|6|7|8");  // nothing to set, nothing raised
}

TEST(CIClass, CopyIsDeepAndReparented) {
    CIClass card;
    card.setChipSize(iBigEightPages);
    CIClass copy = card;
    copy.SetBoundary(2, 30);
    EXPECT_EQ(card.GetBoundary(2), 18);
    EXPECT_EQ(copy.GetBoundary(2), 30);
    EXPECT_EQ(copy.Pages().Item(3).Parent, &copy);
}

TEST(Pages, LookupErrorsAndRemoval) {
    Pages pages;
    pages.Add("a", 0, "ka");
    pages.Add("b", 1);
    pages.Add("c", 2, "kc");
    EXPECT_EQ(pages.Count(), 3);
    EXPECT_EQ(pages.Item("kc").Key, "c");
    EXPECT_EQ(pages.Item(2).Key, "b");
    EXPECT_THROW(pages.Item(0), KestrinError);
    EXPECT_THROW(pages.Item(4), KestrinError);
    EXPECT_THROW(pages.Item("nope"), KestrinError);
    EXPECT_THROW(pages.Add("d", 3, "ka"), KestrinError);
    pages.Remove("ka");
    EXPECT_EQ(pages.Item(1).Key, "b");
    pages.Remove(1);
    EXPECT_EQ(pages.Count(), 1);
    EXPECT_EQ(pages.Item(1).Key, "c");
}

}  // namespace
