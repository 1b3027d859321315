#pragma once
#include <QDialog>
#include <array>
#include <cstdint>

#include "rules/DatabaseUpdateRules.h"

class QLabel;
class QLineEdit;
class QRadioButton;
class QTableWidget;

namespace kestrin {

class LayoutDocument;

// Adds or edits one database-update item: a host database field that the host writes back
// after a card is encoded, with the function that gives the value ("Constant" with its
// value, "Count" with start number and step, "CardSnNr" as decimal or hexadecimal text).
//
// editIndex is the record index of the row being edited; -1 (or an index that holds no
// database-update record) adds a new one. OK hands the entries to the layout document, which
// checks them and writes exactly one record, in place when editing; Cancel changes nothing.
class frmDBUpdate : public QDialog {
    Q_OBJECT
public:
    frmDBUpdate(LayoutDocument& doc, int32_t editIndex = -1, QWidget* parent = nullptr);

    // False after OK, true after Cancel (and until the dialog is closed with OK).
    bool Cancelled = true;

    // The dialog's controls read into one request.
    DbUpdateEntries entries() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void buildControls();
    void presetFrom(const DbUpdateEntries& entries);
    void fieldChosen(int row);
    void functionChosen();
    int chosenFunction() const;
    bool boxLeft(QLineEdit& box);
    void okClicked();
    void cancelClicked();

    LayoutDocument& doc_;
    int32_t editIndex_ = -1;
    std::string dbField_;    // the chosen field's database field name
    int16_t dbColumn_ = -1;  // and its column in the host project
    bool checkingBox_ = false;
    QLineEdit* refusedBox_ = nullptr;  // refused when left and not edited since
    QWidget* cmdCancel_ = nullptr;

    QTableWidget* grdFields_ = nullptr;
    QLineEdit* txtSelectedField_ = nullptr;
    std::array<QRadioButton*, 3> optFunction_{};
    std::array<QRadioButton*, 2> optProperty_{};
    QLineEdit* txtConstantValue_ = nullptr;
    QLineEdit* txtCountNumber_ = nullptr;
    QLineEdit* txtCountStep_ = nullptr;
    QLabel* lblConstantValue_ = nullptr;
    QLabel* lblCountNumber_ = nullptr;
    QLabel* lblCountStep_ = nullptr;
};

}  // namespace kestrin
