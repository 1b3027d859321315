#include "frmDBUpdate.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>

#include "base/ProductInfo.h"
#include "rules/NumberChecks.h"
#include "rules/PlacementValidation.h"
#include "frmMultiTrack.h"
#include "items/ItemRecord.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "base/Prompter.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

constexpr int64_t kByteMax = 255;
constexpr int64_t kConstantMax = 4294967295;

// Option index of each function button; the words are also the stored item name.
constexpr int kConstant = 0;
constexpr int kCount = 1;
constexpr int kCardSnNr = 2;
constexpr std::array<std::string_view, 3> kFunctionWords = {kFunctionConstant, kFunctionCount, kFunctionCardSnNr};

QString text(const DialogContext& ctx, int32_t id, const char* defaultText) {
    return QString::fromStdString(ctx.translator->text(id, defaultText));
}

template <class T>
T* named(T* widget, const QString& name) {
    widget->setObjectName(name);
    return widget;
}

// A number as stored in the record: plain decimal, no leading zeros.
std::string plainNumber(const QLineEdit& box) {
    return std::to_string(box.text().toULongLong());
}

}  // namespace

frmDBUpdate::frmDBUpdate(DialogContext ctx, int32_t editIndex, QWidget* parent)
    : QDialog(parent), ctx_(ctx) {
    setObjectName("frmDBUpdate");
    setWindowTitle(QStringLiteral("Database Update"));
    buildControls();
    fillFieldGrid(*grdFields_, ctx_);
    optFunction_[kConstant]->setChecked(true);
    optProperty_[0]->setChecked(true);
    if (editIndex >= 0 && editIndex < ctx_.records->size() && (*ctx_.records)[editIndex].isDbUpdate) {
        editIndex_ = editIndex;
        presetFrom(editIndex);
    }
    functionChosen();
}

void frmDBUpdate::buildControls() {
    auto* fraFields = named(new QGroupBox(text(ctx_, 3137, "<Fields>"), this), "fraFields");
    grdFields_ = named(new QTableWidget(fraFields), "grdFields");
    txtSelectedField_ = named(new QLineEdit(fraFields), "txtSelectedField");
    txtSelectedField_->setReadOnly(true);
    auto* fieldLine = new QHBoxLayout;
    fieldLine->addWidget(named(new QLabel(text(ctx_, 3111, "<Field>"), fraFields), "lblSelectedField"));
    fieldLine->addWidget(txtSelectedField_, 1);
    auto* fieldsLayout = new QVBoxLayout(fraFields);
    fieldsLayout->addLayout(fieldLine);
    fieldsLayout->addWidget(grdFields_, 1);

    auto* fraFunction = named(new QGroupBox(text(ctx_, 3112, "<Function>"), this), "fraFunction");
    auto* functionLayout = new QVBoxLayout(fraFunction);
    for (int i = 0; i < static_cast<int>(optFunction_.size()); ++i) {
        const QString word = QString::fromUtf8(kFunctionWords[static_cast<size_t>(i)]);
        optFunction_[static_cast<size_t>(i)] =
            named(new QRadioButton(word, fraFunction), QStringLiteral("optFunction(%1)").arg(i));
        functionLayout->addWidget(optFunction_[static_cast<size_t>(i)]);
        connect(optFunction_[static_cast<size_t>(i)], &QRadioButton::toggled, this, &frmDBUpdate::functionChosen);
    }
    functionLayout->addStretch(1);

    auto* fraProperties = named(new QGroupBox(text(ctx_, 3120, "<Function properties>"), this), "fraProperties");
    txtConstantValue_ = named(new QLineEdit(fraProperties), "txtConstantValue");
    txtCountNumber_ = named(new QLineEdit(fraProperties), "txtCountNumber");
    txtCountStep_ = named(new QLineEdit(fraProperties), "txtCountStep");
    lblConstantValue_ = named(new QLabel(text(ctx_, 3106, "<Value>"), fraProperties), "lblConstantValue");
    lblCountNumber_ = named(new QLabel(text(ctx_, 3147, "<Number>"), fraProperties), "lblCountNumber");
    lblCountStep_ = named(new QLabel(text(ctx_, 3107, "<Step>"), fraProperties), "lblCountStep");
    optProperty_[0] = named(new QRadioButton(QStringLiteral("<String decimal>"), fraProperties), "optProperty(0)");
    optProperty_[1] = named(new QRadioButton(QStringLiteral("<String hexadecimal>"), fraProperties), "optProperty(1)");
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
    for (QLineEdit* box : {txtConstantValue_, txtCountNumber_, txtCountStep_}) filterToDigits(*box);

    auto* cmdOK = named(new QPushButton(QStringLiteral("OK"), this), "cmdOK");
    auto* cmdCancel = named(new QPushButton(QStringLiteral("Cancel"), this), "cmdCancel");
    cmdOK->setAutoDefault(false);
    cmdCancel->setAutoDefault(false);
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

void frmDBUpdate::presetFrom(int32_t index) {
    const ItemRecord& r = (*ctx_.records)[index];
    const HostField* field = ctx_.fields ? ctx_.fields->byDbField(r.dbFieldName) : nullptr;
    if (field) {
        const auto row = static_cast<int>(field - ctx_.fields->fields().data());
        grdFields_->setCurrentCell(row, 0);
    } else {
        // A field the project no longer lists is kept as the record names it.
        txtSelectedField_->setText(QString::fromStdString(r.dbFieldName));
        dbField_ = r.dbFieldName;
        dbColumn_ = r.dbColumn;
    }
    const QString p1 = QString::fromStdString(r.param1);
    const QString p2 = QString::fromStdString(r.param2);
    if (r.name == kFunctionCount) {
        optFunction_[kCount]->setChecked(true);
        txtCountNumber_->setText(p1);
        txtCountStep_->setText(p2);
    } else if (r.name == kFunctionCardSnNr) {
        optFunction_[kCardSnNr]->setChecked(true);
        optProperty_[r.param1 == "1" ? 1 : 0]->setChecked(true);
    } else {
        optFunction_[kConstant]->setChecked(true);
        txtConstantValue_->setText(p1);
    }
}

void frmDBUpdate::fieldChosen(int row) {
    if (!ctx_.fields || row < 0 || row >= ctx_.fields->count()) return;
    const HostField& field = ctx_.fields->fields()[static_cast<size_t>(row)];
    txtSelectedField_->setText(QString::fromStdString(field.name));
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

bool frmDBUpdate::boxInRange(QLineEdit& box, int64_t min, int64_t max) {
    if (CheckNumberInRange(min, max, box.text().toStdString(), {}, *ctx_.prompter, *ctx_.translator)) return true;
    box.setFocus();
    box.selectAll();
    return false;
}

void frmDBUpdate::okClicked() {
    if (dbField_.empty()) {
        ctx_.prompter->tell(Icon::Exclamation, ctx_.translator->text(kTextIncomplete, "<Please choose a field.>"),
                            kProductTitle);
        grdFields_->setFocus();
        return;
    }
    const int f = chosenFunction();
    if (f == kConstant && !boxInRange(*txtConstantValue_, 0, kConstantMax)) return;
    if (f == kCount && (!boxInRange(*txtCountNumber_, 0, kByteMax) || !boxInRange(*txtCountStep_, 0, kByteMax)))
        return;

    ItemRecord r = editIndex_ >= 0 ? (*ctx_.records)[editIndex_] : ItemRecord{};
    r.isDbUpdate = true;
    r.name = std::string(kFunctionWords[static_cast<size_t>(f)]);
    r.dbFieldName = dbField_;
    r.dbColumn = dbColumn_;
    r.param1.clear();
    r.param2.clear();
    r.param3.clear();
    if (f == kConstant) {
        r.param1 = plainNumber(*txtConstantValue_);
    } else if (f == kCount) {
        r.param1 = plainNumber(*txtCountNumber_);
        r.param2 = plainNumber(*txtCountStep_);
    } else {
        r.param1 = optProperty_[1]->isChecked() ? "1" : "0";
    }
    if (editIndex_ >= 0)
        (*ctx_.records)[editIndex_] = r;
    else if (!ctx_.records->add(r))
        return;
    Cancelled = false;
    accept();
}

void frmDBUpdate::cancelClicked() {
    Cancelled = true;
    reject();
}

}  // namespace kestrin
