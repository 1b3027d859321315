#include "CardGeometry.h"

#include <array>

namespace kestrin {

std::string_view headerBlockName(int32_t block) {
    static constexpr std::array<std::string_view, kHeaderBlocks> names = {
        "Card Serial Number", "Configuration Data", "Not Used",
        "Key 1",              "Key 2",              "Application Issuer Data",
    };
    if (block < 0 || block >= kHeaderBlocks) return {};
    return names[static_cast<size_t>(block)];
}

int32_t pageSizeOf(IClassType type) {
    return type == iBigOnePage ? kBigPageSize : kSmallPageSize;
}

int32_t pageCountOf(IClassType type) {
    return type == iBigEightPages ? 8 : 1;
}

std::string_view sizeTextOf(IClassType type) {
    return type == iSmallOnePage ? "2K" : "16K";
}

std::string_view chipTypeName(IClassType type) {
    switch (type) {
    case iSmallOnePage: return "iSmallOnePage";
    case iBigOnePage: return "iBigOnePage";
    case iBigEightPages: return "iBigEightPages";
    }
    return {};
}


}  // namespace kestrin
