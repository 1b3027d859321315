#include "control/DbUpdateGridModel.h"

#include "items/RecordArray.h"

namespace kestrin {

DbUpdateGridModel::DbUpdateGridModel(QObject* parent) : TextGridModel(dbUpdateGridHeaders(), parent) {}

void DbUpdateGridModel::rebuild(const RecordArray& records, const Translator& translator) {
    std::vector<Row> texts;
    for (const DbUpdateRow& row : dbUpdateRows(records, translator)) {
        Row& cells = texts.emplace_back(emptyRow());
        cells[ColField] = toQString(row.field);
        cells[ColFunction] = toQString(row.function);
        cells[ColSummary] = toQString(row.summary);
    }
    replaceRows(std::move(texts), translator);
}

}  // namespace kestrin
