#include "control/ItemGridModel.h"

#include "items/GridRows.h"
#include "items/ItemRecord.h"
#include "items/RecordArray.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

// A cell written from a 16-bit number reads back as one; anything else reads as 0.
int16_t toInt16(const QString& text) {
    bool ok = false;
    const short value = text.toShort(&ok);
    return ok ? static_cast<int16_t>(value) : int16_t{0};
}

}  // namespace

ItemGridModel::ItemGridModel(QObject* parent) : TextGridModel(itemGridHeaders(), parent) {}

void ItemGridModel::rebuild(const RecordArray& records, const Translator& translator) {
    std::vector<Row> texts;
    for (const ItemRow& row : itemRows(records)) {
        Row& cells = texts.emplace_back(emptyRow());
        cells[ColName] = toQString(row.name);
        cells[ColKind] = toQString(row.kind);
        cells[ColPage] = QString::number(row.page);
        cells[ColBlock] = QString::number(row.block);
        cells[ColBeginByte] = QString::number(row.beginByte);
        if (row.bytes) cells[ColBytes] = QString::number(*row.bytes);
        if (row.beginBit) cells[ColBeginBit] = QString::number(*row.beginBit);
        if (row.bits) cells[ColBits] = QString::number(*row.bits);
    }
    replaceRows(std::move(texts), translator);
}

EditorRecord ItemGridModel::editorRecordOfRow(int row) const {
    EditorRecord record;
    if (itemCount() == 0 || cellText(row, ColPage).isEmpty()) return record;

    const Row& cells = rowAt(row);
    record.editing = true;
    record.fieldsAndFunctions = true;
    record.page = toInt16(cells[ColPage]);
    record.name = cells[ColName].toStdString();
    record.block = toInt16(cells[ColBlock]);
    record.beginByte = toInt16(cells[ColBeginByte]);
    record.kindWord = cells[ColKind].toStdString();
    if (const int code = kindCode(record.kindWord); code >= 0) record.kindCode = code;
    // Only the cells the kind fills are read, so a row written here reads back whole.
    if (kindShowsBytes(record.kindWord)) record.numBytes = toInt16(cells[ColBytes]);
    if (kindShowsBits(record.kindWord)) {
        record.beginBit = toInt16(cells[ColBeginBit]);
        record.numBits = toInt16(cells[ColBits]);
    }
    return record;
}

}  // namespace kestrin
