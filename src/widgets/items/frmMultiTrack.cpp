#include "frmMultiTrack.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QItemSelectionModel>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QSpinBox>
#include <QTableWidget>
#include <algorithm>

#include "card/CIClass.h"
#include "card/CardGeometry.h"
#include "document/LayoutDocument.h"
#include "persist/HostFields.h"
#include "preview/PagePainter.h"
#include "shared/DialogParts.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

constexpr int kPreviewMaxHeight = 420;

}  // namespace

frmMultiTrack::frmMultiTrack(LayoutDocument& doc, int32_t editIndex, QWidget* parent)
    : QDialog(parent), doc_(doc), card_(doc.cardForEditing()),
      owned_(editIndex >= 0 && editIndex < doc.records().size() ? editIndex : -1) {
    setObjectName("frmMultiTrack");
    buildControls();
    setCaptions();
    fillFieldGrid(*grdFields_, doc_.fields(), doc_.translator());
    fillPages();
    if (owned_ >= 0) presetFrom(doc_.records()[owned_]);
    loading_ = false;
    updateSpinLimits();
    paintPreview();
    cmdApply_->setEnabled(false);  // nothing entered yet: OK closes at once
}

void frmMultiTrack::buildControls() {
    grdFields_ = named(new QTableWidget(this), "grdFields");
    txtSelectedField_ = named(new QLineEdit(this), "txtSelectedField");
    txtSelectedField_->setReadOnly(true);
    auto* lblField = named(new QLabel(this), "lblFieldFunction");

    auto* fraAddTo = named(new QGroupBox(this), "fraAddTo");
    cboPage_ = named(new QComboBox(fraAddTo), "cboPage");
    cboRow_ = named(new QComboBox(fraAddTo), "cboRow");
    cboBeginByte_ = named(new QComboBox(fraAddTo), "cboBeginByte");
    cboBeginBit_ = named(new QComboBox(fraAddTo), "cboBeginBit");
    for (int i = 0; i < kBytesPerBlock; ++i) cboBeginByte_->addItem(QString::number(i), i);
    for (int i = 0; i < kBitsPerByte; ++i) cboBeginBit_->addItem(QString::number(i), i);
    txtNrBytes_ = named(new QLineEdit(fraAddTo), "txtNrBytes");
    filterToDigits(*txtNrBytes_);
    spinBytes_ = named(new QSpinBox(fraAddTo), "spinBytes");
    // Only the arrows show: the number itself stands in txtNrBytes.
    spinBytes_->setFixedWidth(spinBytes_->sizeHint().height());
    spinBytes_->setFocusPolicy(Qt::NoFocus);

    auto* placement = new QGridLayout(fraAddTo);
    const std::pair<const char*, QWidget*> rows[] = {{"lblPage", cboPage_},
                                                     {"lblRow", cboRow_},
                                                     {"lblBeginByte", cboBeginByte_},
                                                     {"lblBeginBit", cboBeginBit_}};
    int line = 0;
    for (const auto& [label, box] : rows) {
        placement->addWidget(named(new QLabel(fraAddTo), label), line, 0);
        placement->addWidget(box, line++, 1, 1, 2);
    }
    placement->addWidget(named(new QLabel(fraAddTo), "lblNrOfBytes"), line, 0);
    placement->addWidget(txtNrBytes_, line, 1);
    placement->addWidget(spinBytes_, line, 2);
    placement->setColumnStretch(1, 1);

    grdPreview_ = createPageGrid(this, "grdPreview");
    cmdApply_ = named(new QPushButton(this), "cmdApply");
    cmdOK_ = named(new QPushButton(this), "cmdOK");
    cmdCancel_ = named(new QPushButton(this), "cmdCancel");
    // A focused button answers Enter itself; with the focus elsewhere Enter means OK.
    cmdOK_->setDefault(true);

    auto* left = new QVBoxLayout;
    auto* fieldLine = new QHBoxLayout;
    fieldLine->addWidget(lblField);
    fieldLine->addWidget(txtSelectedField_, 1);
    left->addLayout(fieldLine);
    left->addWidget(grdFields_, 1);
    left->addWidget(fraAddTo);
    auto* top = new QHBoxLayout;
    top->addLayout(left, 1);
    top->addWidget(grdPreview_, 0, Qt::AlignTop);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(cmdApply_);
    buttons->addWidget(cmdOK_);
    buttons->addWidget(cmdCancel_);
    auto* all = new QVBoxLayout(this);
    all->addLayout(top, 1);
    all->addLayout(buttons);

    // Selection, not the current cell: a grid that gains the focus makes its first cell
    // current by itself, which must not choose a field.
    connect(grdFields_, &QTableWidget::itemSelectionChanged, this, [this] {
        const auto picked = grdFields_->selectionModel()->selectedRows();
        if (!picked.isEmpty()) fieldChosen(picked.first().row());
    });
    connect(cboPage_, &QComboBox::currentIndexChanged, this, &frmMultiTrack::pageChosen);
    for (QComboBox* box : {cboRow_, cboBeginByte_, cboBeginBit_}) {
        connect(box, &QComboBox::currentIndexChanged, this, &frmMultiTrack::markChanged);
        connect(box, &QComboBox::currentIndexChanged, this, &frmMultiTrack::updateSpinLimits);
    }
    connect(txtNrBytes_, &QLineEdit::textChanged, this, &frmMultiTrack::nrBytesEdited);
    connect(spinBytes_, &QSpinBox::valueChanged, this, &frmMultiTrack::spinChanged);
    connect(cmdApply_, &QPushButton::clicked, this, &frmMultiTrack::apply);
    connect(cmdOK_, &QPushButton::clicked, this, &frmMultiTrack::okClicked);
    connect(cmdCancel_, &QPushButton::clicked, this, &frmMultiTrack::cancelClicked);
}

void frmMultiTrack::setCaptions() {
    const Translator& tr = doc_.translator();
    setWindowTitle(translated(tr, 3192, "<Add item over multiple tracks>"));
    findChild<QLabel*>("lblFieldFunction")->setText(translated(tr, kTextField));
    findChild<QGroupBox*>("fraAddTo")->setTitle(translated(tr, kTextAddTo));
    findChild<QLabel*>("lblPage")->setText(translated(tr, kTextPage));
    findChild<QLabel*>("lblRow")->setText(translated(tr, kTextBlock));
    findChild<QLabel*>("lblBeginByte")->setText(translated(tr, kTextBeginByte));
    findChild<QLabel*>("lblBeginBit")->setText(translated(tr, kTextBeginBit));
    findChild<QLabel*>("lblNrOfBytes")->setText(translated(tr, 4608, "<Nr of Bytes>"));
    cmdApply_->setText(translated(tr, kTextApply));
    cmdOK_->setText(QStringLiteral("OK"));
    cmdCancel_->setText(QStringLiteral("Cancel"));
}

void frmMultiTrack::fillPages() {
    for (const CPage* page : card_.Pages().list())
        cboPage_->addItem(QString::number(page->PageNumber), page->PageNumber);
    cboPage_->setCurrentIndex(cboPage_->count() > 0 ? 0 : -1);
    fillRows(-1);
}

// The blocks of the chosen page from its first free block on. A block before that is
// listed too when keepBlock names it: an edited item that lies there (a layout made with
// the HID area off) shows where it is, and Apply then refuses it.
void frmMultiTrack::fillRows(int keepBlock) {
    const QSignalBlocker block(cboRow_);
    const int previous = cboRow_->currentData().isValid() ? cboRow_->currentData().toInt() : -1;
    cboRow_->clear();
    if (const CPage* page = currentPage()) {
        if (keepBlock >= 0 && keepBlock < page->BeginFreeSpace) cboRow_->addItem(QString::number(keepBlock), keepBlock);
        for (int b = page->BeginFreeSpace; b < page->blockCount(); ++b) cboRow_->addItem(QString::number(b), b);
    }
    const int wanted = keepBlock >= 0 ? keepBlock : previous;
    const int index = cboRow_->findData(wanted);
    cboRow_->setCurrentIndex(std::max(index, 0));  // an empty list takes none
}

void frmMultiTrack::selectComboData(QComboBox& box, int value) {
    const int index = box.findData(value);
    if (index >= 0) box.setCurrentIndex(index);
}

// An older layout may name the item by the field's display name; it finds its field either way.
void frmMultiTrack::presetFrom(const ItemRecord& record) {
    selectComboData(*cboPage_, record.page);
    fillRows(record.block);
    selectComboData(*cboBeginByte_, record.beginByte);
    selectComboData(*cboBeginBit_, record.beginBit);
    const HostFieldList& fields = doc_.fields();
    for (size_t i = 0; i < fields.fields().size(); ++i) {
        const HostField& f = fields.fields()[i];
        if (f.dbField == record.name || f.name == record.name) {
            grdFields_->selectRow(static_cast<int>(i));
            break;
        }
    }
    txtSelectedField_->setText(QString::fromStdString(record.name));
    txtNrBytes_->setText(QString::number(record.numBytes));
}

int frmMultiTrack::currentPageNumber() const {
    return cboPage_->currentData().isValid() ? cboPage_->currentData().toInt() : -1;
}

const CPage* frmMultiTrack::currentPage() const {
    return card_.page(currentPageNumber());
}

void frmMultiTrack::updateSpinLimits() {
    const CPage* page = currentPage();
    const int block = cboRow_->currentData().toInt();
    const int byte = cboBeginByte_->currentData().toInt();
    const int room = page ? page->PageSize - static_cast<int>(PageAddress::at(block, byte).byte()) : 1;
    const QSignalBlocker blocker(spinBytes_);
    spinBytes_->setRange(1, std::max(room, 1));
    bool ok = false;
    const int typed = txtNrBytes_->text().toInt(&ok);
    if (ok) spinBytes_->setValue(typed);
}

void frmMultiTrack::paintPreview() {
    const CPage* page = currentPage();
    if (!page) return;
    paintPage(*grdPreview_, *page, doc_.records(), page->blockCount() > 32);
    fitPageGrid(*grdPreview_);
    // A long page scrolls instead of stretching the dialog beyond the screen.
    if (grdPreview_->height() > kPreviewMaxHeight) {
        grdPreview_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
        const int width = grdPreview_->width() + grdPreview_->verticalScrollBar()->sizeHint().width();
        grdPreview_->setFixedSize(width, kPreviewMaxHeight);
    }
}

void frmMultiTrack::markChanged() {
    if (!loading_) cmdApply_->setEnabled(true);
}

void frmMultiTrack::fieldChosen(int row) {
    const QTableWidgetItem* item = row >= 0 ? grdFields_->item(row, 0) : nullptr;
    if (!item) return;
    txtSelectedField_->setText(item->text());
    markChanged();
}

void frmMultiTrack::pageChosen() {
    fillRows(-1);
    updateSpinLimits();
    markChanged();
    if (!loading_) paintPreview();
}

void frmMultiTrack::nrBytesEdited(const QString& text) {
    bool ok = false;
    const int value = text.toInt(&ok);
    if (ok) {
        const QSignalBlocker blocker(spinBytes_);
        spinBytes_->setValue(value);
    }
    markChanged();
}

void frmMultiTrack::spinChanged(int value) {
    txtNrBytes_->setText(QString::number(value));
}

MultiTrackRequest frmMultiTrack::request() const {
    MultiTrackRequest q;
    q.fieldName = txtSelectedField_->text().toStdString();
    q.page = static_cast<int16_t>(currentPageNumber());
    q.row = static_cast<int16_t>(cboRow_->currentData().isValid() ? cboRow_->currentData().toInt() : -1);
    q.beginByte = static_cast<int16_t>(cboBeginByte_->currentData().isValid() ? cboBeginByte_->currentData().toInt() : -1);
    q.beginBit = static_cast<int16_t>(cboBeginBit_->currentData().toInt());
    q.nrBytesText = txtNrBytes_->text().toStdString();
    return q;
}

bool frmMultiTrack::apply() {
    const LayoutDocument::ApplyResult result = doc_.applyMultiTrack(request(), owned_);
    if (result.code == kPlacementRejected) return false;
    owned_ = result.index;
    paintPreview();
    cmdApply_->setEnabled(false);
    return true;
}

void frmMultiTrack::okClicked() {
    if (cmdApply_->isEnabled() && !apply()) return;
    Cancelled = false;
    accept();
}

void frmMultiTrack::cancelClicked() {
    Cancelled = true;
    reject();
}

}  // namespace kestrin
