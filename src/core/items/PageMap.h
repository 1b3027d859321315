#pragma once
#include <cstdint>

#include "MapGrid.h"
#include "card/PageAddress.h"

namespace kestrin {

class CPage;
class RecordArray;

// Colours of the page map beyond the fixed areas' green and blue.
inline constexpr int32_t kMapFrameColor = 0xF0F0F0;        // header row and the block numbers of fixed areas
inline constexpr int32_t kMapHidTextColor = 0xFFFFFF;      // black text would be hard to read on pure blue
inline constexpr int32_t kInsideBoundaryColor = 0xEBEBEB;  // free blocks up to and including the boundary
inline constexpr int32_t kBeyondBoundaryColor = 0xD7D7D7;  // free blocks after the boundary

// Blocks a page grid shows unless the whole page is asked for.
inline constexpr int32_t kGridBlocks = 32;
// Columns of a page grid: the block number, then bytes 0 to 7.
inline constexpr int32_t kPageMapColumns = 1 + static_cast<int32_t>(PageAddress::BytesPerBlock);

// The memory map of one page: row 0 reads "0" to "7" over the byte columns, each further
// row is a block with its number in column 0 (yellow from the first block after the fixed
// areas). The header blocks show their names on green, the HID area its name on blue, the
// other bytes are white, or on an eight-page card grey up to and after the boundary. Every
// placed item covers the bytes it touches with its name and colour; runs of one text across
// a row merge. The page's VirtualPage shifts the grid by 32 blocks a step (the one-page
// 16 kbit card shown 32 blocks a grid); wholePage shows every block of the page. A mark covers
// the bytes of the place being chosen, over whatever lies there.
MapGrid pageMap(const CPage& page, const RecordArray& records, bool wholePage = false,
                const PlaceMark* mark = nullptr);

}  // namespace kestrin
