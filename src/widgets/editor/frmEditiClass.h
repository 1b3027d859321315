#pragma once
#include <QDialog>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "rules/EditorEntries.h"
#include "text/TextIds.h"

class QButtonGroup;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTableWidget;
class QWidget;

namespace kestrin {

class CIClass;
class CPage;
class LayoutDocument;

// The item editor: adds database fields, functions, bit fields or bit functions (by mode) to
// the card, or edits the record at editIndex. Every Apply hands the entries to the layout
// document, which validates the placement and writes the item; the dialog stays open for the
// next item until OK or Cancel.
//
// The size box's spin control "spinBytes" (likewise "spinRangeBytes" for the range count) is a
// pair of spin arrows: the text box stays the one place the value lives, so an empty box and
// the typing limits behave the same whether the operator types or spins.
class frmEditiClass : public QDialog {
    Q_OBJECT
public:
    frmEditiClass(LayoutDocument& doc, int32_t mode, int32_t editIndex = -1, QWidget* parent = nullptr);

    bool Cancelled = true;  // false after OK, true after Cancel or closing the window
    int appliedCount() const { return applied_; }
    int32_t mode() const { return mode_; }
    bool changed() const { return changed_; }

    // Runs Apply: validates the entries and writes the item; true when it was written.
    bool apply();
    // The controls read into plain entries (what Apply hands to the rules).
    EditorEntries entries() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Layout (frmEditiClassLayout.cpp).
    void buildControls();
    QWidget* buildFieldPane();
    QWidget* buildFunctionPane();
    QWidget* buildPropertiesFrame();
    QWidget* buildPositionFrame();
    QWidget* buildEncodeFrame();
    QWidget* buildButtons();
    QLineEdit* numberBox(const char* name);
    QWidget* spinPair(const char* name, QLineEdit* box);
    QRadioButton* option(const QString& baseName, int index, QButtonGroup* group);
    void setCaptions();
    QString text(int32_t id, const char* defaultText) const;
    QString text(const TextRef& ref) const;

    // Fields, position, encoding and the preview (frmEditiClass.cpp).
    void fillFieldGrid();
    void fillPages();
    void pageChosen();
    void positionChosen();
    void fieldSelectionChanged();
    void setEncodingOptions(int16_t fieldType);
    void encodeClicked(int option);
    void setFormatList(int option);
    void sizeEdited();
    void markChanged();
    void refreshApply();
    void repaintPreview();
    void newItem();
    void okClicked();
    void cancelClicked();
    void presetFromRecord();
    const CPage* currentPage() const;
    void setCurrentTextOf(QComboBox* box, int value);
    QLineEdit* boxOf(EditorBox box) const;

    // Functions and value boxes (EditorFunctionPane.cpp).
    void functionClicked(int index);
    void propertyClicked(int option);
    void countFirstValueClicked(int index);
    void showPropertyBoxes();
    void fillRangeLists();
    FunctionInput functionInput() const;
    void presetFunction(const FunctionInput& in);
    bool leaveValueBox(QLineEdit* box);
    bool leaveSizeBox();
    void filterBox(QLineEdit* box);
    int checkedProperty() const;

    LayoutDocument& doc_;
    const CIClass& card_;
    int32_t mode_;
    int32_t editIndex_;  // the record Apply replaces; -1 adds a new one
    bool filling_ = false;
    bool changed_ = false;
    int applied_ = 0;
    int16_t fieldType_ = -1;
    std::vector<int> chosenRows_;  // field grid rows in the order they were chosen

    // Fields.
    QTableWidget* grdFields_ = nullptr;
    QLineEdit* txtSelectedField_ = nullptr;
    QLabel* lblFieldFunction_ = nullptr;
    QGroupBox* fraFieldFunction_ = nullptr;
    // Functions.
    QButtonGroup* functionGroup_ = nullptr;
    std::array<QRadioButton*, 4> optFunction_{};
    QGroupBox* fraProperties_ = nullptr;
    QButtonGroup* propertyGroup_ = nullptr;
    std::array<QRadioButton*, 4> optProperty_{};
    QLineEdit* txtConstantValue_ = nullptr;
    QComboBox* cboFieldList_ = nullptr;
    QGroupBox* fraCountFirstValue_ = nullptr;
    QButtonGroup* countGroup_ = nullptr;
    std::array<QRadioButton*, 2> optCountFirstValue_{};
    QLineEdit* txtCountNumber_ = nullptr;
    QLineEdit* txtCountStep_ = nullptr;
    QLabel* lblCountStep_ = nullptr;
    QLineEdit* txtPolynom_ = nullptr;
    QLabel* lblPolynom_ = nullptr;
    QLineEdit* txtStartValue_ = nullptr;
    QLabel* lblStartValue_ = nullptr;
    QGroupBox* fraRange_ = nullptr;
    QComboBox* cboRangeBeginRow_ = nullptr;
    QComboBox* cboRangeBeginByte_ = nullptr;
    QLabel* lblRangeBeginRow_ = nullptr;
    QLabel* lblRangeBeginByte_ = nullptr;
    QLabel* lblRangeBytesCount_ = nullptr;
    QLineEdit* txtRangeBytesCount_ = nullptr;
    // Position and size.
    QGroupBox* fraAddTo_ = nullptr;
    QComboBox* cboPage_ = nullptr;
    QComboBox* cboRow_ = nullptr;
    QComboBox* cboBeginByte_ = nullptr;
    QComboBox* cboBeginBit_ = nullptr;
    QLabel* lblPage_ = nullptr;
    QLabel* lblRow_ = nullptr;
    QLabel* lblBeginByte_ = nullptr;
    QLabel* lblBeginBit_ = nullptr;
    QLineEdit* txtNrBytes_ = nullptr;
    QLabel* lblNrOfBytes_ = nullptr;
    // Encoding.
    QGroupBox* fraEncode_ = nullptr;
    QButtonGroup* encodeGroup_ = nullptr;
    std::array<QRadioButton*, 4> optEncode_{};
    QComboBox* cboFormat_ = nullptr;
    QLabel* lblFormat_ = nullptr;
    // Preview and commands.
    QTableWidget* grdPreview_ = nullptr;
    QPushButton* cmdApply_ = nullptr;
    QPushButton* cmdOK_ = nullptr;
    QPushButton* cmdNew_ = nullptr;
    QPushButton* cmdRemove_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
};

}  // namespace kestrin
