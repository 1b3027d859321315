#pragma once
#include <QColor>
#include <QString>
#include <cstdint>

class QTableWidget;
class QWidget;

namespace kestrin {

class CPage;
class MapGrid;
struct PlaceMark;
class RecordArray;

QColor memoryMapColor(int32_t bgr);

// A nine-column page grid: row 0 is the header ("0" to "7" over the byte columns),
// column 0 the block numbers; cells are 400 twips wide and centred. No scroll bars
// are needed when the grid is sized with fitPageGrid.
QTableWidget* createPageGrid(QWidget* parent, const QString& objectName);
// Resizes a painted grid to show every row and column.
void fitPageGrid(QTableWidget& grid);

// Shows a memory map in the grid: each cell's text centred on its colours, the merged runs
// as one cell. Cells already in the grid are reused, and redrawing waits for the whole map.
void showMapGrid(QTableWidget& grid, const MapGrid& map);

// Paints the memory map of one page (see pageMap) into the grid.
void paintPage(QTableWidget& grid, const CPage& page, const RecordArray& records, bool wholePage = false,
               const PlaceMark* mark = nullptr);

}  // namespace kestrin
