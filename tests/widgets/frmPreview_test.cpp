#include "preview/frmPreview.h"

#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <algorithm>
#include <gtest/gtest.h>
#include <memory>

#include "items/RecordArray.h"
#include "support/Records.h"
#include "text/Translator.h"

namespace kestrin {
namespace {

// A preview of a card of the given type, HID section on, with the given items.
struct Preview {
    CIClass card;
    RecordArray records;
    Translator translator;
    std::unique_ptr<frmPreview> form;
    explicit Preview(IClassType chip, std::vector<ItemRecord> items = {}) {
        card.setChipSize(chip);
        for (const ItemRecord& r : items) records.add(r);
        form = std::make_unique<frmPreview>(card, records, translator, "card.iif", PrintServices{});
    }
    template <class T>
    T* child(const char* name) const { return form->findChild<T*>(name); }
    void click(const char* name) const { child<QPushButton>(name)->click(); }
    QString text(const char* label) const { return child<QLabel>(label)->text(); }
    QString blockNumber(const char* grid) const { return child<QTableWidget>(grid)->item(1, 0)->text(); }
};

struct ViewCase {
    IClassType chip;
    int view;
    const char *title0, *title1, *pageOf;
    int firstBlock0, firstBlock1;
};

class PreviewViews : public ::testing::TestWithParam<ViewCase> {};

TEST_P(PreviewViews, NextReachesTheViewWithItsTitlesAndBlocks) {
    const ViewCase& c = GetParam();
    Preview p(c.chip);
    // Past the view and back; on the last view the extra cmdNext changes nothing, and
    // neither does the extra cmdPrevious on the first.
    for (int i = 0; i < std::min(c.view + 1, 4); ++i) p.click("cmdNext");
    if (c.view < 3) p.click("cmdPrevious");
    if (c.view == 0) p.click("cmdPrevious");
    EXPECT_EQ(p.form->viewIndex(), c.view);
    EXPECT_EQ(p.text("lblPreview0"), c.title0);
    EXPECT_EQ(p.text("lblPreview1"), c.title1);
    EXPECT_EQ(p.text("lblPageOf"), c.pageOf);
    EXPECT_EQ(p.blockNumber("grdPreview0"), QString::number(c.firstBlock0));
    EXPECT_EQ(p.blockNumber("grdPreview1"), QString::number(c.firstBlock1));
    EXPECT_EQ(p.child<QPushButton>("cmdPrevious")->isEnabled(), c.view > 0);
    EXPECT_EQ(p.child<QPushButton>("cmdNext")->isEnabled(), c.view < 3);
}

INSTANTIATE_TEST_SUITE_P(Chips, PreviewViews, ::testing::Values(
    ViewCase{iBigOnePage, 0, "Blocks 0 - 31", "Blocks 32 - 63", "Blocks 0 - 63 of 255", 0, 32},
    ViewCase{iBigOnePage, 1, "Blocks 64 - 95 ", "Blocks 96 - 127", "Blocks 64 - 127 of 255", 64, 96},
    ViewCase{iBigOnePage, 2, "Blocks 128 - 159", "Blocks 160 - 191", "Blocks 128 - 191 of 255", 128, 160},
    ViewCase{iBigOnePage, 3, "Blocks 192 - 223", "Blocks 224 - 255", "Blocks 192 - 255 of 255", 192, 224},
    ViewCase{iBigEightPages, 0, "Page 0", "Page 1", "Pages 0/1 of 7", 0, 0},
    ViewCase{iBigEightPages, 1, "Page 2", "Page 3", "Pages 2/3 of 7", 0, 0},
    ViewCase{iBigEightPages, 2, "Page 4", "Page 5", "Pages 4/5 of 7", 0, 0},
    ViewCase{iBigEightPages, 3, "Page 6", "Page 7", "Pages 6/7 of 7", 0, 0}));

TEST(Preview, SmallCardShowsOneGridTitledCardLayout) {
    Preview p(iSmallOnePage);
    EXPECT_EQ(p.form->windowTitle(), "Preview iClass Layout");
    EXPECT_EQ(p.text("lblPreview0"), "<Card Layout>");
    EXPECT_TRUE(p.child<QTableWidget>("grdPreview1")->isHidden());
    EXPECT_TRUE(p.child<QLabel>("lblPreview1")->isHidden());
    EXPECT_TRUE(p.text("lblPageOf").isEmpty());
    EXPECT_FALSE(p.child<QPushButton>("cmdNext")->isEnabled());
    p.click("cmdNext");
    EXPECT_EQ(p.form->viewIndex(), 0);
    EXPECT_EQ(p.text("lblPreview0"), "<Card Layout>");
}

TEST(Preview, EightPageViewsShowTheirPagesItems) {
    Preview p(iBigEightPages, {test::field("Badge", 5, 8, 0, 1, 0, 0x0000FF)});
    p.click("cmdNext");
    p.click("cmdNext");
    EXPECT_EQ(p.form->viewPageNumbers(), (std::vector<int>{4, 5}));
    EXPECT_EQ(p.child<QTableWidget>("grdPreview1")->item(9, 1)->text(), "Badge");
    EXPECT_EQ(p.child<QTableWidget>("grdPreview1")->item(9, 1)->background().color(), QColor(255, 0, 0));
    EXPECT_EQ(p.child<QTableWidget>("grdPreview0")->item(9, 1)->text(), QString());
}

TEST(Preview, DescribesTheChipShowsEveryCellInAGrabAndOkAccepts) {
    for (auto [chip, description] : {std::pair{iSmallOnePage, "<2 kbit/256 bytes card>"},
                                     {iBigOnePage, "<16 kbit (2 kbyte) card, non-paged>"},
                                     {iBigEightPages, "<16 kbit (2 kbyte) card, paged>"}}) {
        Preview p(chip);
        EXPECT_EQ(p.text("lblChip"), description);
        p.form->show();
        const QImage picture = p.form->grab().toImage();
        for (const char* name : {"grdPreview0", "grdPreview1"}) {
            const QTableWidget* g = p.child<QTableWidget>(name);
            if (g->isHidden()) continue;
            const QRect cell = g->visualItemRect(g->item(32, 0));
            const QPoint corner = g->viewport()->mapTo(p.form.get(), cell.bottomLeft() + QPoint(3, -3));
            EXPECT_EQ(picture.pixelColor(corner * picture.devicePixelRatio()), QColor(255, 255, 0)) << name;
        }
        p.click("cmdOK");
        EXPECT_EQ(p.form->result(), QDialog::Accepted);
    }
}

}  // namespace
}  // namespace kestrin
