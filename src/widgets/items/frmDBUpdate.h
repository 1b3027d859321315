#pragma once
#include <QDialog>
#include <array>
#include <cstdint>
#include <string>

#include "DialogContext.h"

class QLabel;
class QLineEdit;
class QRadioButton;
class QTableWidget;

namespace kestrin {

// Adds or edits one database-update item: a host database field that the host writes back
// after a card is encoded, with the function that gives the value ("Constant" with its
// value, "Count" with start number and step, "CardSnNr" as decimal or hexadecimal text).
//
// editIndex is the record index of the row being edited; -1 (or an index that holds no
// database-update record) adds a new one. OK writes exactly one record, in place when
// editing; Cancel leaves the records untouched. Count keeps the start number in param1
// and the step in param2, the order the database-update grid summary reads them in.
class frmDBUpdate : public QDialog {
    Q_OBJECT
public:
    frmDBUpdate(DialogContext ctx, int32_t editIndex = -1, QWidget* parent = nullptr);

    // False after OK, true after Cancel (and until the dialog is closed with OK).
    bool Cancelled = true;

private:
    void buildControls();
    void presetFrom(int32_t index);
    void fieldChosen(int row);
    void functionChosen();
    int chosenFunction() const;
    bool boxInRange(QLineEdit& box, int64_t min, int64_t max);
    void okClicked();
    void cancelClicked();

    DialogContext ctx_;
    int32_t editIndex_ = -1;
    std::string dbField_;      // the chosen field's database field name
    int16_t dbColumn_ = -1;    // and its column in the host project

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
