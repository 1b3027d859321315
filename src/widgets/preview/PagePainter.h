#pragma once
#include <QColor>
#include <QString>
#include <cstdint>

class QTableWidget;
class QWidget;

namespace kestrin {

class CPage;
class RecordArray;

// Memory-map colours, as 0x00BBGGRR values like the colours the files keep.
inline constexpr int32_t kBlockNumberColor = 0x00FFFF;     // yellow
inline constexpr int32_t kFreeByteColor = 0xFFFFFF;        // white
inline constexpr int32_t kInsideBoundaryColor = 0xEBEBEB;  // up to and including the boundary block
inline constexpr int32_t kBeyondBoundaryColor = 0xD7D7D7;  // after the boundary block

QColor memoryMapColor(int32_t bgr);

// A nine-column page grid: row 0 is the header ("0" to "7" over the byte columns),
// column 0 the block numbers; cells are 400 twips wide and centred. No scroll bars
// are needed when the grid is sized with fitPageGrid.
QTableWidget* createPageGrid(QWidget* parent, const QString& objectName);
// Resizes a painted grid to show every row and column.
void fitPageGrid(QTableWidget& grid);

// Paints one page into the grid: fixed areas first (green header, blue HID area, yellow
// block numbers), then free bytes (white, or the two boundary greys on an eight-page card),
// then every item of the records on that page byte by byte in its colour with its name;
// equal texts across a row are merged into one cell. The page's VirtualPage shifts the
// block numbers and bytes by 32 blocks a step (the one-page 16 kbit card shown 32 blocks a
// grid). wholePage shows all blocks of a 2048-byte page in one grid.
void paintPage(QTableWidget& grid, const CPage& page, const RecordArray& records, bool wholePage = false);

}  // namespace kestrin
