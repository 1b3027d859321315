#include "preview/PagePainter.h"

#include <QHeaderView>
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

TEST(PagePainter, GridShowsThePageMapCellByCellAndReusesItsCells) {
    CIClass card;
    card.setChipSize(iBigEightPages);
    RecordArray records;
    records.add(test::field("Badge", 1, 10, 2, 3, 0, 0x00C080FF));
    std::unique_ptr<QTableWidget> g(createPageGrid(nullptr, "grdTest"));
    for (int page : {2, 1}) {  // the second paint reuses the cells of the first
        paintPage(*g, *card.page(page), records);
        const MapGrid map = pageMap(*card.page(page), records);
        ASSERT_EQ(g->rowCount(), map.rows());
        for (int row = 0; row < map.rows(); ++row)
            for (int column = 0; column < map.columns(); ++column) {
                SCOPED_TRACE(testing::Message() << page << ": " << row << "," << column);
                const QTableWidgetItem* cell = g->item(row, column);
                EXPECT_EQ(cell->text().toStdString(), map.textAt(row, column));
                EXPECT_EQ(cell->textAlignment(), int(Qt::AlignCenter));
                EXPECT_EQ(cell->background().color(), memoryMapColor(map.at(row, column).background));
                EXPECT_EQ(cell->foreground().color(), memoryMapColor(map.at(row, column).foreground));
                EXPECT_EQ(g->columnSpan(row, column), map.columnSpan(row, column));
            }
    }
    EXPECT_EQ(g->item(11, 4)->background().color(), QColor(255, 128, 192));
}

}  // namespace
}  // namespace kestrin
