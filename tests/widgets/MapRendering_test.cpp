#include <gtest/gtest.h>

#include <QImage>
#include <QTableWidget>

#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "preview/frmPreview.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

// A spot inside a cell, away from its centred text.
QColor pixelOf(const QImage& image, const QTableWidget& grid, int row, int column) {
    const QRect cell = grid.visualRect(grid.model()->index(row, column)).translated(grid.viewport()->pos());
    return image.pixelColor(cell.left() + 2, cell.top() + 2);
}

struct RenderCase {
    IClassType chip;
    int gridIndex;
    int row;
    int column;
    QColor expected;
};

class Rendered : public ::testing::TestWithParam<RenderCase> {};

TEST_P(Rendered, ShowsTheAreaColoursInTheSavedPicture) {
    const auto& c = GetParam();
    CIClass card;
    card.setChipSize(c.chip);
    RecordArray records;
    records.add(field("Item", 0, 20, 0, 8, 0, 0x00C080FF));  // RGB 255,128,192
    const Translator tr;
    frmPreview preview(card, records, tr, "L.IIF", PrintServices{});
    preview.adjustSize();
    QTableWidget& grid = *preview.grid(c.gridIndex);
    TempDir dir;
    const QString file = QString::fromStdString((dir / "grid.png").string());
    ASSERT_TRUE(grid.grab().save(file));
    const QImage image(file);
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(pixelOf(image, grid, c.row, c.column), c.expected)
        << "chip " << c.chip << " row " << c.row << " column " << c.column;
}

const QColor kGreen(0, 192, 0), kBlue(0, 0, 255), kYellow(255, 255, 0), kWhite(255, 255, 255);
const QColor kLightGrey(235, 235, 235), kDarkGrey(215, 215, 215), kItem(255, 128, 192);

INSTANTIATE_TEST_SUITE_P(
    Chips, Rendered,
    ::testing::Values(RenderCase{iSmallOnePage, 0, 1, 3, kGreen}, RenderCase{iSmallOnePage, 0, 10, 3, kBlue},
                      RenderCase{iSmallOnePage, 0, 20, 0, kYellow}, RenderCase{iSmallOnePage, 0, 22, 4, kWhite},
                      RenderCase{iSmallOnePage, 0, 21, 1, kItem}, RenderCase{iBigOnePage, 0, 6, 8, kGreen},
                      RenderCase{iBigOnePage, 1, 1, 1, kWhite}, RenderCase{iBigOnePage, 1, 1, 0, kYellow},
                      RenderCase{iBigEightPages, 0, 19, 2, kBlue}, RenderCase{iBigEightPages, 0, 21, 2, kItem},
                      RenderCase{iBigEightPages, 1, 19, 2, kLightGrey}, RenderCase{iBigEightPages, 1, 20, 2, kDarkGrey},
                      RenderCase{iBigEightPages, 1, 7, 0, kYellow}));

}  // namespace
