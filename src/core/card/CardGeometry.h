#pragma once
#include <cstdint>
#include <string_view>

#include "IClassType.h"
#include "PageAddress.h"

namespace kestrin {

inline constexpr int32_t kBytesPerBlock = static_cast<int32_t>(PageAddress::BytesPerBlock);
inline constexpr int32_t kBitsPerByte = static_cast<int32_t>(PageAddress::BitsPerByte);
inline constexpr int32_t kSmallPageSize = 256;
inline constexpr int32_t kBigPageSize = 2048;

// Blocks 0 to 5 of every page are the header; blocks 6 to 18 of page "0" hold the
// HID access-control application while the card's HID section is in use.
inline constexpr int32_t kHeaderBlocks = 6;
inline constexpr int32_t kHidFirstBlock = 6;
inline constexpr int32_t kHidLastBlock = 18;
inline constexpr int32_t kFreeSpaceWithHid = 19;
inline constexpr int32_t kFreeSpaceWithoutHid = 6;

// Application boundaries: 18 when the pages are built; pages "1" to "7" take 6 to 32.
inline constexpr int32_t kDefaultBoundary = 18;
inline constexpr int32_t kMinBoundary = 6;
inline constexpr int32_t kMaxBoundary = 32;

// Memory-map back colours, in the blue-green-red order the files keep.
inline constexpr int32_t kHeaderColor = 0x00C000;
inline constexpr int32_t kHidColor = 0xFF0000;

inline constexpr std::string_view kHidAreaName = "HID Access Control Application";

// Name of a header block (0 to 5) as the memory map shows it; empty for other blocks.
std::string_view headerBlockName(int32_t block);

int32_t pageSizeOf(IClassType type);
int32_t pageCountOf(IClassType type);
// The text stored in the layout file's Size key: "2K" or "16K".
std::string_view sizeTextOf(IClassType type);
// Display name of a chip type ("iSmallOnePage" ...); empty for an unknown value.
std::string_view chipTypeName(IClassType type);

}  // namespace kestrin
