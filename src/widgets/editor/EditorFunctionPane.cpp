// The item editor's function controls and its number boxes: choosing a function and its
// properties, the key filter, and the range checks run when a box is left.
#include <QButtonGroup>
#include <QComboBox>
#include <QFocusEvent>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include <algorithm>

#include "card/CPage.h"
#include "rules/NumberChecks.h"
#include "document/LayoutDocument.h"
#include "frmEditiClass.h"

namespace kestrin {

int frmEditiClass::checkedProperty() const {
    return propertyGroup_ ? propertyGroup_->checkedId() : -1;
}

void frmEditiClass::functionClicked(int index) {
    const bool chosen = index >= 0 && index < 4;
    fraProperties_->setVisible(chosen);
    if (!chosen) {
        txtSelectedField_->clear();
        return;
    }
    const auto kind = static_cast<FunctionKind>(index);
    {
        // The program fills the property controls; the choice itself is the change.
        const bool old = filling_;
        filling_ = true;
        txtSelectedField_->setText(QString::fromLatin1(functionWord(kind).data(),
                                                       static_cast<qsizetype>(functionWord(kind).size())));
        const auto options = propertyOptions(kind);
        bool first = true;
        for (size_t i = 0; i < options.size(); ++i) {
            const PropertyOption& o = options[i];
            optProperty_[i]->setText(
                o.textId == 0 ? QString::fromLatin1(o.defaultCaption.data(), static_cast<qsizetype>(o.defaultCaption.size()))
                              : text(o.textId, std::string(o.defaultCaption).c_str()));
            optProperty_[i]->setVisible(o.visible);
            // The first option the function offers is chosen for it.
            if (o.visible && first) {
                optProperty_[i]->setChecked(true);
                first = false;
            }
        }
        if (countGroup_->checkedId() < 0) optCountFirstValue_[0]->setChecked(true);
        showPropertyBoxes();
        filling_ = old;
    }
    markChanged();
}

void frmEditiClass::propertyClicked(int /*option*/) {
    showPropertyBoxes();
    markChanged();
}

void frmEditiClass::countFirstValueClicked(int /*index*/) {
    showPropertyBoxes();
    markChanged();
}

void frmEditiClass::showPropertyBoxes() {
    const int index = functionGroup_->checkedId();
    if (index < 0) return;
    const auto kind = static_cast<FunctionKind>(index);
    const int option = checkedProperty();
    const PropertyBoxes boxes = propertyBoxes(kind, option, countGroup_->checkedId() == 1, mode_);
    txtConstantValue_->setVisible(boxes.constantValue);
    cboFieldList_->setVisible(boxes.fieldList);
    fraCountFirstValue_->setVisible(boxes.countFirstValue);
    txtCountNumber_->setVisible(boxes.countNumber);
    txtCountStep_->setVisible(boxes.countStep);
    lblCountStep_->setVisible(boxes.countStep);
    txtPolynom_->setVisible(boxes.polynom);
    lblPolynom_->setVisible(boxes.polynom);
    txtStartValue_->setVisible(boxes.startValue);
    lblStartValue_->setVisible(boxes.startValue);
    fraRange_->setVisible(boxes.range);
    txtNrBytes_->setEnabled(boxes.sizeEnabled);
    findChild<QWidget*>(QStringLiteral("spinBytes"))->setEnabled(boxes.sizeEnabled);
    if (const auto size = fixedSize(kind, option, mode_)) {
        const bool old = filling_;
        filling_ = true;
        txtNrBytes_->setText(QString::number(*size));
        filling_ = old;
    }
}

void frmEditiClass::fillRangeLists() {
    const CPage* page = currentPage();
    const QString row = cboRangeBeginRow_->currentText();
    cboRangeBeginRow_->clear();
    if (page)
        for (int b = page->BeginFreeSpace; b < page->blockCount(); ++b) cboRangeBeginRow_->addItem(QString::number(b));
    const int keep = cboRangeBeginRow_->findText(row);
    cboRangeBeginRow_->setCurrentIndex(std::max(keep, 0));  // an empty list takes none
    if (cboRangeBeginByte_->count() == 0) {
        for (int i = 0; i < 8; ++i) cboRangeBeginByte_->addItem(QString::number(i));
        cboRangeBeginByte_->setCurrentIndex(0);
    }
}

FunctionInput frmEditiClass::functionInput() const {
    FunctionInput in;
    const int index = functionGroup_->checkedId();
    in.kind = index < 0 ? FunctionKind::Constant : static_cast<FunctionKind>(index);
    in.option = checkedProperty();
    in.valueFromField = (in.kind == FunctionKind::Constant && in.option == kConstantField) ||
                        (in.kind == FunctionKind::Count && countGroup_->checkedId() == 1);
    if (cboFieldList_->currentIndex() >= 0) in.fieldName = cboFieldList_->currentText().toStdString();
    in.constantText = txtConstantValue_->text().toStdString();
    in.countNumberText = txtCountNumber_->text().toStdString();
    in.countStepText = txtCountStep_->text().toStdString();
    in.polynomText = txtPolynom_->text().toStdString();
    in.startValueText = txtStartValue_->text().toStdString();
    in.rangeRow = static_cast<int16_t>(cboRangeBeginRow_->currentIndex() < 0 ? 0 : cboRangeBeginRow_->currentText().toInt());
    in.rangeBeginByte = static_cast<int16_t>(std::max(0, cboRangeBeginByte_->currentIndex()));
    in.rangeCountText = txtRangeBytesCount_->text().toStdString();
    return in;
}

void frmEditiClass::presetFunction(const FunctionInput& in) {
    const int index = static_cast<int>(in.kind);
    optFunction_[static_cast<size_t>(index)]->setChecked(true);
    functionClicked(index);
    if (in.option >= 0 && in.option < 4) optProperty_[static_cast<size_t>(in.option)]->setChecked(true);
    optCountFirstValue_[in.kind == FunctionKind::Count && in.valueFromField ? 1 : 0]->setChecked(true);
    if (in.valueFromField) cboFieldList_->setCurrentIndex(cboFieldList_->findText(QString::fromStdString(in.fieldName)));
    txtConstantValue_->setText(QString::fromStdString(in.constantText));
    txtCountNumber_->setText(QString::fromStdString(in.countNumberText));
    txtCountStep_->setText(QString::fromStdString(in.countStepText));
    txtPolynom_->setText(QString::fromStdString(in.polynomText));
    txtStartValue_->setText(QString::fromStdString(in.startValueText));
    setCurrentTextOf(cboRangeBeginRow_, in.rangeRow);
    cboRangeBeginByte_->setCurrentIndex(std::clamp<int>(in.rangeBeginByte, 0, 7));
    txtRangeBytesCount_->setText(QString::fromStdString(in.rangeCountText));
    showPropertyBoxes();
}

void frmEditiClass::filterBox(QLineEdit* box) {
    // Text set by the program bypasses the key filter; keep it to digits as well.
    const std::string typed = box->text().toStdString();
    const std::string kept = filterNumberText(typed);
    if (kept != typed) box->setText(QString::fromStdString(kept));
    markChanged();
}

bool frmEditiClass::leaveValueBox(QLineEdit* box) {
    // Empty boxes pass here; the placement rules catch them when the item is applied.
    if (box->text().isEmpty()) return true;
    ValueBox which{};
    if (box == txtConstantValue_) which = ValueBox::ConstantValue;
    else if (box == txtCountNumber_) which = ValueBox::CountNumber;
    else if (box == txtCountStep_) which = ValueBox::CountStep;
    else if (box == txtPolynom_) which = ValueBox::Polynom;
    else if (box == txtStartValue_) which = ValueBox::StartValue;
    else return true;  // the range count is judged with the placement
    const int index = functionGroup_->checkedId();
    const auto kind = index < 0 ? FunctionKind::Constant : static_cast<FunctionKind>(index);
    const Limits limits = boxLimits(which, mode_, kind, checkedProperty(), shortOf(txtNrBytes_->text().toStdString()));
    return CheckNumberInRange(limits.min, limits.max, box->text().toStdString(), {}, doc_.prompter(), doc_.translator());
}

bool frmEditiClass::leaveSizeBox() {
    const CPage* page = currentPage();
    if (txtNrBytes_->text().isEmpty() || !page) return true;
    const Limits limits = sizeBoxLimits(mode_, page->PageSize, static_cast<int16_t>(cboRow_->currentText().toInt()),
                                        static_cast<int16_t>(std::max(0, cboBeginByte_->currentIndex())),
                                        static_cast<int16_t>(isBitMode(mode_) ? std::max(0, cboBeginBit_->currentIndex()) : 0));
    return CheckNumberInRange(limits.min, limits.max, txtNrBytes_->text().toStdString(), {}, doc_.prompter(),
                              doc_.translator());
}

bool frmEditiClass::eventFilter(QObject* watched, QEvent* event) {
    auto* box = qobject_cast<QLineEdit*>(watched);
    if (!box) return QDialog::eventFilter(watched, event);
    switch (event->type()) {
    case QEvent::FocusIn:
        QTimer::singleShot(0, box, &QLineEdit::selectAll);
        break;
    case QEvent::FocusOut: {
        const auto reason = static_cast<QFocusEvent*>(event)->reason();
        // Losing the window (to a message box, another program) is not leaving the box.
        if (reason == Qt::ActiveWindowFocusReason || reason == Qt::PopupFocusReason) break;
        const bool ok = box == txtNrBytes_ ? leaveSizeBox() : leaveValueBox(box);
        if (!ok) QTimer::singleShot(0, box, [box] {
                box->setFocus();
                box->selectAll();
            });
        break;
    }
    default: break;
    }
    return QDialog::eventFilter(watched, event);
}

}  // namespace kestrin
