#include "control/ItemGridModel.h"

#include "items/GridRows.h"
#include "items/ItemRecord.h"
#include "items/RecordArray.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

QString toQString(const std::string& text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// A cell written from a 16-bit number reads back as one; anything else reads as 0.
int16_t toInt16(const QString& text) {
    bool ok = false;
    const short value = text.toShort(&ok);
    return ok ? static_cast<int16_t>(value) : int16_t{0};
}

}  // namespace

int twipsToPixels(int twips, int dpi) {
    return static_cast<int>(static_cast<long long>(twips) * dpi / 1440);
}

ItemGridModel::ItemGridModel(QObject* parent) : QAbstractTableModel(parent), m_rows(1) {
    setHeaders(Translator());
}

void ItemGridModel::setHeaders(const Translator& translator) {
    const std::vector<GridHeader>& headers = itemGridHeaders();
    for (size_t c = 0; c < m_headers.size() && c < headers.size(); ++c)
        m_headers[c] = toQString(headerText(headers[c], translator));
}

void ItemGridModel::rebuild(const RecordArray& records, const Translator& translator) {
    const std::vector<ItemRow> rows = itemRows(records);
    std::vector<Row> texts;
    texts.reserve(rows.empty() ? 1 : rows.size());
    for (const ItemRow& row : rows) {
        Row& cells = texts.emplace_back();
        cells[ColName] = toQString(row.name);
        cells[ColKind] = toQString(row.kind);
        cells[ColPage] = QString::number(row.page);
        cells[ColBlock] = QString::number(row.block);
        cells[ColBeginByte] = QString::number(row.beginByte);
        if (row.bytes) cells[ColBytes] = QString::number(*row.bytes);
        if (row.beginBit) cells[ColBeginBit] = QString::number(*row.beginBit);
        if (row.bits) cells[ColBits] = QString::number(*row.bits);
    }
    const int itemCount = static_cast<int>(texts.size());
    if (texts.empty()) texts.emplace_back();  // the grid always keeps its first data row

    beginResetModel();
    setHeaders(translator);
    m_rows = std::move(texts);
    m_itemCount = itemCount;
    endResetModel();
}

int ItemGridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int ItemGridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant ItemGridModel::data(const QModelIndex& index, int role) const {
    if (role != Qt::DisplayRole || !checkIndex(index, CheckIndexOption::IndexIsValid)) return {};
    return m_rows[static_cast<size_t>(index.row())][static_cast<size_t>(index.column())];
}

QVariant ItemGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation == Qt::Horizontal) {
        if (role != Qt::DisplayRole || section < 0 || section >= ColumnCount) return {};
        return m_headers[static_cast<size_t>(section)];
    }
    return QAbstractTableModel::headerData(section, orientation, role);
}

QString ItemGridModel::cellText(int row, int column) const {
    if (row < 0 || row >= rowCount() || column < 0 || column >= ColumnCount) return {};
    return m_rows[static_cast<size_t>(row)][static_cast<size_t>(column)];
}

EditorRecord ItemGridModel::editorRecordOfRow(int row) const {
    EditorRecord record;
    if (m_itemCount == 0 || cellText(row, ColPage).isEmpty()) return record;

    const Row& cells = m_rows[static_cast<size_t>(row)];
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

int ItemGridModel::columnWidthPixels(int column, int dpi) const {
    const std::vector<GridHeader>& headers = itemGridHeaders();
    if (column < 0 || column >= static_cast<int>(headers.size())) return 0;
    return twipsToPixels(headers[static_cast<size_t>(column)].widthTwips, dpi);
}

}  // namespace kestrin
