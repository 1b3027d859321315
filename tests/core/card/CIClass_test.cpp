// The card model: application boundaries (the eight-part text and its errors) and the page
// collection.
#include <gtest/gtest.h>

#include <functional>

#include "base/KestrinError.h"
#include "card/CIClass.h"
#include "card/CardGeometry.h"
#include "support/Records.h"

namespace kestrin {
namespace {

using test::chipOf;

std::vector<int32_t> boundaries(const CIClass& card) {
    std::vector<int32_t> out;
    for (int p = 0; p < card.PagesCount(); ++p) out.push_back(card.Pages().Item(std::to_string(p)).Boundary);
    return out;
}
const std::vector<int32_t> kDefault{18, 18, 18, 18, 18, 18, 18, 18};

// The error number the call raises, 0 when it raises none.
int32_t errorOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const KestrinError& e) {
        return e.number();
    }
    return 0;
}

// Eight parts set every page, the first included, without SetBoundary's range check; other
// counts change nothing; a part that is no number raises a type mismatch (13), one beyond 32
// bits an overflow (6), and no page changes.
TEST(CIClass, SetBoundariesTakesExactlyEightNumbersGetBoundaryHasItsOwnLimits) {
    const std::tuple<const char*, int, std::vector<int32_t>> cases[] = {
        {"1|11|12|13|14|15|16|100", 0, {1, 11, 12, 13, 14, 15, 16, 100}}, {"10|11", 0, kDefault}, {"", 0, kDefault},
        {"1|2|3|4|5|6|7|8|9", 0, kDefault}, {"10|11|x|13|14|15|16|17", 13, kDefault}, {"-3000000000|1|2|3|4|5|6|7", 6, kDefault},
        {"-2147483648|1|2|3|4|5|6|2147483647", 0, {INT32_MIN, 1, 2, 3, 4, 5, 6, INT32_MAX}},
        {"1|2|3|4|5|6|7|2147483648", 6, kDefault}};
    for (const auto& [text, error, want] : cases) {
        CIClass card = chipOf(iBigEightPages);
        EXPECT_EQ(errorOf([&] { card.SetBoundaries(text); }), error) << text;
        EXPECT_EQ(boundaries(card), want) << text;
    }
    for (IClassType type : {iSmallOnePage, iBigOnePage}) {  // one page: the collection's error, the page keeps 0
        CIClass card = chipOf(type);
        EXPECT_EQ(errorOf([&] { card.SetBoundaries("10|11|12|13|14|15|16|17"); }), kErrSubscriptOutOfRange);
        EXPECT_EQ(card.Pages().Item(1).Boundary, 0);
    }
    // GetBoundary's limits; copies are deep.
    CIClass card = chipOf(iBigEightPages);
    // Beyond the page count: -1; at the count, a key that does not exist; no lower bound check.
    EXPECT_EQ(std::tuple(card.GetBoundary(7), card.GetBoundary(9), errorOf([&] { card.GetBoundary(8); }),
                         errorOf([&] { card.GetBoundary(-1); })),
              std::tuple(18, -1, kErrInvalidCall, kErrInvalidCall));
    EXPECT_EQ(std::tuple(CIClass().GetBoundary(0), CIClass().GetBoundary(2)), std::tuple(0, -1));
    CIClass copy = card;
    copy.SetBoundary(2, 30);
    EXPECT_EQ(std::tuple(card.GetBoundary(2), copy.GetBoundary(2)), std::tuple(18, 30));
    EXPECT_EQ(copy.Pages().Item(3).Parent, &copy);
    CIClass assigned = chipOf(iSmallOnePage);  // an assigned card takes everything and owns its pages
    assigned.setUseHIDSection(true);
    assigned = copy;
    assigned.SetBoundary(2, 25);
    EXPECT_EQ(std::tuple(assigned.ChipSize(), assigned.PagesCount(), assigned.UseHIDSection(), assigned.EnableBitwise(),
                         assigned.GetBoundary(2), copy.GetBoundary(2), assigned.Pages().Item(3).Parent),
              std::tuple(copy.ChipSize(), 8, copy.UseHIDSection(), copy.EnableBitwise(), 25, 30, &assigned));
}

TEST(Pages, LookupErrorsAndRemoval) {
    Pages pages;
    pages.Add("a", 0, "ka");
    pages.Add("b", 1);
    pages.Add("c", 2, "kc");
    EXPECT_EQ(std::tuple(pages.Count(), pages.Item("kc").Key, pages.Item(2).Key), std::tuple(3, "c", "b"));
    // Positions 1 to Count, then subscript out of range; an unknown key is an invalid call; a key given twice 457.
    EXPECT_EQ(std::tuple(errorOf([&] { pages.Item(0); }), errorOf([&] { pages.Item(3); }), errorOf([&] { pages.Item(4); }),
                         errorOf([&] { pages.Item("nope"); }), errorOf([&] { pages.Add("d", 3, "ka"); })),
              std::tuple(kErrSubscriptOutOfRange, 0, kErrSubscriptOutOfRange, kErrInvalidCall, 457));
    pages.Remove("ka");
    EXPECT_EQ(pages.Item(1).Key, "b");
    pages.Remove(1);
    EXPECT_EQ(std::tuple(pages.Count(), pages.Item(1).Key), std::tuple(1, "c"));
}

}  // namespace
}  // namespace kestrin
