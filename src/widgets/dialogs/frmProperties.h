#pragma once
#include <QDialog>
#include <array>
#include <memory>

#include "rules/LayoutPropertiesRules.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTabWidget;

namespace kestrin {

class CIClass;
class LayoutDocument;
class Prompter;
class RecordArray;
class Translator;

// The properties of the layout as a whole: chip type, HID application, bitwise encoding
// and, for the eight-page chip, the application boundary of every page.
//
// Use: construct, hand over the caller's copy of the card with setCard(), exec(), then read
// Cancelled (true: drop Card) and Unchanged (false: the layout was modified by OK).
//
// Every way of closing the dialog (OK, Cancel or Escape, the window's close button) ends in
// done(), which writes the controls back into Card. Closing with the window button therefore
// leaves Cancelled false and Unchanged true, and the caller keeps the written-back copy
// without the OK checks. A null Card is created on write-back.
class frmProperties : public QDialog {
    Q_OBJECT
public:
    explicit frmProperties(const LayoutDocument& doc, QWidget* parent = nullptr);
    ~frmProperties() override;

    // Takes the card to edit and fills the controls from it; a null card fills nothing.
    void setCard(std::unique_ptr<CIClass> card);

    bool Cancelled = false;
    bool Unchanged = false;
    std::unique_ptr<CIClass> Card;

    // Runs the write-back on every close before the dialog goes away.
    void done(int result) override;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildControls();
    QWidget* buildGeneralTab();
    QWidget* buildBoundaryTab();
    void setCaptions();
    void fillFromCard();
    void lockChipTypeWithItems();
    void chipTypeClicked();
    void updateBoundaryTab();
    BoundaryTexts boundaryTexts() const;
    void paintBox(QLineEdit& box, const QColor& back, const QColor& fore);
    bool boxLeft(QLineEdit& box);
    void writeBack();
    void okClicked();
    void cancelClicked();
    QString text(int32_t id, const char* defaultText) const;

    const RecordArray& records_;
    const Translator& translator_;
    Prompter& prompter_;
    bool checkingBox_ = false;  // a refused box pulls the focus back without checking again
    QLineEdit* refusedBox_ = nullptr;  // refused and not edited since

    QTabWidget* tabIClass_ = nullptr;
    std::array<QRadioButton*, 2> optChipType_{};
    QComboBox* cboMemoryType_ = nullptr;
    QCheckBox* chkICHID_ = nullptr;
    QCheckBox* chkICBitwise_ = nullptr;
    std::array<QLabel*, 8> lblPage_{};
    std::array<QLineEdit*, 8> txtBoundary_{};
    QPushButton* cmdOK_ = nullptr;
    QPushButton* cmdCancel_ = nullptr;
};

}  // namespace kestrin
