#pragma once
#include <cstdint>

#include "items/ItemRecord.h"

namespace kestrin {

inline constexpr int64_t kBitsPerBlock = 64;

// Bit address of a place on its page: (block * 8 + byte) * 8 + bit.
inline int64_t bitAddress(int64_t block, int64_t beginByte, int64_t beginBit) {
    return (block * 8 + beginByte) * 8 + beginBit;
}

// Where a stored item lies on its page, in bits, last bit inclusive. A plain field or
// function counts its bytes; every bit kind its bits.
int64_t startBitOf(const ItemRecord& r);
int64_t lengthBitsOf(const ItemRecord& r);
inline int64_t lastBitOf(const ItemRecord& r) { return startBitOf(r) + lengthBitsOf(r) - 1; }

// Whether [aStart, aLast] and [bStart, bLast] share a bit.
inline bool bitRangesOverlap(int64_t aStart, int64_t aLast, int64_t bStart, int64_t bLast) {
    return aStart <= bLast && bStart <= aLast;
}

}  // namespace kestrin
