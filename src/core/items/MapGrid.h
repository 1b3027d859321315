#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "card/PageAddress.h"

namespace kestrin {

// Colours shared by the memory maps, as 0x00BBGGRR values like the colours the files keep.
inline constexpr int32_t kMapTextColor = 0x000000;
inline constexpr int32_t kMapFreeColor = 0xFFFFFF;         // white: a byte or bit no item uses
inline constexpr int32_t kMapBlockNumberColor = 0x00FFFF;  // yellow: a block items may use

// The place an item being entered would take, shown over a map before it is applied: brighter
// than any item's colour, which stays within 127 to 227 a channel.
inline constexpr int32_t kMapMarkColor = 0x0080FF;  // orange
struct PlaceMark {
    BitSpan span;
    std::string name;
};

// One cell of a memory-map grid. Texts are indices into the grid's text table, so a painter
// turns each distinct text into its own string type once.
struct MapCell {
    int32_t text = 0;  // 0 is the empty text
    int32_t background = kMapFreeColor;
    int32_t foreground = kMapTextColor;
    int32_t owner = 0;  // the bit map's owning item name; 0 when free
    int32_t tip = 0;    // tooltip text; 0 for none
};

// A run of cells of one row shown as one cell.
struct MapMerge {
    int32_t row = 0;
    int32_t column = 0;
    int32_t columns = 0;
};

// A memory map as plain data: rows of cells (row 0 the header), their texts and merges.
class MapGrid {
public:
    MapGrid(int32_t rows, int32_t columns);

    int32_t rows() const { return rows_; }
    int32_t columns() const { return columns_; }
    MapCell& at(int32_t row, int32_t column) { return cells_[index(row, column)]; }
    const MapCell& at(int32_t row, int32_t column) const { return cells_[index(row, column)]; }

    // Adds a text to the table and gives its index.
    int32_t addText(std::string text);
    const std::string& text(int32_t index) const { return texts_[static_cast<size_t>(index)]; }
    const std::string& textAt(int32_t row, int32_t column) const { return text(at(row, column).text); }
    const std::vector<std::string>& texts() const { return texts_; }

    void merge(int32_t row, int32_t column, int32_t columns) { merges_.push_back({row, column, columns}); }
    const std::vector<MapMerge>& merges() const { return merges_; }
    // How many columns the shown cell that holds this cell spans; 1 outside a merge.
    int32_t columnSpan(int32_t row, int32_t column) const;

private:
    size_t index(int32_t row, int32_t column) const {
        return static_cast<size_t>(row) * static_cast<size_t>(columns_) + static_cast<size_t>(column);
    }

    int32_t rows_;
    int32_t columns_;
    std::vector<MapCell> cells_;
    std::vector<std::string> texts_{std::string()};
    std::vector<MapMerge> merges_;
};

}  // namespace kestrin
