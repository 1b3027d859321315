#pragma once
#include "ItemRecord.h"
#include "card/PageAddress.h"

namespace kestrin {

// Where a stored item lies on its page. A plain field or function counts its bytes from its
// block and begin byte; every bit kind counts its bits from its begin bit as well.
inline BitSpan itemSpan(const ItemRecord& r) {
    const PageAddress first = PageAddress::at(r.block, r.beginByte, r.beginBit);
    return isByteSized(r) ? BitSpan::ofBytes(first, r.numBytes) : BitSpan::ofBits(first, r.numBits);
}

}  // namespace kestrin
