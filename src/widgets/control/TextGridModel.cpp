#include "control/TextGridModel.h"

#include "base/Twips.h"
#include "text/Translator.h"

namespace kestrin {

QString toQString(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

TextGridModel::TextGridModel(const std::vector<GridHeader>& headers, QObject* parent)
    : QAbstractTableModel(parent), m_columns(headers) {
    replaceRows({}, Translator());
}

void TextGridModel::replaceRows(std::vector<Row> rows, const Translator& translator) {
    const int count = static_cast<int>(rows.size());
    if (rows.empty()) rows.push_back(emptyRow());  // the grid always keeps its first data row
    beginResetModel();
    m_headers.clear();
    for (const GridHeader& h : m_columns) m_headers.push_back(toQString(headerText(h, translator)));
    m_rows = std::move(rows);
    m_itemCount = count;
    endResetModel();
}

int TextGridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int TextGridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_columns.size());
}

QVariant TextGridModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    return m_rows[static_cast<size_t>(index.row())][static_cast<size_t>(index.column())];
}

QVariant TextGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal) {
        if (role != Qt::DisplayRole || section < 0 || section >= columnCount()) return {};
        return m_headers[static_cast<size_t>(section)];
    }
    return QAbstractTableModel::headerData(section, orientation, role);
}

int TextGridModel::columnWidthPixels(int column, int dpi) const {
    if (column < 0 || column >= columnCount()) return 0;
    return twipsToPixels(m_columns[static_cast<size_t>(column)].widthTwips, dpi);
}

}  // namespace kestrin
