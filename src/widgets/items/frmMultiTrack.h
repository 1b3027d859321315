#pragma once
#include <QDialog>

#include "items/ItemRecord.h"
#include "rules/MultiTrackValidation.h"

class QComboBox;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QTableWidget;

namespace kestrin {

class CIClass;
class CPage;
class LayoutDocument;

// Places one database field over several tracks as a "Binary Field" item: the operator
// picks the field, then page, block, begin byte, begin bit and the number of bytes.
//
// The dialog owns at most one record while it is open: the edited record (when opened for
// editing) or the one its last Apply stored. Apply hands the entries to the layout document,
// which replaces that record in its slot, so applying twice moves the item rather than adding
// a copy; a refused Apply leaves the records exactly as they were.
//
// spinBytes is a QSpinBox drawn as a bare up/down control beside txtNrBytes; its value
// mirrors the box, from 1 to the bytes left in the page behind the chosen position.
class frmMultiTrack : public QDialog {
    Q_OBJECT
public:
    frmMultiTrack(LayoutDocument& doc, int32_t editIndex = -1, QWidget* parent = nullptr);

    // False after OK, true after Cancel (and until the dialog is closed with OK).
    bool Cancelled = true;

private:
    void buildControls();
    void setCaptions();
    void fillPages();
    void fillRows(int keepBlock);
    void presetFrom(const ItemRecord& record);
    MultiTrackRequest request() const;
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

    LayoutDocument& doc_;
    const CIClass& card_;
    int32_t owned_;  // the record this dialog placed or edits; -1 before the first Apply
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
