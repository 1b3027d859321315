#pragma once
#include <QAbstractTableModel>
#include <QString>
#include <array>
#include <vector>

namespace kestrin {

class RecordArray;
class Translator;

// The database-update grid: one row per database-update record, in record order, with the
// updated field, the function word and a readable summary of the function's parameters.
// Model row r is grid row r + 1; column 0 is the narrow fixed column and always empty.
// Without updates the grid still shows one row whose cells are all empty.
class DbUpdateGridModel : public QAbstractTableModel {
    Q_OBJECT
public:
    static constexpr int ColumnCount = 4;
    enum Column { ColFixed = 0, ColField, ColFunction, ColSummary };

    // Starts with the default headers (no language library) and the single empty row.
    explicit DbUpdateGridModel(QObject* parent = nullptr);

    // Rebuilds headers and rows from the records; views see one model reset.
    void rebuild(const RecordArray& records, const Translator& translator);

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    int columnCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

    // How many update rows the grid shows (0 for the single empty row).
    int itemCount() const { return m_itemCount; }
    // The text of one cell, empty outside the table.
    QString cellText(int row, int column) const;

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
