#include "PagePainter.h"

#include <QBrush>
#include <QHeaderView>
#include <QTableWidget>
#include <QTableWidgetItem>
#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "card/CIClass.h"
#include "card/CPage.h"
#include "card/CardGeometry.h"
#include "items/ItemSpan.h"
#include "items/RecordArray.h"

namespace kestrin {

namespace {

constexpr int kColumns = 1 + kBytesPerBlock;  // block number, then bytes 0 to 7
constexpr int32_t kGridBlocks = 32;           // blocks a grid shows unless the whole page is asked for
constexpr int kTwipsPerInch = 1440;
constexpr int kColumnTwips = 400;
constexpr int kRowTwips = 240;
// Row 0 and the block numbers of fixed-area rows, so that yellow marks only the blocks items may use.
constexpr int32_t kFrameColor = 0xF0F0F0;
constexpr int32_t kTextColor = 0x000000;
constexpr int32_t kHidTextColor = 0xFFFFFF;  // black text would be hard to read on pure blue

int twipsToPixels(int twips, int dpi) {
    return (twips * dpi + kTwipsPerInch / 2) / kTwipsPerInch;
}

// Switches a grid's redrawing off for one paint and back to what it was. Only the grid's own
// switch counts: a parent that has redrawing off (the preview changing views) keeps it off for
// the grid until the parent switches it on again.
class UpdatesOff {
public:
    explicit UpdatesOff(QWidget& widget)
        : widget_(widget), wasOn_(!widget.testAttribute(Qt::WA_ForceUpdatesDisabled)) {
        widget_.setUpdatesEnabled(false);
    }
    ~UpdatesOff() { widget_.setUpdatesEnabled(wasOn_); }
    UpdatesOff(const UpdatesOff&) = delete;
    UpdatesOff& operator=(const UpdatesOff&) = delete;

private:
    QWidget& widget_;
    bool wasOn_;
};

// What one byte cell is to show; brushes are indices into the paint's brush table.
struct CellPlan {
    QString text;
    int background = 0;
    int foreground = 0;
};

// The cell at (row, column), made once and then reused by every later paint.
QTableWidgetItem& cellAt(QTableWidget& grid, int row, int column) {
    if (QTableWidgetItem* item = grid.item(row, column)) return *item;
    auto* item = new QTableWidgetItem;
    item->setTextAlignment(Qt::AlignCenter);
    grid.setItem(row, column, item);
    return *item;
}

// Sets a block number; the text is only rebuilt when the cell shows another number, so a
// repaint does not allocate a string for every row.
void setNumber(QTableWidgetItem& item, int number) {
    bool isNumber = false;
    if (item.text().toInt(&isNumber) != number || !isNumber) item.setText(QString::number(number));
}

void applyCell(QTableWidgetItem& item, const QString& text, const QBrush& background, const QBrush& foreground) {
    // QTableWidgetItem ignores a value equal to the one it holds, so an unchanged cell costs no signal.
    item.setText(text);
    item.setBackground(background);
    item.setForeground(foreground);
}

void paintHeaderRow(QTableWidget& grid, const QBrush& frame, const QBrush& text) {
    applyCell(cellAt(grid, 0, 0), QString(), frame, text);
    for (int byte = 0; byte < kBytesPerBlock; ++byte) {
        QTableWidgetItem& cell = cellAt(grid, 0, byte + 1);
        setNumber(cell, byte);
        cell.setBackground(frame);
        cell.setForeground(text);
    }
}

// Every run of two or more equal, non-empty texts across a row's byte cells shows as one cell.
void mergeRows(QTableWidget& grid, const std::vector<CellPlan>& plan, int dataRows) {
    grid.clearSpans();
    for (int row = 0; row < dataRows; ++row) {
        const CellPlan* cells = &plan[static_cast<size_t>(row) * kBytesPerBlock];
        int start = 0;
        while (start < kBytesPerBlock) {
            int end = start + 1;
            while (end < kBytesPerBlock && cells[end].text == cells[start].text) ++end;
            if (end - start > 1 && !cells[start].text.isEmpty()) grid.setSpan(row + 1, start + 1, 1, end - start);
            start = end;
        }
    }
}

}  // namespace

QColor memoryMapColor(int32_t bgr) {
    return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF);
}

QTableWidget* createPageGrid(QWidget* parent, const QString& objectName) {
    auto* grid = new QTableWidget(parent);
    grid->setObjectName(objectName);
    grid->setColumnCount(kColumns);
    grid->setRowCount(1);
    grid->horizontalHeader()->hide();
    grid->verticalHeader()->hide();
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionMode(QAbstractItemView::NoSelection);
    grid->setFocusPolicy(Qt::NoFocus);
    grid->setWordWrap(false);

    QHeaderView* columns = grid->horizontalHeader();
    const int columnWidth = twipsToPixels(kColumnTwips, grid->logicalDpiX());
    columns->setMinimumSectionSize(1);
    columns->setDefaultSectionSize(columnWidth);
    columns->setSectionResizeMode(QHeaderView::Fixed);
    for (int c = 0; c < kColumns; ++c) grid->setColumnWidth(c, columnWidth);

    QHeaderView* rows = grid->verticalHeader();
    const int rowHeight = std::max(twipsToPixels(kRowTwips, grid->logicalDpiY()), grid->fontMetrics().height() + 2);
    rows->setMinimumSectionSize(1);
    rows->setDefaultSectionSize(rowHeight);
    rows->setSectionResizeMode(QHeaderView::Fixed);

    paintHeaderRow(*grid, QBrush(memoryMapColor(kFrameColor)), QBrush(memoryMapColor(kTextColor)));
    return grid;
}

void fitPageGrid(QTableWidget& grid) {
    grid.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    grid.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const int frame = 2 * grid.frameWidth();
    grid.setFixedSize(grid.horizontalHeader()->length() + frame, grid.verticalHeader()->length() + frame);
}

void paintPage(QTableWidget& grid, const CPage& page, const RecordArray& records, bool wholePage) {
    UpdatesOff updatesOff(grid);

    const int32_t blocks = wholePage ? std::max(kGridBlocks, page.blockCount()) : kGridBlocks;
    const int32_t firstGridBlock = wholePage ? 0 : page.VirtualPage * kGridBlocks;
    const int64_t gridBytes = int64_t{blocks} * kBytesPerBlock;
    const int rows = blocks + 1;
    if (grid.columnCount() != kColumns) grid.setColumnCount(kColumns);
    if (grid.rowCount() != rows) grid.setRowCount(rows);

    const CIClass* card = page.Parent;
    const bool showHid = card && card->UseHIDSection() && page.HasHIDSpace;
    const bool boundaryGreys = card && card->ChipSize() == iBigEightPages;
    // The first block after the fixed areas: the yellow block numbers start there.
    const int32_t firstFreeBlock = showHid ? kHidLastBlock + 1 : page.HasHeader ? kHeaderBlocks : 0;

    enum Brush { Frame, Text, HidText, Yellow, White, Green, Blue, InsideBoundary, BeyondBoundary, FixedBrushes };
    std::vector<QBrush> brushes;
    brushes.reserve(FixedBrushes + static_cast<size_t>(records.size()));
    for (int32_t color : {kFrameColor, kTextColor, kHidTextColor, kBlockNumberColor, kFreeByteColor, kHeaderColor,
                          kHidColor, kInsideBoundaryColor, kBeyondBoundaryColor})
        brushes.emplace_back(memoryMapColor(color));

    std::array<QString, kHeaderBlocks> headerNames;
    for (int32_t b = 0; b < kHeaderBlocks; ++b) {
        const std::string_view name = headerBlockName(b);
        headerNames[static_cast<size_t>(b)] = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    }
    const QString hidName = QString::fromUtf8(kHidAreaName.data(), static_cast<qsizetype>(kHidAreaName.size()));

    // Fixed areas and free bytes, as each grid block is shown before any item.
    std::vector<CellPlan> plan(static_cast<size_t>(gridBytes));
    for (int32_t row = 0; row < blocks; ++row) {
        const int32_t block = firstGridBlock + row;  // block of the page's own numbering
        CellPlan area;
        if (page.HasHeader && block < kHeaderBlocks) {
            area = {headerNames[static_cast<size_t>(block)], Green, Text};
        } else if (showHid && block >= kHidFirstBlock && block <= kHidLastBlock) {
            area = {hidName, Blue, HidText};
        } else if (boundaryGreys && block >= page.BeginFreeSpace) {
            area = {QString(), block <= page.Boundary ? InsideBoundary : BeyondBoundary, Text};
        } else {
            area = {QString(), White, Text};
        }
        std::fill_n(plan.begin() + int64_t{row} * kBytesPerBlock, kBytesPerBlock, area);
    }

    // Every placed kind is painted (fields, functions, binary fields and all bit kinds); a bit
    // item fills each byte its bits touch. Database-update items have no place on the card.
    for (const ItemRecord& r : records) {
        const BitSpan span = itemSpan(r);
        if (r.isDbUpdate || r.page != page.PageNumber || span.length <= 0) continue;
        const int64_t gridStart = PageAddress::ofBlock(firstGridBlock).byte();
        const int64_t first = std::max<int64_t>(span.first.byte() - gridStart, 0);
        const int64_t last = std::min<int64_t>(PageAddress::ofBit(span.lastBit()).byte() - gridStart, gridBytes - 1);
        if (first > last) continue;
        const int brush = static_cast<int>(brushes.size());
        brushes.emplace_back(memoryMapColor(r.color));
        const CellPlan item{QString::fromStdString(r.name), brush, Text};
        std::fill(plan.begin() + first, plan.begin() + last + 1, item);
    }

    paintHeaderRow(grid, brushes[Frame], brushes[Text]);
    for (int32_t row = 0; row < blocks; ++row) {
        const int32_t block = firstGridBlock + row;
        QTableWidgetItem& number = cellAt(grid, row + 1, 0);
        setNumber(number, block);
        number.setBackground(brushes[block >= firstFreeBlock ? Yellow : Frame]);
        number.setForeground(brushes[Text]);
        for (int byte = 0; byte < kBytesPerBlock; ++byte) {
            const CellPlan& cell = plan[static_cast<size_t>(row) * kBytesPerBlock + static_cast<size_t>(byte)];
            applyCell(cellAt(grid, row + 1, byte + 1), cell.text, brushes[static_cast<size_t>(cell.background)],
                      brushes[static_cast<size_t>(cell.foreground)]);
        }
    }
    mergeRows(grid, plan, blocks);
}

}  // namespace kestrin
