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

std::vector<std::string> splitCombinedName(std::string_view name) {
    std::vector<std::string> parts;
    for (;;) {
        const size_t cut = name.find(kCombinedFieldSeparator);
        parts.emplace_back(name.substr(0, cut));
        if (cut == std::string_view::npos) return parts;
        name.remove_prefix(cut + kCombinedFieldSeparator.size());
    }
}

}  // namespace kestrin
