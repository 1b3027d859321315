#include "control/ItemGridModel.h"

#include "items/GridRows.h"
#include "items/ItemRecord.h"
#include "items/RecordArray.h"
#include "text/Translator.h"

namespace kestrin {

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

}  // namespace kestrin
