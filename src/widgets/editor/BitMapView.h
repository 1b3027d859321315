#pragma once
#include <QString>

#include "items/BitMap.h"

class QTableWidget;
class QWidget;

namespace kestrin {

class CPage;
class RecordArray;

// The bit view of a page, shown by the item editor in its bit modes (see bitMap). Every bit
// cell carries the owner's name under Qt::UserRole (empty when free) and its tooltip.
QTableWidget* createBitGrid(QWidget* parent, const QString& objectName);
void paintBitPage(QTableWidget& grid, const CPage& page, const RecordArray& records, const PlaceMark* mark = nullptr);

// The grid cell of a bit of the page, for readers of the bit view.
inline int bitGridRow(const CPage& page, int block) { return bitMapRow(page, block); }
inline int bitGridColumn(int beginByte, int bit) { return bitMapColumn(beginByte, bit); }

}  // namespace kestrin
