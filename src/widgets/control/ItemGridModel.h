#pragma once
#include <QAbstractTableModel>
#include <QString>
#include <array>
#include <vector>

#include "items/EditorRecord.h"

namespace kestrin {

class RecordArray;
class Translator;

// Widths in the grid tables are kept in twips (1440 an inch); this gives whole pixels at
// the widget's logical DPI, rounded down (400 twips at 96 DPI give 26 pixels).
int twipsToPixels(int twips, int dpi);

// The item grid: the fields and functions of a layout, one row per item record that is not
// a database update, in record order. Model row r is grid row r + 1 (the grid's header row
// is the horizontal header). Column 0 is the narrow fixed column and always empty.
// An empty layout still shows one row whose cells are all empty.
class ItemGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    static constexpr int ColumnCount = 9;
    enum Column { ColFixed = 0, ColName, ColKind, ColPage, ColBlock, ColBeginByte, ColBytes, ColBeginBit, ColBits };

    // Starts with the default headers (no language library) and the single empty row.
    explicit ItemGridModel(QObject* parent = nullptr);

    // Rebuilds headers and rows from the records; views see one model reset.
    void rebuild(const RecordArray& records, const Translator& translator);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // How many item rows the grid shows (0 for the single empty row).
    int itemCount() const { return m_itemCount; }
    // The text of one cell, empty outside the table.
    QString cellText(int row, int column) const;

    // Reads a row back the way an item editor receives it. A row whose page cell is empty
    // (or a row outside the table) is no item: editing stays false, so the caller adds a
    // new field instead. A "Binary Field" leaves kindCode at its default.
    EditorRecord editorRecordOfRow(int row) const;

    // The width of a column in pixels at the given logical DPI; 0 outside the table.
    int columnWidthPixels(int column, int dpi) const;

private:
    using Row = std::array<QString, ColumnCount>;
    void setHeaders(const Translator& translator);

    std::array<QString, ColumnCount> m_headers;
    std::vector<Row> m_rows;
    int m_itemCount = 0;
};

}  // namespace kestrin
