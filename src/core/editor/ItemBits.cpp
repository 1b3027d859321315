#include "ItemBits.h"

namespace kestrin {

int64_t startBitOf(const ItemRecord& r) {
    return bitAddress(r.block, r.beginByte, r.beginBit);
}

int64_t lengthBitsOf(const ItemRecord& r) {
    return isByteSized(r) ? int64_t{r.numBytes} * 8 : int64_t{r.numBits};
}

}  // namespace kestrin
