#include "EditorEntries.h"

#include <algorithm>
#include <cstdlib>

#include "Encodings.h"

namespace kestrin {

bool isBitMode(int32_t mode) {
    return mode == kModeBitField || mode == kModeBitFunction;
}

bool isFunctionMode(int32_t mode) {
    return mode == kModeFunction || mode == kModeBitFunction;
}

int16_t shortOf(const std::string& text) {
    if (text.empty() || text.size() > 9 || text.find_first_not_of("0123456789") != std::string::npos) return 0;
    const long v = std::strtol(text.c_str(), nullptr, 10);
    return static_cast<int16_t>(std::min<long>(v, 32767));
}

PlacementRequest placementRequestOf(const EditorEntries& e) {
    PlacementRequest q;
    q.mode = e.mode;
    q.selectedText = e.selectedText;
    q.itemName = e.itemName;
    q.page = e.page;
    q.row = e.row;
    q.beginByte = e.beginByte;
    q.beginBit = isBitMode(e.mode) ? e.beginBit : int16_t{0};
    q.nrBytesText = e.sizeText;
    if (!isFunctionMode(e.mode)) return q;

    fillFunctionRequest(q, e.function);
    return q;
}

ItemRecord itemRecordOf(const EditorEntries& e, int32_t color) {
    ItemRecord r;
    if (isFunctionMode(e.mode)) {
        applyFunctionValues(e.function, e.mode, r);
        r.isFunction = e.mode == kModeFunction;
        r.isBitFunction = e.mode == kModeBitFunction;
    } else {
        r.name = e.itemName;
        r.isBit = e.mode == kModeBitField;
        r.fieldType = e.fieldType;
        // A bit field is always written as a binary number, high byte first.
        r.encodingCode = e.mode == kModeBitField ? int16_t{1}
                                                  : EncodingCode(e.fieldType, e.encodeOption, e.formatIndex);
    }
    r.page = e.page;
    r.block = e.row;
    r.beginByte = e.beginByte;
    if (isBitMode(e.mode)) {
        r.beginBit = e.beginBit;
        r.numBits = shortOf(e.sizeText);
    } else {
        r.numBytes = shortOf(e.sizeText);
    }
    r.color = color;
    return r;
}

ItemPosition positionOf(const ItemRecord& r) {
    return {r.page, r.block, r.beginByte, r.numBytes, r.beginBit, r.numBits};
}

}  // namespace kestrin
