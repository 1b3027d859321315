#include "control/DbUpdateGridModel.h"

#include "control/ItemGridModel.h"
#include "items/GridRows.h"
#include "items/RecordArray.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

QString toQString(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

}  // namespace

DbUpdateGridModel::DbUpdateGridModel(QObject* parent) : QAbstractTableModel(parent), m_rows(1) {
    setHeaders(Translator());
}

void DbUpdateGridModel::setHeaders(const Translator& translator) {
    const std::vector<GridHeader>& headers = dbUpdateGridHeaders();
    for (size_t c = 0; c < m_headers.size() && c < headers.size(); ++c)
        m_headers[c] = toQString(headerText(headers[c], translator));
}

void DbUpdateGridModel::rebuild(const RecordArray& records, const Translator& translator) {
    const std::vector<DbUpdateRow> rows = dbUpdateRows(records, translator);
    std::vector<Row> texts;
    texts.reserve(rows.empty() ? 1 : rows.size());
    for (const DbUpdateRow& row : rows) {
        Row& cells = texts.emplace_back();
        cells[ColField] = toQString(row.field);
        cells[ColFunction] = toQString(row.function);
        cells[ColSummary] = toQString(row.summary);
    }
    const int itemCount = static_cast<int>(texts.size());
    if (texts.empty()) texts.emplace_back();  // the grid always keeps its first data row

    beginResetModel();
    setHeaders(translator);
    m_rows = std::move(texts);
    m_itemCount = itemCount;
    endResetModel();
}

int DbUpdateGridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int DbUpdateGridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant DbUpdateGridModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    return m_rows[static_cast<size_t>(index.row())][static_cast<size_t>(index.column())];
}

QVariant DbUpdateGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal) {
        if (role != Qt::DisplayRole || section < 0 || section >= ColumnCount) return {};
        return m_headers[static_cast<size_t>(section)];
    }
    return QAbstractTableModel::headerData(section, orientation, role);
}

QString DbUpdateGridModel::cellText(int row, int column) const {
    if (row < 0 || row >= rowCount() || column < 0 || column >= ColumnCount) return {};
    return m_rows[static_cast<size_t>(row)][static_cast<size_t>(column)];
}

int DbUpdateGridModel::columnWidthPixels(int column, int dpi) const {
    const std::vector<GridHeader>& headers = dbUpdateGridHeaders();
    if (column < 0 || column >= static_cast<int>(headers.size())) return 0;
    return twipsToPixels(headers[static_cast<size_t>(column)].widthTwips, dpi);
}

}  // namespace kestrin
