#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "items/ItemRecord.h"

namespace kestrin {

class Translator;

// What the database-update dialog holds for one update: the host field written back after
// encoding and the function that gives its value.
struct DbUpdateEntries {
    std::string function{kFunctionConstant};  // "Constant", "Count" or "CardSnNr"
    std::string dbField;                      // the chosen field's database name; empty: none chosen
    int16_t column = -1;                      // its column in the host project
    std::string constantText, countNumberText, countStepText;
    bool hexadecimal = false;  // a CardSnNr written as hexadecimal text
    bool operator==(const DbUpdateEntries&) const = default;
};

enum class DbUpdateBox { None, Fields, ConstantValue, CountNumber, CountStep };

struct DbUpdateViolation {
    int32_t textId = 0;
    std::string message;
    DbUpdateBox focus = DbUpdateBox::None;
};

// Every number box of the dialog takes a byte, as the item editor's function boxes do.
inline constexpr int64_t kDbUpdateValueMax = 255;

// The first thing that keeps the update from being stored: no field chosen, or a number box
// of the chosen function out of its range.
std::optional<DbUpdateViolation> dbUpdateViolation(const DbUpdateEntries& entries, const Translator& translator);

// The record OK writes. Count keeps its start number in parameter 1 and its step in
// parameter 2; numbers are stored as plain decimals.
ItemRecord dbUpdateRecordOf(const DbUpdateEntries& entries);
// The entries a stored update presets the dialog with.
DbUpdateEntries dbUpdateEntriesOf(const ItemRecord& record);

}  // namespace kestrin
