#pragma once
#include <QAbstractTableModel>
#include <QString>
#include <vector>

#include "items/GridRows.h"

namespace kestrin {

class Translator;

QString toQString(const std::string& text);

// A grid of plain texts with translated headers, rebuilt whole from the records. Model row
// r is grid row r + 1 (the grid's header row is the horizontal header); column 0 is the
// narrow fixed column and always empty. With nothing to show the grid keeps one empty row.
class TextGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // How many rows the grid shows (0 for the single empty row).
    int itemCount() const { return m_itemCount; }
    // The width of a column (kept in twips) in pixels at the given logical DPI; 0 outside the table.
    int columnWidthPixels(int column, int dpi) const;

protected:
    using Row = std::vector<QString>;
    // Starts with the default headers (no language library) and the single empty row.
    TextGridModel(const std::vector<GridHeader>& headers, QObject* parent);
    Row emptyRow() const { return Row(m_columns.size()); }
    // Replaces headers and rows; views see one model reset.
    void replaceRows(std::vector<Row> rows, const Translator& translator);
    const Row& rowAt(int row) const { return m_rows[static_cast<size_t>(row)]; }

private:
    const std::vector<GridHeader>& m_columns;
    std::vector<QString> m_headers;
    std::vector<Row> m_rows;
    int m_itemCount = 0;
};

}  // namespace kestrin
