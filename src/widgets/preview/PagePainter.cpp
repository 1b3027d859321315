#include "PagePainter.h"

#include <QBrush>
#include <QHeaderView>
#include <QTableWidget>
#include <QTableWidgetItem>
#include <algorithm>
#include <unordered_map>
#include <vector>

#include "base/Twips.h"
#include "items/MapGrid.h"
#include "items/PageMap.h"

namespace kestrin {

namespace {

constexpr int kColumnTwips = 400;
constexpr int kRowTwips = 240;

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

// One brush a colour for the whole paint, so equal colours share their brush data. Neighbouring
// cells mostly share a colour, so the last one is at hand without a look-up.
class Brushes {
public:
    const QBrush& operator()(int32_t bgr) {
        if (last_ && lastColor_ == bgr) return *last_;
        auto found = brushes_.find(bgr);
        if (found == brushes_.end()) found = brushes_.emplace(bgr, QBrush(memoryMapColor(bgr))).first;
        lastColor_ = bgr;
        last_ = &found->second;
        return *last_;
    }

private:
    std::unordered_map<int32_t, QBrush> brushes_;
    const QBrush* last_ = nullptr;
    int32_t lastColor_ = 0;
};

// The texts of a grid's last map and their display strings: a repaint converts only the texts
// that changed, which keeps switching back and forth between views cheap.
class MapTexts : public QObject {
public:
    using QObject::QObject;
    const std::vector<QString>& update(const std::vector<std::string>& texts) {
        texts_.resize(texts.size());
        shown_.resize(texts.size());
        for (size_t i = 0; i < texts.size(); ++i) {
            if (texts_[i] == texts[i]) continue;  // new entries start empty, as an empty text shows
            texts_[i] = texts[i];
            shown_[i] = QString::fromUtf8(texts[i].data(), static_cast<qsizetype>(texts[i].size()));
        }
        return shown_;
    }

    static MapTexts& of(QTableWidget& grid) {
        for (QObject* child : grid.children())
            if (auto* texts = dynamic_cast<MapTexts*>(child)) return *texts;
        return *new MapTexts(&grid);
    }

private:
    std::vector<std::string> texts_;
    std::vector<QString> shown_;
};

// The cell at (row, column), made once and then reused by every later paint.
QTableWidgetItem& cellAt(QTableWidget& grid, int row, int column) {
    if (QTableWidgetItem* item = grid.item(row, column)) return *item;
    auto* item = new QTableWidgetItem;
    item->setTextAlignment(Qt::AlignCenter);
    grid.setItem(row, column, item);
    return *item;
}

}  // namespace

QColor memoryMapColor(int32_t bgr) {
    return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF);
}

QTableWidget* createPageGrid(QWidget* parent, const QString& objectName) {
    auto* grid = new QTableWidget(parent);
    grid->setObjectName(objectName);
    grid->setColumnCount(kPageMapColumns);
    grid->setRowCount(1);
    grid->horizontalHeader()->hide();
    grid->verticalHeader()->hide();
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionMode(QAbstractItemView::NoSelection);
    grid->setFocusPolicy(Qt::NoFocus);
    grid->setWordWrap(false);
    // No ligatures, so that a printed map's texts are the letters the layout holds ("fi", not "ﬁ").
    QFont font = grid->font();
    font.setStyleStrategy(QFont::PreferNoShaping);
    grid->setFont(font);

    QHeaderView* columns = grid->horizontalHeader();
    const int columnWidth = twipsToPixels(kColumnTwips, grid->logicalDpiX());
    columns->setMinimumSectionSize(1);
    columns->setDefaultSectionSize(columnWidth);
    columns->setSectionResizeMode(QHeaderView::Fixed);
    for (int c = 0; c < kPageMapColumns; ++c) grid->setColumnWidth(c, columnWidth);

    QHeaderView* rows = grid->verticalHeader();
    const int rowHeight = std::max(twipsToPixels(kRowTwips, grid->logicalDpiY()), grid->fontMetrics().height() + 2);
    rows->setMinimumSectionSize(1);
    rows->setDefaultSectionSize(rowHeight);
    rows->setSectionResizeMode(QHeaderView::Fixed);
    return grid;
}

void fitPageGrid(QTableWidget& grid) {
    grid.setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    grid.setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    const int frame = 2 * grid.frameWidth();
    grid.setFixedSize(grid.horizontalHeader()->length() + frame, grid.verticalHeader()->length() + frame);
}

void showMapGrid(QTableWidget& grid, const MapGrid& map) {
    UpdatesOff updatesOff(grid);
    if (grid.columnCount() != map.columns()) grid.setColumnCount(map.columns());
    if (grid.rowCount() != map.rows()) grid.setRowCount(map.rows());

    const std::vector<QString>& texts = MapTexts::of(grid).update(map.texts());
    Brushes backgrounds, foregrounds;
    for (int32_t row = 0; row < map.rows(); ++row) {
        for (int32_t column = 0; column < map.columns(); ++column) {
            const MapCell& cell = map.at(row, column);
            QTableWidgetItem& item = cellAt(grid, row, column);
            // QTableWidgetItem ignores a value equal to the one it holds, so an unchanged cell costs no signal.
            item.setText(texts[static_cast<size_t>(cell.text)]);
            item.setBackground(backgrounds(cell.background));
            item.setForeground(foregrounds(cell.foreground));
        }
    }
    grid.clearSpans();
    for (const MapMerge& m : map.merges()) grid.setSpan(m.row, m.column, 1, m.columns);
}

void paintPage(QTableWidget& grid, const CPage& page, const RecordArray& records, bool wholePage,
               const PlaceMark* mark) {
    showMapGrid(grid, pageMap(page, records, wholePage, mark));
}

}  // namespace kestrin
