// What each view of the preview shows and the texts of its printed sheets.
#include "items/PreviewViews.h"

#include <gtest/gtest.h>

#include "card/CIClass.h"
#include "text/Translator.h"

namespace kestrin::test {
namespace {

struct ViewCase {
    IClassType chip;
    int view;
    std::vector<std::string> titles;
    std::string position;
    std::vector<int32_t> pageNumbers, parts;  // parts: each grid page's VirtualPage
    std::string pagesHeading;
};

class PreviewViews : public ::testing::TestWithParam<ViewCase> {};

TEST_P(PreviewViews, TitlesPositionPagesAndHeading) {
    const ViewCase& c = GetParam();
    CIClass card;
    card.setChipSize(c.chip);
    const Translator tr;
    const PreviewView v = previewView(card, c.view, tr);
    EXPECT_EQ(v.index, c.view);
    EXPECT_EQ(v.titles, c.titles);
    EXPECT_EQ(v.position, c.position);
    EXPECT_EQ(v.pageNumbers, c.pageNumbers);
    ASSERT_EQ(v.pages.size(), c.parts.size());
    for (size_t i = 0; i < v.pages.size(); ++i) EXPECT_EQ(v.pages[i].VirtualPage, c.parts[i]) << i;
    EXPECT_EQ(v.hasPrevious, c.view > 0);
    EXPECT_EQ(v.hasNext, c.view < previewViewCount(c.chip) - 1);
    EXPECT_EQ(printPagesHeading(card, v, tr), c.pagesHeading);
}

INSTANTIATE_TEST_SUITE_P(Chips, PreviewViews, ::testing::Values(
    ViewCase{iSmallOnePage, 0, {"<Card Layout>"}, "", {0}, {0}, ""},
    ViewCase{iBigOnePage, 0, {"Blocks 0 - 31", "Blocks 32 - 63"}, "Blocks 0 - 63 of 255", {0}, {0, 1}, ""},
    ViewCase{iBigOnePage, 1, {"Blocks 64 - 95 ", "Blocks 96 - 127"}, "Blocks 64 - 127 of 255", {0}, {2, 3}, ""},
    ViewCase{iBigOnePage, 3, {"Blocks 192 - 223", "Blocks 224 - 255"}, "Blocks 192 - 255 of 255", {0}, {6, 7}, ""},
    ViewCase{iBigEightPages, 0, {"Page 0", "Page 1"}, "Pages 0/1 of 7", {0, 1}, {0, 0}, "<PAGES> 0 <and> 1"},
    ViewCase{iBigEightPages, 3, {"Page 6", "Page 7"}, "Pages 6/7 of 7", {6, 7}, {0, 0}, "<PAGES> 6 <and> 7"}));

TEST(PreviewViews, HeaderLineNamesFileDateAndTime) {
    EXPECT_EQ(printHeaderLine(Translator(), "C:\\Cards\\Staff.IIF", "23.11.2026", "18:20"),
              "<Filename>: C:\\Cards\\Staff.IIF; <Date>: 23.11.2026; <Time>: 18:20");
}

}  // namespace
}  // namespace kestrin::test
