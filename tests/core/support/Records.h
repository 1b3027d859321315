#pragma once
#include <string>

#include "card/CIClass.h"
#include "items/ItemRecord.h"
#include "items/RecordArray.h"

namespace kestrin::test {

inline ItemRecord field(std::string name, int page, int block, int byte, int bytes, int code = 0, int color = 100) {
    ItemRecord r;
    r.name = std::move(name);
    r.page = static_cast<int16_t>(page), r.block = static_cast<int16_t>(block), r.beginByte = static_cast<int16_t>(byte);
    r.numBytes = static_cast<int16_t>(bytes), r.encodingCode = static_cast<int16_t>(code), r.color = color;
    return r;
}

inline ItemRecord bitField(std::string name, int page, int block, int byte, int bit, int bits, int color = 200) {
    ItemRecord r;
    r.isBit = true, r.name = std::move(name);
    r.page = static_cast<int16_t>(page), r.block = static_cast<int16_t>(block), r.beginByte = static_cast<int16_t>(byte);
    r.beginBit = static_cast<int16_t>(bit), r.numBits = static_cast<int16_t>(bits), r.color = color;
    return r;
}

inline ItemRecord function(std::string word, std::string p1, std::string p2, std::string p3, int page, int block, int byte,
                           int bytes, int color = 300) {
    ItemRecord r = field(std::move(word), page, block, byte, bytes, 0, color);
    r.isFunction = true, r.param1 = std::move(p1), r.param2 = std::move(p2), r.param3 = std::move(p3);
    return r;
}

inline ItemRecord bitFunction(std::string word, std::string p1, int page, int block, int byte, int bit, int bits,
                              int color = 400) {
    ItemRecord r = bitField(std::move(word), page, block, byte, bit, bits, color);
    r.isBit = false, r.isBitFunction = true, r.param1 = std::move(p1);
    return r;
}

inline ItemRecord dbUpdate(std::string dbField, std::string word, std::string p1, std::string p2 = {}) {
    ItemRecord r;
    r.isDbUpdate = true, r.dbFieldName = std::move(dbField), r.name = std::move(word);
    r.param1 = std::move(p1), r.param2 = std::move(p2);
    return r;
}

inline CIClass chipOf(IClassType type) {
    CIClass card;
    card.setChipSize(type);
    return card;
}

// A record array holding these records in this order.
inline RecordArray recordsOf(const std::vector<ItemRecord>& list) {
    RecordArray records;
    for (const auto& r : list) records.add(r);
    return records;
}

}  // namespace kestrin::test
