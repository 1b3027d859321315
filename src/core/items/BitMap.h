#pragma once
#include <cstdint>

#include "MapGrid.h"
#include "card/PageAddress.h"

namespace kestrin {

class CPage;
class RecordArray;

inline constexpr int32_t kBitHeaderColor = 0xC0E0C0;  // light green over the bit columns
inline constexpr int32_t kByteEdgeColor = 0xF4F4F4;   // every other byte, so bytes stay readable
// Columns of a bit map: the block number, then the 64 bits of the block.
inline constexpr int32_t kBitMapColumns = 1 + static_cast<int32_t>(PageAddress::BitsPerBlock);

// Where a bit of the page shows in its bit map.
int32_t bitMapRow(const CPage& page, int32_t block);
constexpr int32_t bitMapColumn(int32_t byteInBlock, int32_t bit) {
    return 1 + static_cast<int32_t>(PageAddress::at(0, byteInBlock, bit).bit());
}

// The bit map of a page as the item editor shows it in its bit modes: one row per block items
// may use (from the page's first free block on), column 0 the block number on yellow and
// columns 1 to 64 the block's bits, byte 0 bit 0 first. Row 0 shows each byte number over its
// eight bits, the bit numbers as tooltips "byte.bit". Free bits are white, every other byte
// lightly shaded. A bit owned by an item takes the item's colour, its name as owner and
// "name (byte.bit)" as tooltip; a run of one item's bits within a block is merged into one
// cell that shows the item's name. A mark colours the bits of the place being chosen.
MapGrid bitMap(const CPage& page, const RecordArray& records, const PlaceMark* mark = nullptr);

}  // namespace kestrin
