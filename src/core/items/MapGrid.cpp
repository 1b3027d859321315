#include "MapGrid.h"

#include <algorithm>

namespace kestrin {

MapGrid::MapGrid(int32_t rows, int32_t columns)
    : rows_(std::max(rows, 0)), columns_(std::max(columns, 0)), cells_(static_cast<size_t>(rows_) * columns_) {}

int32_t MapGrid::addText(std::string text) {
    texts_.push_back(std::move(text));
    return static_cast<int32_t>(texts_.size() - 1);
}

int32_t MapGrid::columnSpan(int32_t row, int32_t column) const {
    int32_t span = 1;
    for (const MapMerge& m : merges_)
        if (m.row == row && column >= m.column && column < m.column + m.columns) span = m.columns;
    return span;
}

}  // namespace kestrin
