#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "EditorRecord.h"
#include "ItemRecord.h"

namespace kestrin {

class RecordArray;
class Translator;

// A column header: a text number with its default, or a fixed word (id 0).
struct GridHeader {
    int32_t textId;
    std::string_view defaultText;
    int32_t widthTwips;
};

// Columns 0 to 8 of the item grid; column 3 is always the English word "Page".
const std::vector<GridHeader>& itemGridHeaders();
// Columns 0 to 3 of the database-update grid.
const std::vector<GridHeader>& dbUpdateGridHeaders();
// The translated header text of a column (empty for column 0).
std::string headerText(const GridHeader& header, const Translator& translator);

// One row of the item grid as its cells show it; cells a kind leaves empty are nothing.
struct ItemRow {
    std::string name;
    std::string kind;
    int16_t page = 0;
    int16_t block = 0;
    int16_t beginByte = 0;
    std::optional<int16_t> bytes;
    std::optional<int16_t> beginBit;
    std::optional<int16_t> bits;
};

struct DbUpdateRow {
    std::string field;
    std::string function;
    std::string summary;
};

ItemRow itemRowOf(const ItemRecord& r);
// A row read back the way an item editor receives it: only the cells its kind fills; a
// "Binary Field" leaves the kind code at its default.
EditorRecord editorRecordOf(const ItemRow& row);
// The readable summary of an update function's parameters.
std::string dbUpdateSummary(std::string_view function, const std::string& param1, const std::string& param2,
                            const Translator& translator);
DbUpdateRow dbUpdateRowOf(const ItemRecord& r, const Translator& translator);

// The rows of both grids, in record order.
std::vector<ItemRow> itemRows(const RecordArray& records);
std::vector<DbUpdateRow> dbUpdateRows(const RecordArray& records, const Translator& translator);

}  // namespace kestrin
