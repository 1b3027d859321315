#include "BitMapView.h"

#include <QHeaderView>
#include <QTableWidget>
#include <algorithm>
#include <vector>

#include "card/CPage.h"
#include "card/CardGeometry.h"
#include "items/ItemSpan.h"
#include "items/RecordArray.h"
#include "preview/PagePainter.h"

namespace kestrin {

namespace {

constexpr int kBitColumns = static_cast<int>(PageAddress::BitsPerBlock);
constexpr int kBitCellWidth = 13;
constexpr int kBlockColumnWidth = 34;
constexpr int kRowHeight = 20;
const QColor kBitHeaderColor(0xC0, 0xE0, 0xC0);
const QColor kByteEdgeColor(0xF4, 0xF4, 0xF4);

QTableWidgetItem* cell(const QString& text, const QColor& background) {
    auto* item = new QTableWidgetItem(text);
    item->setTextAlignment(Qt::AlignCenter);
    item->setBackground(background);
    item->setFlags(Qt::ItemIsEnabled);
    return item;
}

}  // namespace

QTableWidget* createBitGrid(QWidget* parent, const QString& objectName) {
    auto* grid = new QTableWidget(parent);
    grid->setObjectName(objectName);
    grid->setColumnCount(kBitColumns + 1);
    grid->horizontalHeader()->hide();
    grid->verticalHeader()->hide();
    grid->horizontalHeader()->setMinimumSectionSize(kBitCellWidth);
    grid->verticalHeader()->setMinimumSectionSize(kRowHeight);
    grid->verticalHeader()->setDefaultSectionSize(kRowHeight);
    grid->setColumnWidth(0, kBlockColumnWidth);
    for (int c = 1; c <= kBitColumns; ++c) grid->setColumnWidth(c, kBitCellWidth);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionMode(QAbstractItemView::NoSelection);
    grid->setWordWrap(false);
    QFont small = grid->font();
    small.setPointSizeF(small.pointSizeF() * 0.8);
    grid->setFont(small);
    return grid;
}

int bitGridRow(const CPage& page, int block) {
    return 1 + block - page.BeginFreeSpace;
}

void paintBitPage(QTableWidget& grid, const CPage& page, const RecordArray& records) {
    grid.clearSpans();
    grid.clearContents();
    const int firstBlock = page.BeginFreeSpace;
    const int blocks = std::max(0, page.blockCount() - firstBlock);
    grid.setRowCount(blocks + 1);

    // Header: the byte numbers over the first bit of each byte; the bit numbers as tooltips.
    grid.setItem(0, 0, cell(QString(), kBitHeaderColor));
    for (int byte = 0; byte < kBytesPerBlock; ++byte) {
        for (int bit = 0; bit < kBitsPerByte; ++bit) {
            QTableWidgetItem* h = cell(bit == 0 ? QString::number(byte) : QString(), kBitHeaderColor);
            h->setToolTip(QStringLiteral("%1.%2").arg(byte).arg(bit));
            grid.setItem(0, bitGridColumn(byte, bit), h);
        }
        grid.setSpan(0, bitGridColumn(byte, 0), 1, kBitsPerByte);
    }

    // Free bits: white, with a light shade on every other byte so bytes stay readable.
    for (int b = 0; b < blocks; ++b) {
        const int row = b + 1;
        grid.setItem(row, 0, cell(QString::number(firstBlock + b), memoryMapColor(kBlockNumberColor)));
        for (int c = 1; c <= kBitColumns; ++c) {
            const bool shaded = ((c - 1) / kBitsPerByte) % 2 == 1;
            QTableWidgetItem* free = cell(QString(), shaded ? kByteEdgeColor : memoryMapColor(kFreeByteColor));
            free->setData(Qt::UserRole, QString());
            grid.setItem(row, c, free);
        }
    }

    // Items of this page, bit by bit; each block's run of one item becomes one named cell.
    for (const ItemRecord& r : records) {
        if (r.isDbUpdate || r.page != page.PageNumber) continue;
        const BitSpan span = itemSpan(r);
        const QString name = QString::fromStdString(r.name);
        const QColor colour = memoryMapColor(r.color);
        int runRow = -1, runColumn = 0, runLength = 0;
        auto closeRun = [&] {
            if (runRow < 0) return;
            grid.item(runRow, runColumn)->setText(name);
            if (runLength > 1) grid.setSpan(runRow, runColumn, 1, runLength);
            runRow = -1;
        };
        for (int64_t bit = std::max(span.first, PageAddress::ofBlock(firstBlock)).bit(); bit <= span.lastBit(); ++bit) {
            const PageAddress at = PageAddress::ofBit(bit);
            const int row = static_cast<int>(at.block()) - firstBlock + 1;
            if (row >= grid.rowCount()) break;
            const int column = bitGridColumn(static_cast<int>(at.byteInBlock()), static_cast<int>(at.bitInByte()));
            QTableWidgetItem* owned = grid.item(row, column);
            owned->setBackground(colour);
            owned->setData(Qt::UserRole, name);
            owned->setToolTip(QStringLiteral("%1 (%2.%3)").arg(name).arg(at.byteInBlock()).arg(at.bitInByte()));
            if (row != runRow) {
                closeRun();
                runRow = row, runColumn = column, runLength = 0;
            }
            ++runLength;
        }
        closeRun();
    }
}

}  // namespace kestrin
