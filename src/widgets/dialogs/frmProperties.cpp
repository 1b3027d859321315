#include "frmProperties.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QFocusEvent>
#include <QKeyEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTimer>
#include <algorithm>

#include "card/CIClass.h"
#include "rules/NumberChecks.h"
#include "items/RecordArray.h"
#include "document/LayoutDocument.h"
#include "shared/DialogParts.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

constexpr int kPages = 8;
constexpr int kMinBoundary = 5;
constexpr int kMaxBoundary = 31;

// Colour values are kept as 0x00BBGGRR.
QColor colorOf(int32_t bgr) {
    return QColor(bgr & 0xFF, (bgr >> 8) & 0xFF, (bgr >> 16) & 0xFF);
}

bool hasItems(const RecordArray& records) {
    return std::any_of(records.begin(), records.end(), [](const ItemRecord& r) { return !r.isDbUpdate; });
}

}  // namespace

frmProperties::frmProperties(const LayoutDocument& doc, QWidget* parent)
    : QDialog(parent), records_(doc.records()), translator_(doc.translator()), prompter_(doc.prompter()) {
    setObjectName("frmProperties");
    buildControls();
    setCaptions();
    fillFromCard();
    lockChipTypeWithItems();
    Unchanged = true;
}

frmProperties::~frmProperties() = default;

void frmProperties::setCard(std::unique_ptr<CIClass> card) {
    Card = std::move(card);
    fillFromCard();
    lockChipTypeWithItems();
}

void frmProperties::buildControls() {
    tabIClass_ = named(new QTabWidget(this), "tabIClass");
    tabIClass_->addTab(buildGeneralTab(), QString());
    tabIClass_->addTab(buildBoundaryTab(), QString());

    cmdOK_ = named(new QPushButton(this), "cmdOK");
    cmdCancel_ = named(new QPushButton(this), "cmdCancel");
    // A focused button answers Enter itself; with the focus elsewhere Enter means OK.
    cmdOK_->setDefault(true);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdOK_);
    buttons->addWidget(cmdCancel_);
    auto* all = new QVBoxLayout(this);
    all->addWidget(tabIClass_, 1);
    all->addLayout(buttons);

    for (QRadioButton* option : optChipType_) connect(option, &QRadioButton::toggled, this, &frmProperties::chipTypeClicked);
    connect(cboMemoryType_, &QComboBox::currentIndexChanged, this, &frmProperties::updateBoundaryTab);
    connect(cmdOK_, &QPushButton::clicked, this, &frmProperties::okClicked);
    connect(cmdCancel_, &QPushButton::clicked, this, &frmProperties::cancelClicked);
}

QWidget* frmProperties::buildGeneralTab() {
    auto* tab = new QWidget;
    auto* fraChipType = named(new QGroupBox(tab), "fraChipType");
    optChipType_[0] = named(new QRadioButton(fraChipType), "optChipType(0)");
    optChipType_[1] = named(new QRadioButton(fraChipType), "optChipType(1)");
    cboMemoryType_ = named(new QComboBox(fraChipType), "cboMemoryType");
    auto* chip = new QGridLayout(fraChipType);
    chip->addWidget(optChipType_[0], 0, 0);
    chip->addWidget(optChipType_[1], 1, 0);
    chip->addWidget(cboMemoryType_, 1, 1);
    chip->setColumnStretch(2, 1);

    auto* fraExtra = named(new QGroupBox(tab), "fraExtra");
    chkICHID_ = named(new QCheckBox(fraExtra), "chkICHID");
    chkICBitwise_ = named(new QCheckBox(fraExtra), "chkICBitwise");
    auto* extra = new QVBoxLayout(fraExtra);
    extra->addWidget(chkICHID_);
    extra->addWidget(chkICBitwise_);

    auto* column = new QVBoxLayout(tab);
    column->addWidget(fraChipType);
    column->addWidget(fraExtra);
    column->addStretch(1);
    return tab;
}

// One row per page, each directly below the one before it.
QWidget* frmProperties::buildBoundaryTab() {
    auto* tab = new QWidget;
    auto* fraBoundaries = named(new QGroupBox(tab), "fraBoundaries");
    auto* rows = new QGridLayout(fraBoundaries);
    rows->setVerticalSpacing(0);
    rows->addWidget(named(new QLabel(fraBoundaries), "lblPageHeader"), 0, 0);
    rows->addWidget(named(new QLabel(fraBoundaries), "lblBoundary"), 0, 1);
    for (int p = 0; p < kPages; ++p) {
        lblPage_[p] = named(new QLabel(fraBoundaries), QStringLiteral("lblPage(%1)").arg(p));
        txtBoundary_[p] = named(new QLineEdit(fraBoundaries), QStringLiteral("txtBoundary(%1)").arg(p));
        QLineEdit* box = txtBoundary_[p];
        box->setMaximumWidth(60);
        filterToDigits(*box);
        box->installEventFilter(this);
        paintBox(*box, colorOf(kNormalBoxBackColor), colorOf(kNormalBoxTextColor));
        connect(box, &QLineEdit::textChanged, this, [this, box] {
            paintBox(*box, colorOf(kNormalBoxBackColor), colorOf(kNormalBoxTextColor));
            if (refusedBox_ == box) refusedBox_ = nullptr;
        });
        rows->addWidget(lblPage_[p], p + 1, 0);
        rows->addWidget(box, p + 1, 1, Qt::AlignLeft);
    }
    rows->setColumnStretch(1, 1);
    auto* column = new QVBoxLayout(tab);
    column->addWidget(fraBoundaries);
    column->addStretch(1);
    return tab;
}

QString frmProperties::text(int32_t id, const char* defaultText) const {
    return QString::fromStdString(translator_.text(id, defaultText));
}

void frmProperties::setCaptions() {
    setWindowTitle(text(4613, "iClass Properties"));
    // The button texts come from the language library only; without one the usual words show.
    const QString ok = text(16, "");
    const QString cancel = text(17, "");
    const QString missing = QString::fromUtf8(Translator::NotFoundText.data(), Translator::NotFoundText.size());
    cmdOK_->setText(ok == missing ? QStringLiteral("OK") : ok);
    cmdCancel_->setText(cancel == missing ? QStringLiteral("Cancel") : cancel);
    tabIClass_->setTabText(0, text(4535, "General properties"));
    findChild<QGroupBox*>("fraChipType")->setTitle(text(4042, "Chip Configuration"));
    optChipType_[0]->setText(text(4614, "2Kbit Chip"));
    optChipType_[1]->setText(text(4615, "16Kbit Chip"));
    cboMemoryType_->addItem(text(4616, "1 Page"));
    // Entry 1 selects the eight-page chip; its default word stays as it is.
    cboMemoryType_->addItem(text(4617, "2 Pages"));
    findChild<QGroupBox*>("fraExtra")->setTitle(text(4046, "Extra options"));
    chkICHID_->setText(text(4047, "Encode HID Access Control Application"));
    chkICBitwise_->setText(text(4048, "Enable bitwise encoding"));
    tabIClass_->setTabText(1, text(4641, "Application Boundaries"));
    findChild<QGroupBox*>("fraBoundaries")->setTitle(text(4043, "Set the application boundaries for your pages:"));
    findChild<QLabel*>("lblPageHeader")->setText(text(4044, "Page:"));
    findChild<QLabel*>("lblBoundary")->setText(text(4618, "Put Application boundary before block:"));
    for (int p = 0; p < kPages; ++p) lblPage_[p]->setText(QStringLiteral("Page %1").arg(p));
}

void frmProperties::fillFromCard() {
    for (QLineEdit* box : txtBoundary_) box->setText(QStringLiteral("18"));
    if (Card) {
        switch (Card->ChipSize()) {
            case iSmallOnePage:
                optChipType_[0]->setChecked(true);
                break;
            case iBigOnePage:
                optChipType_[1]->setChecked(true);
                cboMemoryType_->setCurrentIndex(0);
                break;
            case iBigEightPages:
                optChipType_[1]->setChecked(true);
                cboMemoryType_->setCurrentIndex(1);
                break;
        }
        chkICBitwise_->setChecked(Card->EnableBitwise());
        chkICHID_->setChecked(Card->UseHIDSection());
        const BoundaryTexts texts = boundaryTextsOf(*Card);
        for (int p = 0; p < kPages; ++p) txtBoundary_[p]->setText(QString::fromStdString(texts[p]));
    }
    updateBoundaryTab();
}

// Once the layout has items its chip type stays as it is.
void frmProperties::lockChipTypeWithItems() {
    if (!hasItems(records_)) return;
    for (QRadioButton* option : optChipType_) option->setEnabled(false);
    cboMemoryType_->setEnabled(false);
}

void frmProperties::chipTypeClicked() {
    if (optChipType_[0]->isChecked()) cboMemoryType_->setEnabled(false);
    if (optChipType_[1]->isChecked()) cboMemoryType_->setEnabled(true);
    lockChipTypeWithItems();
    updateBoundaryTab();
}

void frmProperties::updateBoundaryTab() {
    tabIClass_->setTabEnabled(1, boundaryTabEnabled(optChipType_[1]->isChecked(), cboMemoryType_->currentIndex()));
}

BoundaryTexts frmProperties::boundaryTexts() const {
    BoundaryTexts texts;
    for (int p = 0; p < kPages; ++p) texts[p] = txtBoundary_[p]->text().toStdString();
    return texts;
}

void frmProperties::paintBox(QLineEdit& box, const QColor& back, const QColor& fore) {
    QPalette palette = box.palette();
    palette.setColor(QPalette::Base, back);
    palette.setColor(QPalette::Text, fore);
    box.setPalette(palette);
}

bool frmProperties::eventFilter(QObject* watched, QEvent* event) {
    auto* box = qobject_cast<QLineEdit*>(watched);
    if (box && std::find(txtBoundary_.begin(), txtBoundary_.end(), box) != txtBoundary_.end()) {
        if (event->type() == QEvent::FocusIn) {
            // After the event: a mouse press that brought the focus would drop the selection.
            QTimer::singleShot(0, box, [box] {
                if (box->hasFocus()) box->selectAll();
            });
        } else if (event->type() == QEvent::FocusOut) {
            const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
            // Another window coming up (a message box, a menu) is no leaving of the box.
            if (reason != Qt::ActiveWindowFocusReason && reason != Qt::PopupFocusReason && !checkingBox_) boxLeft(*box);
        }
    }
    return QDialog::eventFilter(watched, event);
}

// Trims the box and checks it; a refused box takes the focus back.
bool frmProperties::boxLeft(QLineEdit& box) {
    const QString trimmed = QString::fromStdString(trimBlanks(box.text().toStdString()));
    if (trimmed != box.text()) box.setText(trimmed);
    checkingBox_ = true;
    const bool ok = CheckNumberInRange(kMinBoundary, kMaxBoundary, trimmed.toStdString(), {}, prompter_, translator_);
    if (!ok) {
        refusedBox_ = &box;
        box.setFocus(Qt::OtherFocusReason);
    }
    checkingBox_ = false;
    return ok;
}

void frmProperties::okClicked() {
    // A refused box keeps the dialog open. Enter on the default button leaves the box without
    // a focus change, so its check runs here unless a click on OK has just shown it.
    for (QLineEdit* box : txtBoundary_)
        if (box->hasFocus() && !checkBoundaryBox(box->text().toStdString(), translator_).ok) {
            if (refusedBox_ != box) boxLeft(*box);
            return;
        }
    const LayoutPropertiesCheck check =
        checkLayoutProperties(boundaryTexts(), chkICHID_->isChecked(), records_, translator_);
    const QColor cutBack = QApplication::palette().color(QPalette::ToolTipBase);
    for (int p = 0; p < kPages; ++p)
        if (check.cutBoxes[p]) paintBox(*txtBoundary_[p], cutBack, colorOf(kCutBoxTextColor));
    if (!acceptLayoutProperties(check, prompter_)) return;
    writeBack();
    Cancelled = false;
    Unchanged = false;
    accept();
}

void frmProperties::keyPressEvent(QKeyEvent* event) {
    // Escape is Cancel; only the window's close button keeps the written-back copy unchecked.
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier) {
        cancelClicked();
        return;
    }
    QDialog::keyPressEvent(event);
}

void frmProperties::cancelClicked() {
    Cancelled = true;
    reject();
}

void frmProperties::writeBack() {
    if (!Card) Card = std::make_unique<CIClass>();
    // A box without a number leaves the pages with the boundaries they were built with.
    writeLayoutProperties(*Card, optChipType_[0]->isChecked(), cboMemoryType_->currentIndex(),
                          chkICBitwise_->isChecked(), chkICHID_->isChecked(), boundaryTexts());
}

void frmProperties::done(int result) {
    writeBack();
    QDialog::done(result);
}

}  // namespace kestrin
