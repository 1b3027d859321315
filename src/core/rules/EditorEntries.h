#pragma once
#include <cstdint>
#include <string>

#include "FunctionProperties.h"
#include "PlacementValidation.h"
#include "items/ItemRecord.h"
#include "items/RecordArray.h"

namespace kestrin {

// What the item editor's controls hold for the item being placed, read in one go by the
// dialog. Plain data, so that turning it into a placement request and an item record
// needs no window.
struct EditorEntries {
    int32_t mode = kModeField;
    std::string selectedText;  // txtSelectedField
    std::string itemName;      // field name(s) or function word
    int16_t fieldType = -1;    // field type code of the first chosen field
    int16_t page = -1;
    int16_t row = -1;
    int16_t beginByte = -1;
    int16_t beginBit = 0;
    std::string sizeText;  // txtNrBytes: bytes in modes 0 and 1, bits in modes 2 and 3
    int encodeOption = -1;
    int formatIndex = -1;
    FunctionInput function{};  // function modes only
};

bool isBitMode(int32_t mode);
bool isFunctionMode(int32_t mode);

// The request the placement rules judge.
PlacementRequest placementRequestOf(const EditorEntries& e);

// The record Apply writes: name, kind flags, position and size, and the encoding code of a
// field (a bit field is always a high-byte-first binary number) or the function's values.
ItemRecord itemRecordOf(const EditorEntries& e, int32_t color);

// Where a stored record stands, for the record array's look-up and removal by position.
ItemPosition positionOf(const ItemRecord& r);

// The number a size or position text holds, 0 when it holds none; saturates at 16 bits.
int16_t shortOf(const std::string& text);

}  // namespace kestrin
