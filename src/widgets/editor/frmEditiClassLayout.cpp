// The item editor's controls, their layout and their captions.
#include <QButtonGroup>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "BitMapView.h"
#include "document/LayoutDocument.h"
#include "frmEditiClass.h"
#include "preview/PagePainter.h"
#include "rules/Encodings.h"
#include "shared/DialogParts.h"
#include "shared/SpinArrows.h"
#include "text/Translator.h"

namespace kestrin {

QString frmEditiClass::text(int32_t id, const char* defaultText) const {
    return translated(doc_.translator(), id, defaultText);
}

QString frmEditiClass::text(const TextRef& ref) const {
    return translated(doc_.translator(), ref);
}

QLineEdit* frmEditiClass::numberBox(const char* name) {
    auto* box = named(new QLineEdit(this), name);
    filterToDigits(*box);
    box->installEventFilter(this);
    box->setMaximumWidth(110);
    connect(box, &QLineEdit::textChanged, this, [this, box] { filterBox(box); });
    return box;
}

QWidget* frmEditiClass::spinPair(const char* name, QLineEdit* box) {
    auto* arrows = named(new SpinArrows(this), name);
    connect(arrows, &SpinArrows::stepped, this, [box](int steps) {
        std::string text = box->text().toStdString();
        for (int i = 0; i < std::abs(steps); ++i) text = steps > 0 ? spinUp(text) : spinDown(text);
        box->setText(QString::fromStdString(text));
    });
    return arrows;
}

QRadioButton* frmEditiClass::option(const QString& baseName, int index, QButtonGroup* group) {
    auto* button = new QRadioButton(this);
    button->setObjectName(QStringLiteral("%1(%2)").arg(baseName).arg(index));
    group->addButton(button, index);
    return button;
}

void frmEditiClass::buildControls() {
    auto* top = new QHBoxLayout;
    auto* left = new QVBoxLayout;
    if (isFunctionMode(mode_)) {
        left->addWidget(buildFunctionPane());
    } else {
        left->addWidget(buildFieldPane());
        left->addWidget(buildEncodeFrame());
    }
    top->addLayout(left, 3);

    auto* right = new QVBoxLayout;
    right->addWidget(buildPositionFrame());
    if (isBitMode(mode_)) {
        grdPreview_ = createBitGrid(this, QStringLiteral("grdPreview"));
        grdPreview_->setMinimumSize(2 * 34 + 64 * 13, 260);
    } else {
        grdPreview_ = createPageGrid(this, QStringLiteral("grdPreview"));
        grdPreview_->setMinimumSize(330, 260);
    }
    right->addWidget(grdPreview_, 1);
    top->addLayout(right, 4);

    auto* outer = new QVBoxLayout(this);
    outer->addLayout(top, 1);
    outer->addWidget(buildButtons());
}

QWidget* frmEditiClass::buildFieldPane() {
    fraFieldFunction_ = named(new QGroupBox(this), "fraFields");
    auto* layout = new QVBoxLayout(fraFieldFunction_);
    grdFields_ = named(new QTableWidget(0, 4, this), "grdFields");
    grdFields_->setSelectionBehavior(QAbstractItemView::SelectRows);
    // A click chooses one field; Ctrl or Shift add fields to a combined field.
    grdFields_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    grdFields_->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grdFields_->verticalHeader()->hide();
    grdFields_->horizontalHeader()->setStretchLastSection(true);
    grdFields_->setMinimumWidth(380);
    layout->addWidget(grdFields_, 1);
    auto* chosen = new QHBoxLayout;
    lblFieldFunction_ = named(new QLabel(this), "lblFieldFunction");
    txtSelectedField_ = named(new QLineEdit(this), "txtSelectedField");
    txtSelectedField_->setReadOnly(true);
    chosen->addWidget(lblFieldFunction_);
    chosen->addWidget(txtSelectedField_, 1);
    layout->addLayout(chosen);
    connect(grdFields_, &QTableWidget::itemSelectionChanged, this, &frmEditiClass::fieldSelectionChanged);
    return fraFieldFunction_;
}

QWidget* frmEditiClass::buildEncodeFrame() {
    fraEncode_ = named(new QGroupBox(this), "fraEncode");
    auto* layout = new QGridLayout(fraEncode_);
    encodeGroup_ = new QButtonGroup(this);
    for (int i = 0; i < 4; ++i) {
        optEncode_[static_cast<size_t>(i)] = option(QStringLiteral("optEncode"), i, encodeGroup_);
        layout->addWidget(optEncode_[static_cast<size_t>(i)], i, 0, 1, 2);
    }
    lblFormat_ = named(new QLabel(this), "lblFormat");
    cboFormat_ = named(new QComboBox(this), "cboFormat");
    layout->addWidget(lblFormat_, 4, 0);
    layout->addWidget(cboFormat_, 4, 1);
    connect(encodeGroup_, &QButtonGroup::idClicked, this, &frmEditiClass::encodeClicked);
    connect(cboFormat_, &QComboBox::currentIndexChanged, this, &frmEditiClass::markChanged);
    return fraEncode_;
}

QWidget* frmEditiClass::buildFunctionPane() {
    fraFieldFunction_ = named(new QGroupBox(this), "fraFunction");
    auto* layout = new QVBoxLayout(fraFieldFunction_);
    auto* functions = new QHBoxLayout;
    functionGroup_ = new QButtonGroup(this);
    for (int i = 0; i < 4; ++i) {
        optFunction_[static_cast<size_t>(i)] = option(QStringLiteral("optFunction"), i, functionGroup_);
        functions->addWidget(optFunction_[static_cast<size_t>(i)]);
    }
    layout->addLayout(functions);
    auto* chosen = new QHBoxLayout;
    lblFieldFunction_ = named(new QLabel(this), "lblFieldFunction");
    txtSelectedField_ = named(new QLineEdit(this), "txtSelectedField");
    txtSelectedField_->setReadOnly(true);
    chosen->addWidget(lblFieldFunction_);
    chosen->addWidget(txtSelectedField_, 1);
    layout->addLayout(chosen);
    layout->addWidget(buildPropertiesFrame());
    layout->addStretch(1);
    connect(functionGroup_, &QButtonGroup::idClicked, this, &frmEditiClass::functionClicked);
    return fraFieldFunction_;
}

QWidget* frmEditiClass::buildPropertiesFrame() {
    fraProperties_ = named(new QGroupBox(this), "fraProperties");
    auto* layout = new QGridLayout(fraProperties_);
    propertyGroup_ = new QButtonGroup(this);
    for (int i = 0; i < 4; ++i) {
        optProperty_[static_cast<size_t>(i)] = option(QStringLiteral("optProperty"), i, propertyGroup_);
        layout->addWidget(optProperty_[static_cast<size_t>(i)], i, 0, 1, 3);
    }
    txtConstantValue_ = numberBox("txtConstantValue");
    cboFieldList_ = named(new QComboBox(this), "cboFieldList");
    layout->addWidget(txtConstantValue_, 4, 0);
    layout->addWidget(cboFieldList_, 4, 1, 1, 2);

    fraCountFirstValue_ = named(new QGroupBox(this), "fraCountFirstValue");
    auto* count = new QHBoxLayout(fraCountFirstValue_);
    countGroup_ = new QButtonGroup(this);
    for (int i = 0; i < 2; ++i) {
        optCountFirstValue_[static_cast<size_t>(i)] = option(QStringLiteral("optCountFirstValue"), i, countGroup_);
        count->addWidget(optCountFirstValue_[static_cast<size_t>(i)]);
    }
    txtCountNumber_ = numberBox("txtCountNumber");
    count->addWidget(txtCountNumber_);
    layout->addWidget(fraCountFirstValue_, 5, 0, 1, 3);

    lblCountStep_ = named(new QLabel(this), "lblCountStep");
    txtCountStep_ = numberBox("txtCountStep");
    lblPolynom_ = named(new QLabel(this), "lblPolynom");
    txtPolynom_ = numberBox("txtPolynom");
    lblStartValue_ = named(new QLabel(this), "lblStartValue");
    txtStartValue_ = numberBox("txtStartValue");
    layout->addWidget(lblCountStep_, 6, 0);
    layout->addWidget(txtCountStep_, 6, 1);
    layout->addWidget(lblPolynom_, 7, 0);
    layout->addWidget(txtPolynom_, 7, 1);
    layout->addWidget(lblStartValue_, 8, 0);
    layout->addWidget(txtStartValue_, 8, 1);

    fraRange_ = named(new QGroupBox(this), "fraRange");
    auto* range = new QGridLayout(fraRange_);
    lblRangeBeginRow_ = named(new QLabel(this), "lblRangeBeginRow");
    cboRangeBeginRow_ = named(new QComboBox(this), "cboRangeBeginRow");
    lblRangeBeginByte_ = named(new QLabel(this), "lblRangeBeginByte");
    cboRangeBeginByte_ = named(new QComboBox(this), "cboRangeBeginByte");
    lblRangeBytesCount_ = named(new QLabel(this), "lblRangeBytesCount");
    txtRangeBytesCount_ = numberBox("txtRangeBytesCount");
    range->addWidget(lblRangeBeginRow_, 0, 0);
    range->addWidget(cboRangeBeginRow_, 0, 1);
    range->addWidget(lblRangeBeginByte_, 1, 0);
    range->addWidget(cboRangeBeginByte_, 1, 1);
    range->addWidget(lblRangeBytesCount_, 2, 0);
    auto* countRow = new QHBoxLayout;
    countRow->addWidget(txtRangeBytesCount_);
    countRow->addWidget(spinPair("spinRangeBytes", txtRangeBytesCount_));
    countRow->addStretch(1);
    range->addLayout(countRow, 2, 1);
    layout->addWidget(fraRange_, 9, 0, 1, 3);
    layout->setColumnStretch(2, 1);

    connect(propertyGroup_, &QButtonGroup::idClicked, this, &frmEditiClass::propertyClicked);
    connect(countGroup_, &QButtonGroup::idClicked, this, &frmEditiClass::countFirstValueClicked);
    connect(cboFieldList_, &QComboBox::currentIndexChanged, this, &frmEditiClass::markChanged);
    connect(cboRangeBeginRow_, &QComboBox::currentIndexChanged, this, &frmEditiClass::markChanged);
    connect(cboRangeBeginByte_, &QComboBox::currentIndexChanged, this, &frmEditiClass::markChanged);
    return fraProperties_;
}

QWidget* frmEditiClass::buildPositionFrame() {
    fraAddTo_ = named(new QGroupBox(this), "fraAddTo");
    auto* layout = new QGridLayout(fraAddTo_);
    lblPage_ = named(new QLabel(this), "lblPage");
    cboPage_ = named(new QComboBox(this), "cboPage");
    lblRow_ = named(new QLabel(this), "lblRow");
    cboRow_ = named(new QComboBox(this), "cboRow");
    lblBeginByte_ = named(new QLabel(this), "lblBeginByte");
    cboBeginByte_ = named(new QComboBox(this), "cboBeginByte");
    lblBeginBit_ = named(new QLabel(this), "lblBeginBit");
    cboBeginBit_ = named(new QComboBox(this), "cboBeginBit");
    lblNrOfBytes_ = named(new QLabel(this), "lblNrOfBytes");
    txtNrBytes_ = numberBox("txtNrBytes");
    for (int i = 0; i < 8; ++i) {
        cboBeginByte_->addItem(QString::number(i));
        cboBeginBit_->addItem(QString::number(i));
    }
    const std::array<std::pair<QLabel*, QWidget*>, 4> rows{
        {{lblPage_, cboPage_}, {lblRow_, cboRow_}, {lblBeginByte_, cboBeginByte_}, {lblBeginBit_, cboBeginBit_}}};
    for (size_t i = 0; i < rows.size(); ++i) {
        const int column = static_cast<int>(i) * 2;
        layout->addWidget(rows[i].first, 0, column);
        layout->addWidget(rows[i].second, 1, column);
    }
    layout->addWidget(lblNrOfBytes_, 0, 8);
    auto* size = new QHBoxLayout;
    size->addWidget(txtNrBytes_);
    size->addWidget(spinPair("spinBytes", txtNrBytes_));
    layout->addLayout(size, 1, 8);
    layout->setColumnStretch(9, 1);
    lblBeginBit_->setVisible(isBitMode(mode_));
    cboBeginBit_->setVisible(isBitMode(mode_));

    connect(cboPage_, &QComboBox::currentIndexChanged, this, &frmEditiClass::pageChosen);
    for (QComboBox* box : {cboRow_, cboBeginByte_, cboBeginBit_})
        connect(box, &QComboBox::currentIndexChanged, this, &frmEditiClass::positionChosen);
    connect(txtNrBytes_, &QLineEdit::textChanged, this, &frmEditiClass::sizeEdited);
    return fraAddTo_;
}

QWidget* frmEditiClass::buildButtons() {
    auto* bar = new QWidget(this);
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(0, 0, 0, 0);
    cmdNew_ = named(new QPushButton(this), "cmdNew");
    cmdRemove_ = named(new QPushButton(this), "cmdRemove");
    cmdApply_ = named(new QPushButton(this), "cmdApply");
    cmdOK_ = named(new QPushButton(this), "cmdOK");
    cmdCancel_ = named(new QPushButton(this), "cmdCancel");
    layout->addWidget(cmdNew_);
    layout->addWidget(cmdRemove_);
    layout->addStretch(1);
    for (QPushButton* b : {cmdApply_, cmdOK_, cmdCancel_}) layout->addWidget(b);
    // A focused button answers Enter itself; with the focus elsewhere Enter means OK.
    cmdOK_->setDefault(true);
    connect(cmdApply_, &QPushButton::clicked, this, [this] { apply(); });
    connect(cmdOK_, &QPushButton::clicked, this, &frmEditiClass::okClicked);
    connect(cmdNew_, &QPushButton::clicked, this, &frmEditiClass::newItem);
    connect(cmdCancel_, &QPushButton::clicked, this, &frmEditiClass::cancelClicked);
    // Cancel leaves without judging the box the operator was in.
    cmdCancel_->setFocusPolicy(Qt::NoFocus);
    // cmdRemove has no action of its own in this dialog.
    return bar;
}

void frmEditiClass::setCaptions() {
    static constexpr std::array<TextRef, 4> titles{
        {{3140, "<Add Fields>"}, {3141, "<Add Functions>"}, {4604, "<Add Bit Fields>"}, {4605, "<Add Bit Functions>"}}};
    setWindowTitle(text(titles[static_cast<size_t>(std::clamp(mode_, 0, 3))]));

    if (isFunctionMode(mode_)) {
        fraFieldFunction_->setTitle(text(kTextFunction));
        lblFieldFunction_->setText(text(kTextFunction));
        static constexpr std::array<TextRef, 4> functions{
            {{3142, "<Constant>"}, {3143, "<Count>"}, {3144, "<CardSerialNo>"}, {3145, "<Checksum>"}}};
        for (size_t i = 0; i < 4; ++i) optFunction_[i]->setText(text(functions[i]));
        fraProperties_->setTitle(text(kTextFunctionProperties));
        fraCountFirstValue_->setTitle(text(kTextStartValue));
        optCountFirstValue_[0]->setText(text(kTextNumber));
        optCountFirstValue_[1]->setText(text(kTextField));
        lblCountStep_->setText(text(kTextStep));
        lblPolynom_->setText(text(4701, "<Polynomial>"));
        lblStartValue_->setText(text(kTextStartValue));
        fraRange_->setTitle(text(3148, "<Checksum Range>"));
        lblRangeBeginRow_->setText(text(4513, "<Begin Row>"));
        lblRangeBeginByte_->setText(text(kTextBeginByte));
        lblRangeBytesCount_->setText(text(kTextNoOfBytes));
    } else {
        fraFieldFunction_->setTitle(text(kTextFields));
        lblFieldFunction_->setText(text(kTextField));
        fraEncode_->setTitle(text(3139, "<Encode As>"));
        lblFormat_->setText(text(4702, "<Format>"));
        grdFields_->setHorizontalHeaderLabels(
            {QStringLiteral("<Field Name>"), QStringLiteral("<Field Type>"), QStringLiteral("<Size>"),
             QStringLiteral("<Description>")});
    }
    fraAddTo_->setTitle(text(kTextAddTo));
    lblPage_->setText(text(kTextPage));
    lblRow_->setText(text(kTextBlock));
    lblBeginByte_->setText(text(kTextBeginByte));
    lblBeginBit_->setText(text(kTextBeginBit));
    lblNrOfBytes_->setText(isBitMode(mode_) ? text(kTextNoOfBits) : text(kTextNoOfBytes));
    cmdNew_->setText(text(3152, "<&New>"));
    cmdApply_->setText(text(kTextApply));
    cmdRemove_->setText(text(3092, "<&Remove item>"));
    cmdOK_->setText(QStringLiteral("OK"));
    cmdCancel_->setText(QStringLiteral("<Cancel>"));
}

}  // namespace kestrin
