#include "BitMapView.h"

#include <QHeaderView>
#include <QTableWidget>

#include "preview/PagePainter.h"

namespace kestrin {

namespace {

constexpr int kBitCellWidth = 13;
constexpr int kBlockColumnWidth = 34;
constexpr int kRowHeight = 20;

}  // namespace

QTableWidget* createBitGrid(QWidget* parent, const QString& objectName) {
    auto* grid = new QTableWidget(parent);
    grid->setObjectName(objectName);
    grid->setColumnCount(kBitMapColumns);
    grid->horizontalHeader()->hide();
    grid->verticalHeader()->hide();
    grid->horizontalHeader()->setMinimumSectionSize(kBitCellWidth);
    grid->verticalHeader()->setMinimumSectionSize(kRowHeight);
    grid->verticalHeader()->setDefaultSectionSize(kRowHeight);
    grid->setColumnWidth(0, kBlockColumnWidth);
    for (int c = 1; c < kBitMapColumns; ++c) grid->setColumnWidth(c, kBitCellWidth);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionMode(QAbstractItemView::NoSelection);
    grid->setWordWrap(false);
    QFont small = grid->font();
    small.setPointSizeF(small.pointSizeF() * 0.8);
    grid->setFont(small);
    return grid;
}

void paintBitPage(QTableWidget& grid, const CPage& page, const RecordArray& records, const PlaceMark* mark) {
    const MapGrid map = bitMap(page, records, mark);
    showMapGrid(grid, map);
    for (int32_t row = 0; row < map.rows(); ++row) {
        for (int32_t column = 0; column < map.columns(); ++column) {
            const MapCell& cell = map.at(row, column);
            QTableWidgetItem* item = grid.item(row, column);
            item->setFlags(Qt::ItemIsEnabled);
            item->setToolTip(QString::fromStdString(map.text(cell.tip)));
            if (row > 0 && column > 0) item->setData(Qt::UserRole, QString::fromStdString(map.text(cell.owner)));
        }
    }
}

}  // namespace kestrin
