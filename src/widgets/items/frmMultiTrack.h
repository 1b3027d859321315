#pragma once
#include <QDialog>
#include <optional>

#include "DialogContext.h"
#include "items/EditorRecord.h"
#include "items/ItemRecord.h"

class QComboBox;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QTableWidget;

namespace kestrin {

class CPage;
class HostFieldList;

// Lets only digits and backspace into a number box, whether typed or pasted; navigation
// and control keys pass untouched. Shared by the item dialogs.
void filterToDigits(QLineEdit& box);

// Fills a two-column grid ("<Field Name>", "<Field Type>") with the host project's database
// fields, one row each, selected by whole rows.
void fillFieldGrid(QTableWidget& grid, const DialogContext& ctx);

// Places one database field over several tracks as a "Binary Field" item: the operator
// picks the field, then page, block, begin byte, begin bit and the number of bytes.
//
// The dialog owns at most one record while it is open: the edited record (when opened for
// editing) or the one its last Apply stored. Apply replaces that record in its array slot,
// so applying twice moves the item rather than adding a copy; a refused Apply leaves the
// array exactly as it was.
//
// spinBytes is a QSpinBox drawn as a bare up/down control beside txtNrBytes; its value
// mirrors the box, from 1 to the bytes left in the page behind the chosen position.
class frmMultiTrack : public QDialog {
    Q_OBJECT
public:
    frmMultiTrack(DialogContext ctx, EditorRecord record, QWidget* parent = nullptr);

    // False after OK, true after Cancel (and until the dialog is closed with OK).
    bool Cancelled = true;

private:
    void buildControls();
    void setCaptions();
    void fillPages();
    void fillRows(int keepBlock);
    void presetFrom(const EditorRecord& record);
    void selectComboData(QComboBox& box, int value);
    void updateSpinLimits();
    void paintPreview();
    void markChanged();
    int currentPageNumber() const;
    const CPage* currentPage() const;

    void fieldChosen(int row);
    void pageChosen();
    void nrBytesEdited(const QString& text);
    void spinChanged(int value);
    bool apply();
    void okClicked();
    void cancelClicked();

    DialogContext ctx_;
    std::optional<ItemRecord> owned_;  // the record this dialog placed or edits
    bool loading_ = true;

    QTableWidget* grdFields_ = nullptr;
    QLineEdit* txtSelectedField_ = nullptr;
    QComboBox* cboPage_ = nullptr;
    QComboBox* cboRow_ = nullptr;
    QComboBox* cboBeginByte_ = nullptr;
    QComboBox* cboBeginBit_ = nullptr;
    QLineEdit* txtNrBytes_ = nullptr;
    QSpinBox* spinBytes_ = nullptr;
    QTableWidget* grdPreview_ = nullptr;
    QPushButton* cmdApply_ = nullptr;
    QPushButton* cmdOK_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
};

}  // namespace kestrin
