#include "frmDBUpdate.h"

#include <QApplication>
#include <QBoxLayout>
#include <QFocusEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QTimer>

#include "base/ProductInfo.h"
#include "base/Prompter.h"
#include "document/LayoutDocument.h"
#include "items/ItemRecord.h"
#include "persist/HostFields.h"
#include "rules/NumberChecks.h"
#include "shared/DialogParts.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

// Option index of each function button; the words are also the stored item name.
constexpr int kConstant = 0;
constexpr int kCount = 1;
constexpr int kCardSnNr = 2;
constexpr std::array<std::string_view, 3> kFunctionWords = {kFunctionConstant, kFunctionCount, kFunctionCardSnNr};
constexpr std::array<TextRef, 3> kFunctionCaptions = {
    {{3142, "<Constant>"}, {3143, "<Count>"}, {3144, "<CardSerialNo>"}}};
constexpr TextRef kTitle{4700, "<Database Update>"};

}  // namespace

frmDBUpdate::frmDBUpdate(LayoutDocument& doc, int32_t editIndex, QWidget* parent) : QDialog(parent), doc_(doc) {
    setObjectName("frmDBUpdate");
    setWindowTitle(translated(doc_.translator(), kTitle));
    buildControls();
    fillFieldGrid(*grdFields_, doc_.fields(), doc_.translator());
    optFunction_[kConstant]->setChecked(true);
    optProperty_[0]->setChecked(true);
    const RecordArray& records = doc_.records();
    if (editIndex >= 0 && editIndex < records.size() && records[editIndex].isDbUpdate) {
        editIndex_ = editIndex;
        presetFrom(dbUpdateEntriesOf(records[editIndex]));
    }
    functionChosen();
}

void frmDBUpdate::buildControls() {
    const Translator& tr = doc_.translator();
    auto* fraFields = named(new QGroupBox(translated(tr, kTextFields), this), "fraFields");
    grdFields_ = named(new QTableWidget(fraFields), "grdFields");
    txtSelectedField_ = named(new QLineEdit(fraFields), "txtSelectedField");
    txtSelectedField_->setReadOnly(true);
    auto* fieldLine = new QHBoxLayout;
    fieldLine->addWidget(named(new QLabel(translated(tr, kTextField), fraFields), "lblSelectedField"));
    fieldLine->addWidget(txtSelectedField_, 1);
    auto* fieldsLayout = new QVBoxLayout(fraFields);
    fieldsLayout->addLayout(fieldLine);
    fieldsLayout->addWidget(grdFields_, 1);

    auto* fraFunction = named(new QGroupBox(translated(tr, kTextFunction), this), "fraFunction");
    auto* functionLayout = new QVBoxLayout(fraFunction);
    for (size_t i = 0; i < optFunction_.size(); ++i) {
        optFunction_[i] = named(new QRadioButton(translated(tr, kFunctionCaptions[i]), fraFunction),
                                QStringLiteral("optFunction(%1)").arg(i));
        functionLayout->addWidget(optFunction_[i]);
        connect(optFunction_[i], &QRadioButton::toggled, this, &frmDBUpdate::functionChosen);
    }
    functionLayout->addStretch(1);

    auto* fraProperties = named(new QGroupBox(translated(tr, kTextFunctionProperties), this), "fraProperties");
    txtConstantValue_ = named(new QLineEdit(fraProperties), "txtConstantValue");
    txtCountNumber_ = named(new QLineEdit(fraProperties), "txtCountNumber");
    txtCountStep_ = named(new QLineEdit(fraProperties), "txtCountStep");
    lblConstantValue_ = named(new QLabel(translated(tr, kTextValue), fraProperties), "lblConstantValue");
    lblCountNumber_ = named(new QLabel(translated(tr, kTextNumber), fraProperties), "lblCountNumber");
    lblCountStep_ = named(new QLabel(translated(tr, kTextStep), fraProperties), "lblCountStep");
    optProperty_[0] = named(new QRadioButton(translated(tr, 0, "<String decimal>"), fraProperties), "optProperty(0)");
    optProperty_[1] =
        named(new QRadioButton(translated(tr, 0, "<String hexadecimal>"), fraProperties), "optProperty(1)");
    auto* properties = new QGridLayout(fraProperties);
    properties->addWidget(lblConstantValue_, 0, 0);
    properties->addWidget(txtConstantValue_, 0, 1);
    properties->addWidget(lblCountNumber_, 1, 0);
    properties->addWidget(txtCountNumber_, 1, 1);
    properties->addWidget(lblCountStep_, 2, 0);
    properties->addWidget(txtCountStep_, 2, 1);
    properties->addWidget(optProperty_[0], 3, 0, 1, 2);
    properties->addWidget(optProperty_[1], 4, 0, 1, 2);
    properties->setRowStretch(5, 1);
    for (QLineEdit* box : {txtConstantValue_, txtCountNumber_, txtCountStep_}) {
        filterToDigits(*box);
        box->installEventFilter(this);
        connect(box, &QLineEdit::textChanged, this, [this, box] {
            if (refusedBox_ == box) refusedBox_ = nullptr;
        });
    }

    auto* cmdOK = named(new QPushButton(QStringLiteral("OK"), this), "cmdOK");
    auto* cmdCancel = named(new QPushButton(QStringLiteral("Cancel"), this), "cmdCancel");
    cmdCancel_ = cmdCancel;
    // A focused button answers Enter itself; with the focus elsewhere Enter means OK.
    cmdOK->setDefault(true);

    auto* right = new QVBoxLayout;
    right->addWidget(fraFunction);
    right->addWidget(fraProperties, 1);
    auto* top = new QHBoxLayout;
    top->addWidget(fraFields, 1);
    top->addLayout(right);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* all = new QVBoxLayout(this);
    all->addLayout(top, 1);
    all->addLayout(buttons);

    // Selection, not the current cell: a grid that gains the focus makes its first cell
    // current by itself, which must not choose a field.
    connect(grdFields_, &QTableWidget::itemSelectionChanged, this, [this] {
        const auto rows = grdFields_->selectionModel()->selectedRows();
        if (!rows.isEmpty()) fieldChosen(rows.first().row());
    });
    connect(cmdOK, &QPushButton::clicked, this, &frmDBUpdate::okClicked);
    connect(cmdCancel, &QPushButton::clicked, this, &frmDBUpdate::cancelClicked);
}

void frmDBUpdate::presetFrom(const DbUpdateEntries& e) {
    const HostField* field = doc_.fields().byDbField(e.dbField);
    if (field) {
        const auto row = static_cast<int>(field - doc_.fields().fields().data());
        grdFields_->selectRow(row);
    } else {
        // A field the project no longer lists is kept as the record names it.
        txtSelectedField_->setText(QString::fromStdString(e.dbField));
        dbField_ = e.dbField;
        dbColumn_ = e.column;
    }
    for (size_t i = 0; i < kFunctionWords.size(); ++i)
        if (e.function == kFunctionWords[i]) optFunction_[i]->setChecked(true);
    txtConstantValue_->setText(QString::fromStdString(e.constantText));
    txtCountNumber_->setText(QString::fromStdString(e.countNumberText));
    txtCountStep_->setText(QString::fromStdString(e.countStepText));
    optProperty_[e.hexadecimal ? 1 : 0]->setChecked(true);
}

void frmDBUpdate::fieldChosen(int row) {
    const auto& fields = doc_.fields().fields();
    if (row < 0 || row >= static_cast<int>(fields.size())) return;
    const HostField& field = fields[static_cast<size_t>(row)];
    txtSelectedField_->setText(QString::fromStdString(field.dbField));
    dbField_ = field.dbField;
    dbColumn_ = field.column;
}

int frmDBUpdate::chosenFunction() const {
    for (size_t i = 0; i < optFunction_.size(); ++i)
        if (optFunction_[i]->isChecked()) return static_cast<int>(i);
    return kConstant;
}

// Only the boxes the chosen function uses are shown.
void frmDBUpdate::functionChosen() {
    const int f = chosenFunction();
    lblConstantValue_->setVisible(f == kConstant);
    txtConstantValue_->setVisible(f == kConstant);
    for (QWidget* w : std::initializer_list<QWidget*>{lblCountNumber_, txtCountNumber_, lblCountStep_, txtCountStep_})
        w->setVisible(f == kCount);
    for (QRadioButton* option : optProperty_) option->setVisible(f == kCardSnNr);
}

DbUpdateEntries frmDBUpdate::entries() const {
    DbUpdateEntries e;
    e.function = std::string(kFunctionWords[static_cast<size_t>(chosenFunction())]);
    e.dbField = dbField_;
    e.column = dbColumn_;
    e.constantText = txtConstantValue_->text().toStdString();
    e.countNumberText = txtCountNumber_->text().toStdString();
    e.countStepText = txtCountStep_->text().toStdString();
    e.hexadecimal = optProperty_[1]->isChecked();
    return e;
}

// A number box is checked when it is left; a refused box keeps the focus. Empty boxes pass
// here and are caught by OK.
bool frmDBUpdate::boxLeft(QLineEdit& box) {
    if (box.text().isEmpty()) return true;
    checkingBox_ = true;
    const bool ok = CheckNumberInRange(0, kDbUpdateValueMax, box.text().toStdString(), {}, doc_.prompter(),
                                       doc_.translator());
    checkingBox_ = false;
    if (ok) return true;
    refusedBox_ = &box;
    QTimer::singleShot(0, &box, [&box] {
        box.setFocus();
        box.selectAll();
    });
    return false;
}

bool frmDBUpdate::eventFilter(QObject* watched, QEvent* event) {
    auto* box = qobject_cast<QLineEdit*>(watched);
    if (box && event->type() == QEvent::FocusOut && !checkingBox_) {
        const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
        // Another window coming up (a message box, a menu) is no leaving of the box, and
        // Cancel leaves without judging it.
        const bool toCancel = QApplication::focusWidget() == cmdCancel_;
        if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason && !toCancel) boxLeft(*box);
    }
    return QDialog::eventFilter(watched, event);
}

void frmDBUpdate::okClicked() {
    // The box just refused has told the operator already.
    if (refusedBox_) return;
    const LayoutDocument::DbUpdateResult result = doc_.applyDbUpdate(entries(), editIndex_);
    if (!result.stored) {
        switch (static_cast<DbUpdateBox>(result.focusBox)) {
        case DbUpdateBox::Fields: grdFields_->setFocus(); break;
        case DbUpdateBox::ConstantValue: txtConstantValue_->setFocus(); break;
        case DbUpdateBox::CountNumber: txtCountNumber_->setFocus(); break;
        case DbUpdateBox::CountStep: txtCountStep_->setFocus(); break;
        case DbUpdateBox::None: break;
        }
        return;
    }
    Cancelled = false;
    accept();
}

void frmDBUpdate::cancelClicked() {
    Cancelled = true;
    reject();
}

}  // namespace kestrin
