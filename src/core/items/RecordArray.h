#pragma once
#include <cstdint>
#include <string_view>
#include <vector>

#include "ItemRecord.h"

namespace kestrin {

// Where an item stands, as the item grid shows it; the values a kind does not show are
// not compared when a record is looked up by position.
struct ItemPosition {
    int16_t page = 0;
    int16_t block = 0;
    int16_t beginByte = 0;
    int16_t numBytes = 0;
    int16_t beginBit = 0;
    int16_t numBits = 0;
};

// The layout's records, indexed from 0 with a highest used index of -1 while empty.
// Removing a record moves the last record into its place, so order is not kept.
class RecordArray {
public:
    static constexpr int32_t kMaxRecords = 32767;
    static constexpr uint16_t kNone = 65535;

    int16_t highestIndex() const { return static_cast<int16_t>(static_cast<int32_t>(records_.size()) - 1); }
    int32_t size() const { return static_cast<int32_t>(records_.size()); }
    bool empty() const { return records_.empty(); }

    // Appends a record; false when the array is full.
    bool add(const ItemRecord& record);
    void clear() { records_.clear(); }
    void reserve(size_t n) { records_.reserve(n); }

    // The first record in array order with these values, name and kind word; kNone when none.
    uint16_t findByPosition(const ItemPosition& pos, std::string_view name, std::string_view kind) const;
    // Removes that record (the last record takes its place); false when there was none.
    bool removeByPosition(const ItemPosition& pos, std::string_view name, std::string_view kind);
    // Removes the record at index with the same move-the-last-record rule.
    void removeAt(int32_t index);

    // Array index of the record shown in a 1-based row of the item grid or of the
    // database-update grid; -1 when the row shows no record.
    int32_t indexOfItemRow(int32_t row) const;
    int32_t indexOfDbUpdateRow(int32_t row) const;

    const ItemRecord& operator[](int32_t i) const { return records_[static_cast<size_t>(i)]; }
    ItemRecord& operator[](int32_t i) { return records_[static_cast<size_t>(i)]; }
    std::vector<ItemRecord>::const_iterator begin() const { return records_.begin(); }
    std::vector<ItemRecord>::const_iterator end() const { return records_.end(); }
    const std::vector<ItemRecord>& records() const { return records_; }

private:
    std::vector<ItemRecord> records_;
};

}  // namespace kestrin
