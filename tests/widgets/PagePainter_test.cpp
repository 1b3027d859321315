#include "preview/PagePainter.h"

#include <QHeaderView>
#include <QImage>
#include <QScrollBar>
#include <QTableWidget>
#include <gtest/gtest.h>
#include <memory>

#include "card/CIClass.h"
#include "items/PageMap.h"
#include "items/RecordArray.h"
#include "support/Records.h"

namespace kestrin {
namespace {

// The grid shows the page map cell by cell, in the rendered picture as well.
TEST(PagePainter, GridShowsThePageMapAndReusesItsCells) {
    CIClass card;
    card.setChipSize(iBigEightPages);
    RecordArray records;
    records.add(test::field("Badge", 1, 10, 2, 3, 0, 0x00C080FF));  // RGB 255,128,192
    std::unique_ptr<QTableWidget> g(createPageGrid(nullptr, "grdTest"));
    paintPage(*g, *card.page(1), records);
    fitPageGrid(*g);
    const MapGrid map = pageMap(*card.page(1), records);
    ASSERT_EQ(g->rowCount(), map.rows());
    for (int row = 0; row < map.rows(); ++row)
        for (int column = 0; column < map.columns(); ++column) {
            SCOPED_TRACE(testing::Message() << row << "," << column);
            const QTableWidgetItem* cell = g->item(row, column);
            EXPECT_EQ(cell->text().toStdString(), map.textAt(row, column));
            EXPECT_EQ(cell->background().color(), memoryMapColor(map.at(row, column).background));
            EXPECT_EQ(cell->foreground().color(), memoryMapColor(map.at(row, column).foreground));
            EXPECT_EQ(g->columnSpan(row, column), map.columnSpan(row, column));
        }
    const QImage picture = g->grab().toImage();
    for (auto [row, column, rgb] : {std::tuple{1, 3, QColor(0, 192, 0)}, {11, 1, QColor(235, 235, 235)},
                                    {11, 4, QColor(255, 128, 192)}, {20, 2, QColor(215, 215, 215)},
                                    {7, 0, QColor(255, 255, 0)}}) {
        const QRect cell = g->visualRect(g->model()->index(row, column)).translated(g->viewport()->pos());
        EXPECT_EQ(picture.pixelColor(cell.topLeft() + QPoint(2, 2)), rgb) << row << "," << column;
    }

    QTableWidgetItem* cell = g->item(11, 4);
    paintPage(*g, *card.page(2), records);
    EXPECT_EQ(g->item(11, 4), cell) << "cells are reused while the row count stays";
    EXPECT_EQ(g->item(11, 4)->text(), QString());
    EXPECT_EQ(g->columnSpan(11, 3), 1);
}

TEST(PagePainter, GridHasCentredCellsOf400TwipsAndFitsWithoutScrolling) {
    CIClass card;
    card.setChipSize(iBigOnePage);
    for (bool whole : {false, true}) {
        std::unique_ptr<QTableWidget> g(createPageGrid(nullptr, "grdTest"));
        EXPECT_TRUE(g->horizontalHeader()->isHidden() && g->verticalHeader()->isHidden());
        paintPage(*g, *card.page(0), RecordArray(), whole);
        fitPageGrid(*g);
        g->show();
        ASSERT_EQ(g->rowCount(), whole ? 257 : 33);
        // 1440 twips an inch, the fraction cut: 26 pixels at 96 DPI.
        for (int column = 0; column < 9; ++column) EXPECT_EQ(g->columnWidth(column), 400 * g->logicalDpiX() / 1440);
        EXPECT_EQ(g->item(g->rowCount() - 1, 8)->textAlignment(), int(Qt::AlignCenter));
        EXPECT_EQ(g->verticalScrollBar()->maximum(), 0);
        EXPECT_EQ(g->horizontalScrollBar()->maximum(), 0);
    }
}

}  // namespace
}  // namespace kestrin
