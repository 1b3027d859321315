#pragma once
#include <cstdint>
#include <string>

#include "PageAddress.h"

namespace kestrin {

class CIClass;

// One page of the card: its size, fixed areas, first free block and application boundary.
// Every property is a plain store; the card's page builder fills them.
class CPage {
public:
    std::string Key;
    CIClass* Parent = nullptr;  // the owning card; not owned
    int32_t PageSize = 0;       // bytes
    int32_t VirtualPage = 0;    // display index given by the preview
    int32_t BeginFreeSpace = 0; // first block items may use
    bool HasHeader = false;
    bool HasHIDSpace = false;
    int32_t Boundary = 0;       // application boundary, a block number
    int32_t PageNumber = 0;

    int32_t blockCount() const { return static_cast<int32_t>(PageAddress::ofByte(PageSize).block()); }
};

}  // namespace kestrin
