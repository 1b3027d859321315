#pragma once
#include <cstdint>

namespace kestrin {

// Chip types of a card: 2 kbit one page, 16 kbit one page, 16 kbit eight pages.
enum IClassType : int32_t {
    iSmallOnePage = 0,
    iBigOnePage = 1,
    iBigEightPages = 2,
};

}  // namespace kestrin
