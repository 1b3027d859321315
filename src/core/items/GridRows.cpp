#include "GridRows.h"

#include "RecordArray.h"
#include "text/Translator.h"

namespace kestrin {

namespace {
constexpr TextRef kTextHexadecimal{3109, "<Hexadecimal>"};
}  // namespace

const std::vector<GridHeader>& itemGridHeaders() {
    static const std::vector<GridHeader> headers = {
        {0, "", 400},
        {3113, "<Field(s) or Function>", 3500},
        {3118, "<Field Type>", 1000},
        {kTextPage.id, kTextPage.defaultText, 1000},
        {kTextBlock.id, kTextBlock.defaultText, 1000},
        {kTextBeginByte.id, kTextBeginByte.defaultText, 1000},
        {kTextNoOfBytes.id, kTextNoOfBytes.defaultText, 1000},
        {kTextBeginBit.id, kTextBeginBit.defaultText, 1000},
        {4642, "<No. of Bits>", 1000},
    };
    return headers;
}

const std::vector<GridHeader>& dbUpdateGridHeaders() {
    static const std::vector<GridHeader> headers = {
        {0, "", 400},
        {3119, "<Field Name>", 3000},
        {kTextFunction.id, kTextFunction.defaultText, 3000},
        {3120, "<Function Properties>", 5000},
    };
    return headers;
}

std::string headerText(const GridHeader& header, const Translator& translator) {
    if (header.textId == 0) return {};
    // The page column is fetched like the others and then always shows the English word.
    std::string text = translator.text(header.textId, header.defaultText);
    if (header.textId == kTextPage.id) text = "Page";
    return text;
}

ItemRow itemRowOf(const ItemRecord& r) {
    ItemRow row;
    row.name = r.name;
    row.kind = std::string(kindWord(r));
    row.page = r.page;
    row.block = r.block;
    row.beginByte = r.beginByte;
    // Bit fields and bit functions hand their bit count on as the byte count too; the
    // row shows only the cells its kind uses.
    const bool bitKind = row.kind == kKindBitField || row.kind == kKindBitFunction;
    if (kindShowsBytes(row.kind)) row.bytes = bitKind ? r.numBits : r.numBytes;
    if (kindShowsBits(row.kind)) {
        row.beginBit = r.beginBit;
        row.bits = r.numBits;
    }
    return row;
}

EditorRecord editorRecordOf(const ItemRow& row) {
    EditorRecord record;
    record.editing = true;
    record.fieldsAndFunctions = true;
    record.page = row.page;
    record.name = row.name;
    record.block = row.block;
    record.beginByte = row.beginByte;
    record.kindWord = row.kind;
    if (const int code = kindCode(row.kind); code >= 0) record.kindCode = code;
    if (kindShowsBytes(row.kind)) record.numBytes = row.bytes.value_or(0);
    if (kindShowsBits(row.kind)) {
        record.beginBit = row.beginBit.value_or(0);
        record.numBits = row.bits.value_or(0);
    }
    return record;
}

std::string dbUpdateSummary(std::string_view function, const std::string& param1, const std::string& param2,
                            const Translator& translator) {
    if (function == kFunctionConstant) return translator.text(kTextValue) + ": " + param1 + ".";
    if (function == kFunctionCount)
        return translator.text(kTextStep) + ": " + param1 + "." + " " + translator.text(kTextStartValue) + ": " +
               param2 + ".";
    if (function == kFunctionCardSnNr)
        return param1.empty() || param1 == "0" ? translator.text(kTextDecimal) : translator.text(kTextHexadecimal);
    return {};
}

DbUpdateRow dbUpdateRowOf(const ItemRecord& r, const Translator& translator) {
    return {r.dbFieldName, r.name, dbUpdateSummary(r.name, r.param1, r.param2, translator)};
}

std::vector<ItemRow> itemRows(const RecordArray& records) {
    std::vector<ItemRow> rows;
    for (const ItemRecord& r : records)
        if (!r.isDbUpdate) rows.push_back(itemRowOf(r));
    return rows;
}

std::vector<DbUpdateRow> dbUpdateRows(const RecordArray& records, const Translator& translator) {
    std::vector<DbUpdateRow> rows;
    for (const ItemRecord& r : records)
        if (r.isDbUpdate) rows.push_back(dbUpdateRowOf(r, translator));
    return rows;
}

}  // namespace kestrin
