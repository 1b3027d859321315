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
#include "rules/FunctionProperties.h"
#include "items/ItemColor.h"
#include "rules/MultiTrackValidation.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "preview/PagePainter.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

constexpr int kBytesPerBlock = 8;
constexpr int kBitsPerByte = 8;
constexpr int kPreviewMaxHeight = 420;

// Drops every printable key the number filter refuses; control keys (Tab, Enter, shortcuts)
// and keys without text (arrows, Home, Delete) go on to the box.
class DigitKeyFilter : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress) {
            const QString typed = static_cast<QKeyEvent*>(event)->text();
            if (!typed.isEmpty()) {
                const char32_t key = typed.toUcs4().value(0);
                const bool control = key < 0x20 || key == 0x7F;
                if (!control && !acceptsNumberKey(key)) return true;
            }
        }
        return QObject::eventFilter(watched, event);
    }
};

QString text(const DialogContext& ctx, int32_t id, const char* defaultText) {
    return QString::fromStdString(ctx.translator->text(id, defaultText));
}

template <class T>
T* named(T* widget, const char* name) {
    widget->setObjectName(name);
    return widget;
}

}  // namespace

void filterToDigits(QLineEdit& box) {
    box.installEventFilter(new DigitKeyFilter(&box));
    // Pasted or dropped text arrives as an edit: keep only what the key filter would let in.
    QObject::connect(&box, &QLineEdit::textEdited, &box, [&box](const QString& typed) {
        const QString kept = QString::fromStdString(filterNumberText(typed.toStdString()));
        if (kept != typed) box.setText(kept);
    });
}

void fillFieldGrid(QTableWidget& grid, const DialogContext& ctx) {
    grid.setColumnCount(2);
    grid.setHorizontalHeaderLabels({text(ctx, 3154, "<Field Name>"), text(ctx, 3184, "<Field Type>")});
    grid.verticalHeader()->hide();
    grid.setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid.setSelectionBehavior(QAbstractItemView::SelectRows);
    grid.setSelectionMode(QAbstractItemView::SingleSelection);
    grid.horizontalHeader()->setStretchLastSection(true);
    const auto& fields = ctx.fields ? ctx.fields->fields() : std::vector<HostField>{};
    grid.setRowCount(static_cast<int>(fields.size()));
    for (size_t i = 0; i < fields.size(); ++i) {
        const int row = static_cast<int>(i);
        grid.setItem(row, 0, new QTableWidgetItem(QString::fromStdString(fields[i].name)));
        grid.setItem(row, 1, new QTableWidgetItem(QString::fromStdString(fields[i].fieldType)));
    }
    grid.resizeColumnToContents(0);
    grid.setColumnWidth(0, std::max(grid.columnWidth(0), 150));
    grid.setMinimumWidth(grid.columnWidth(0) + 120);
}

frmMultiTrack::frmMultiTrack(DialogContext ctx, EditorRecord record, QWidget* parent)
    : QDialog(parent), ctx_(ctx) {
    setObjectName("frmMultiTrack");
    buildControls();
    setCaptions();
    fillFieldGrid(*grdFields_, ctx_);
    fillPages();
    if (record.editing) {
        // The stored record carries what the grid row does not show (its colour, above all).
        const ItemPosition pos{record.page, record.block, record.beginByte, record.numBytes, record.beginBit, 0};
        const uint16_t index = ctx_.records->findByPosition(pos, record.name, kKindBinaryField);
        if (index != RecordArray::kNone) owned_ = (*ctx_.records)[index];
        presetFrom(record);
    }
    loading_ = false;
    updateSpinLimits();
    paintPreview();
    cmdApply_->setEnabled(true);
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
    for (QPushButton* b : {cmdApply_, cmdOK_, cmdCancel_}) b->setAutoDefault(false);
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
    setWindowTitle(text(ctx_, 3192, "<Add item over multiple tracks>"));
    findChild<QLabel*>("lblFieldFunction")->setText(text(ctx_, 3111, "<Field>"));
    findChild<QGroupBox*>("fraAddTo")->setTitle(text(ctx_, 3138, "<Add to>"));
    findChild<QLabel*>("lblPage")->setText(text(ctx_, 4606, "<Page>"));
    findChild<QLabel*>("lblRow")->setText(text(ctx_, 3115, "Block"));
    findChild<QLabel*>("lblBeginByte")->setText(text(ctx_, 3116, "<Begin Byte>"));
    findChild<QLabel*>("lblBeginBit")->setText(text(ctx_, 4607, "<Begin Bit>"));
    findChild<QLabel*>("lblNrOfBytes")->setText(text(ctx_, 4608, "<Nr of Bytes>"));
    cmdApply_->setText(text(ctx_, 3153, "<&Apply>"));
    cmdOK_->setText(QStringLiteral("OK"));
    cmdCancel_->setText(QStringLiteral("Cancel"));
}

void frmMultiTrack::fillPages() {
    for (const CPage* page : ctx_.card->Pages().list())
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
    cboRow_->setCurrentIndex(index >= 0 ? index : (cboRow_->count() > 0 ? 0 : -1));
}

void frmMultiTrack::selectComboData(QComboBox& box, int value) {
    const int index = box.findData(value);
    if (index >= 0) box.setCurrentIndex(index);
}

void frmMultiTrack::presetFrom(const EditorRecord& record) {
    selectComboData(*cboPage_, record.page);
    fillRows(record.block);
    selectComboData(*cboBeginByte_, record.beginByte);
    selectComboData(*cboBeginBit_, record.beginBit);
    const auto matches = grdFields_->findItems(QString::fromStdString(record.name), Qt::MatchExactly);
    for (const QTableWidgetItem* match : matches)
        if (match->column() == 0) grdFields_->selectRow(match->row());
    txtSelectedField_->setText(QString::fromStdString(record.name));
    txtNrBytes_->setText(QString::number(record.numBytes));
}

int frmMultiTrack::currentPageNumber() const {
    return cboPage_->currentData().isValid() ? cboPage_->currentData().toInt() : -1;
}

const CPage* frmMultiTrack::currentPage() const {
    return ctx_.card->page(currentPageNumber());
}

void frmMultiTrack::updateSpinLimits() {
    const CPage* page = currentPage();
    const int block = cboRow_->currentData().toInt();
    const int byte = cboBeginByte_->currentData().toInt();
    const int room = page ? page->PageSize - (block * kBytesPerBlock + byte) : 1;
    const QSignalBlocker blocker(spinBytes_);
    spinBytes_->setRange(1, std::max(room, 1));
    bool ok = false;
    const int typed = txtNrBytes_->text().toInt(&ok);
    if (ok) spinBytes_->setValue(typed);
}

void frmMultiTrack::paintPreview() {
    const CPage* page = currentPage();
    if (!page) return;
    paintPage(*grdPreview_, *page, *ctx_.records, page->blockCount() > 32);
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

bool frmMultiTrack::apply() {
    MultiTrackRequest request;
    request.fieldName = txtSelectedField_->text().toStdString();
    request.page = static_cast<int16_t>(currentPageNumber());
    request.row = static_cast<int16_t>(cboRow_->currentData().isValid() ? cboRow_->currentData().toInt() : -1);
    request.beginByte =
        static_cast<int16_t>(cboBeginByte_->currentData().isValid() ? cboBeginByte_->currentData().toInt() : -1);
    request.beginBit = static_cast<int16_t>(cboBeginBit_->currentData().toInt());
    request.nrBytesText = txtNrBytes_->text().toStdString();

    RecordArray& records = *ctx_.records;
    const RecordArray before = records;
    int32_t slot = -1;
    if (owned_) {
        // The item being moved must not count as overlapping itself.
        const ItemPosition pos{owned_->page, owned_->block, owned_->beginByte, owned_->numBytes, owned_->beginBit, 0};
        const uint16_t index = records.findByPosition(pos, owned_->name, kKindBinaryField);
        if (index != RecordArray::kNone) {
            slot = index;
            records.removeByPosition(pos, owned_->name, kKindBinaryField);
        }
    }
    if (!ValidateMultiTrack(request, *ctx_.card, records, *ctx_.prompter, *ctx_.translator)) {
        records = before;
        return false;
    }

    ItemRecord item = owned_.value_or(ItemRecord{});
    if (!owned_) item.color = randomItemColor();
    item.isBinary = true;
    item.name = request.fieldName;
    item.page = request.page;
    item.block = request.row;
    item.beginByte = request.beginByte;
    item.beginBit = request.beginBit;
    item.numBytes = static_cast<int16_t>(txtNrBytes_->text().toInt());
    item.numBits = 0;

    records = before;
    if (slot >= 0)
        records[slot] = item;
    else if (!records.add(item))
        return false;
    owned_ = item;
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
