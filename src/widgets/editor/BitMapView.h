#pragma once
#include <QString>

#include "card/PageAddress.h"

class QTableWidget;
class QWidget;

namespace kestrin {

class CPage;
class RecordArray;

// The bit view of a page, shown by the item editor in its bit modes. One row per block that
// items may use (from the page's first free block on); column 0 holds the block number and
// columns 1 to 64 the block's bits, byte 0 bit 0 first. Row 0 is the header: the byte number
// over the first bit of each byte and the bit numbers 0 to 7 under it in the tooltips.
// A bit owned by an item takes the item's colour; a run of bits of one item within a block
// is joined into one cell that shows the item's name. Every bit cell carries the owner's
// name under Qt::UserRole (empty when free) and the full name as its tooltip.
QTableWidget* createBitGrid(QWidget* parent, const QString& objectName);
void paintBitPage(QTableWidget& grid, const CPage& page, const RecordArray& records);

// The grid cell of a bit of the page, for readers of the bit view.
int bitGridRow(const CPage& page, int block);
inline int bitGridColumn(int beginByte, int bit) { return 1 + static_cast<int>(PageAddress::at(0, beginByte, bit).bit()); }

}  // namespace kestrin
