#pragma once
#include <compare>
#include <cstdint>

namespace kestrin {

// A place on a card page, counted in bits from the page start: a block is 8 bytes and a
// byte 8 bits, so block b, byte y, bit t lies at bit (b * 8 + y) * 8 + t. Every rule, the
// layout reader and the page painters turn blocks, bytes and bits into places through it.
class PageAddress {
public:
    static constexpr int64_t BitsPerByte = 8;
    static constexpr int64_t BytesPerBlock = 8;
    static constexpr int64_t BitsPerBlock = BitsPerByte * BytesPerBlock;

    constexpr PageAddress() = default;
    static constexpr PageAddress at(int64_t block, int64_t byteInBlock, int64_t bitInByte = 0) {
        return PageAddress((block * BytesPerBlock + byteInBlock) * BitsPerByte + bitInByte);
    }
    static constexpr PageAddress ofBit(int64_t bit) { return PageAddress(bit); }
    static constexpr PageAddress ofByte(int64_t byte) { return PageAddress(byte * BitsPerByte); }
    static constexpr PageAddress ofBlock(int64_t block) { return PageAddress(block * BitsPerBlock); }

    constexpr int64_t bit() const { return bit_; }
    // The byte and block that hold this bit.
    constexpr int64_t byte() const { return floorDiv(bit_, BitsPerByte); }
    constexpr int64_t block() const { return floorDiv(bit_, BitsPerBlock); }
    constexpr int64_t byteInBlock() const { return byte() - block() * BytesPerBlock; }
    constexpr int64_t bitInByte() const { return bit_ - byte() * BitsPerByte; }
    // Whole bytes from the page start up to this place, a started byte counting whole: the
    // bytes a run of bits that ends (exclusively) here reaches.
    constexpr int64_t bytesReached() const { return -floorDiv(-bit_, BitsPerByte); }

    constexpr PageAddress plusBits(int64_t bits) const { return PageAddress(bit_ + bits); }
    constexpr PageAddress plusBytes(int64_t bytes) const { return PageAddress(bit_ + bytes * BitsPerByte); }

    constexpr auto operator<=>(const PageAddress&) const = default;

private:
    constexpr explicit PageAddress(int64_t bit) : bit_(bit) {}
    static constexpr int64_t floorDiv(int64_t a, int64_t b) { return a / b - (a % b != 0 && a < 0 ? 1 : 0); }

    int64_t bit_ = 0;
};

// A run of bits on a page: its first place and its length in bits.
struct BitSpan {
    PageAddress first;
    int64_t length = 0;

    static constexpr BitSpan ofBytes(PageAddress first, int64_t bytes) {
        return {first, bytes * PageAddress::BitsPerByte};
    }
    static constexpr BitSpan ofBits(PageAddress first, int64_t bits) { return {first, bits}; }

    // The last bit, inclusive, and the place just behind the span.
    constexpr int64_t lastBit() const { return first.bit() + length - 1; }
    constexpr PageAddress end() const { return first.plusBits(length); }

    constexpr bool contains(int64_t bit) const { return bit >= first.bit() && bit <= lastBit(); }
    // Whether the two spans share a bit.
    constexpr bool overlaps(const BitSpan& other) const {
        return first.bit() <= other.lastBit() && other.first.bit() <= lastBit();
    }
    // Whether the span begins before place and reaches it: a boundary at place cuts it.
    constexpr bool crosses(PageAddress place) const { return first < place && lastBit() >= place.bit(); }
};

}  // namespace kestrin
