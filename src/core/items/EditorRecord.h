#pragma once
#include <cstdint>
#include <string>

namespace kestrin {

// The one item an editor dialog receives and hands back: what the item grid row shows.
struct EditorRecord {
    bool editing = false;  // an existing item is edited (false: a new one is added)
    int16_t page = 0;
    std::string name;
    int16_t block = 0;
    int16_t beginByte = 0;
    int16_t numBytes = 0;
    int16_t beginBit = 0;
    int16_t numBits = 0;
    int32_t kindCode = 0;        // 0 field, 1 function, 2 bit field, 3 bit function
    std::string kindWord;        // "Field", "Function", "Binary Field" ...
    bool fieldsAndFunctions = false;  // the row belongs to the fields-and-functions grid
};

}  // namespace kestrin
