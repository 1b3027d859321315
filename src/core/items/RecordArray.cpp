#include "RecordArray.h"

namespace kestrin {

bool RecordArray::add(const ItemRecord& record) {
    if (size() >= kMaxRecords) return false;
    records_.push_back(record);
    return true;
}

uint16_t RecordArray::findByPosition(const ItemPosition& pos, std::string_view name, std::string_view kind) const {
    const bool bytes = kindShowsBytes(kind) || !kindShowsBits(kind);
    const bool bits = kindShowsBits(kind);
    for (size_t i = 0; i < records_.size(); ++i) {
        const ItemRecord& r = records_[i];
        if (r.isDbUpdate || r.page != pos.page || r.block != pos.block || r.beginByte != pos.beginByte) continue;
        if (bytes && r.numBytes != pos.numBytes) continue;
        if (bits && (r.beginBit != pos.beginBit || r.numBits != pos.numBits)) continue;
        if (r.name != name || kindWord(r) != kind) continue;
        return static_cast<uint16_t>(i);
    }
    return kNone;
}

bool RecordArray::removeByPosition(const ItemPosition& pos, std::string_view name, std::string_view kind) {
    const uint16_t index = findByPosition(pos, name, kind);
    if (index == kNone) return false;
    removeAt(index);
    return true;
}

void RecordArray::removeAt(int32_t index) {
    if (index < 0 || index >= size()) return;
    if (index != size() - 1) records_[static_cast<size_t>(index)] = std::move(records_.back());
    records_.pop_back();
}

int32_t RecordArray::indexOfItemRow(int32_t row) const {
    int32_t count = 0;
    for (size_t i = 0; i < records_.size(); ++i)
        if (!records_[i].isDbUpdate && ++count == row) return static_cast<int32_t>(i);
    return -1;
}

int32_t RecordArray::indexOfDbUpdateRow(int32_t row) const {
    int32_t count = 0;
    for (size_t i = 0; i < records_.size(); ++i)
        if (records_[i].isDbUpdate && ++count == row) return static_cast<int32_t>(i);
    return -1;
}

}  // namespace kestrin
