#include "ItemRecord.h"

namespace kestrin {

std::string_view kindWord(const ItemRecord& r) {
    if (r.isBinary) return kKindBinaryField;
    if (r.isSimpleBitFunction) return kKindSimpleBitFunction;
    if (r.isBitFunction) return kKindBitFunction;
    if (!r.isFunction) return r.isBit ? kKindBitField : kKindField;
    return kKindFunction;
}

bool kindShowsBytes(std::string_view kind) {
    return kind == kKindField || kind == kKindFunction || kind == kKindBinaryField || kind == kKindSimpleBitFunction;
}

bool kindShowsBits(std::string_view kind) {
    return kind == kKindBitField || kind == kKindBitFunction || kind == kKindSimpleBitFunction;
}

int kindCode(std::string_view kind) {
    if (kind == kKindField) return 0;
    if (kind == kKindFunction || kind == kKindSimpleBitFunction) return 1;
    if (kind == kKindBitField) return 2;
    if (kind == kKindBitFunction) return 3;
    return -1;
}

bool isByteSized(const ItemRecord& r) {
    return !r.isBit && !r.isBitFunction && !r.isSimpleBitFunction;
}

bool isChecksum(const ItemRecord& r) {
    return r.name == kFunctionChecksum;
}

bool isCombinedField(const ItemRecord& r) {
    return !r.isFunction && r.name.find(kCombinedFieldSeparator) != std::string::npos;
}

}  // namespace kestrin
