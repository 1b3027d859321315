#include "frmEditiClass.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QGroupBox>
#include <QItemSelectionModel>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <algorithm>
#include <optional>

#include "BitMapView.h"
#include "card/CIClass.h"
#include "rules/Encodings.h"
#include "items/ItemColor.h"
#include "persist/HostFields.h"
#include "preview/PagePainter.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

// Sets a flag for the life of a scope and puts its old value back afterwards.
class FlagScope {
public:
    explicit FlagScope(bool& flag) : flag_(flag), old_(flag) { flag_ = true; }
    ~FlagScope() { flag_ = old_; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

private:
    bool& flag_;
    bool old_;
};

std::vector<std::string> splitCombined(const std::string& name) {
    std::vector<std::string> parts;
    size_t start = 0;
    for (;;) {
        const size_t at = name.find(kCombinedFieldSeparator, start);
        parts.push_back(name.substr(start, at == std::string::npos ? std::string::npos : at - start));
        if (at == std::string::npos) return parts;
        start = at + kCombinedFieldSeparator.size();
    }
}

}  // namespace

frmEditiClass::frmEditiClass(DialogContext ctx, int32_t mode, EditorRecord record, QWidget* parent)
    : QDialog(parent), ctx_(ctx), mode_(mode), record_(std::move(record)) {
    setObjectName(QStringLiteral("frmEditiClass"));
    FlagScope filling(filling_);
    buildControls();
    setCaptions();
    if (isFunctionMode(mode_)) {
        if (ctx_.fields)
            for (const HostField& f : ctx_.fields->fields()) cboFieldList_->addItem(QString::fromStdString(f.dbField));
        cboFieldList_->setCurrentIndex(-1);
        functionClicked(-1);
    } else {
        fillFieldGrid();
        setEncodingOptions(fieldType_);
    }
    fillPages();
    if (record_.editing) presetFromRecord();
    changed_ = false;
    refreshApply();
    repaintPreview();
}

// ---- Fields and encoding ----------------------------------------------------------------

void frmEditiClass::fillFieldGrid() {
    if (!ctx_.fields) return;
    const auto& fields = ctx_.fields->fields();
    grdFields_->setRowCount(static_cast<int>(fields.size()));
    for (size_t i = 0; i < fields.size(); ++i) {
        const HostField& f = fields[i];
        const int row = static_cast<int>(i);
        grdFields_->setItem(row, 0, new QTableWidgetItem(QString::fromStdString(f.dbField)));
        grdFields_->setItem(row, 1, new QTableWidgetItem(QString::fromStdString(f.fieldType)));
        grdFields_->setItem(row, 2, new QTableWidgetItem(QString::number(f.fieldSize)));
        grdFields_->setItem(row, 3, new QTableWidgetItem(QString::fromStdString(f.name)));
    }
    grdFields_->resizeColumnsToContents();
}

void frmEditiClass::fieldSelectionChanged() {
    // Keep the rows in the order the operator chose them: the first one gives the type.
    std::vector<int> selected;
    for (const QModelIndex& index : grdFields_->selectionModel()->selectedRows()) selected.push_back(index.row());
    std::erase_if(chosenRows_, [&](int row) { return std::ranges::find(selected, row) == selected.end(); });
    std::ranges::sort(selected);
    for (int row : selected)
        if (std::ranges::find(chosenRows_, row) == chosenRows_.end()) chosenRows_.push_back(row);

    QStringList names;
    for (int row : chosenRows_) names << grdFields_->item(row, 0)->text();
    txtSelectedField_->setText(names.join(QString::fromLatin1(kCombinedFieldSeparator.data(),
                                                              static_cast<qsizetype>(kCombinedFieldSeparator.size()))));
    fieldType_ = chosenRows_.empty() ? int16_t{-1}
                                     : fieldTypeCode(grdFields_->item(chosenRows_.front(), 1)->text().toStdString());
    setEncodingOptions(fieldType_);
    markChanged();
}

void frmEditiClass::setEncodingOptions(int16_t fieldType) {
    const EncodingOptions options = encodingOptions(fieldType, mode_);
    for (size_t i = 0; i < optEncode_.size(); ++i) {
        const EncodeOption& o = options.options[i];
        optEncode_[i]->setText(text(o.textId, std::string(o.defaultCaption).c_str()));
        optEncode_[i]->setVisible(o.visible);
        optEncode_[i]->setEnabled(o.enabled);
    }
    if (options.selected >= 0) optEncode_[static_cast<size_t>(options.selected)]->setChecked(true);
    setFormatList(options.selected);
}

void frmEditiClass::encodeClicked(int option) {
    setFormatList(option);
    markChanged();
}

void frmEditiClass::setFormatList(int option) {
    const std::vector<std::string_view> formats =
        mode_ == kModeField ? formatList(fieldType_, option) : std::vector<std::string_view>{};
    {
        FlagScope filling(filling_);
        cboFormat_->clear();
        for (std::string_view f : formats)
            cboFormat_->addItem(QString::fromLatin1(f.data(), static_cast<qsizetype>(f.size())));
        cboFormat_->setCurrentIndex(formats.empty() ? -1 : 0);
    }
    cboFormat_->setVisible(!formats.empty());
    lblFormat_->setVisible(!formats.empty());
}

// ---- Position, size and preview -----------------------------------------------------------

const CPage* frmEditiClass::currentPage() const {
    if (!ctx_.card || cboPage_->currentIndex() < 0) return nullptr;
    return ctx_.card->page(cboPage_->currentText().toInt());
}

void frmEditiClass::fillPages() {
    if (!ctx_.card) return;
    {
        FlagScope filling(filling_);
        for (const CPage* p : ctx_.card->Pages().list()) cboPage_->addItem(QString::number(p->PageNumber));
    }
    cboPage_->setCurrentIndex(cboPage_->count() > 0 ? 0 : -1);
    pageChosen();
}

void frmEditiClass::pageChosen() {
    const CPage* page = currentPage();
    {
        FlagScope filling(filling_);
        const QString row = cboRow_->currentText();
        cboRow_->clear();
        if (page)
            for (int b = page->BeginFreeSpace; b < page->blockCount(); ++b) cboRow_->addItem(QString::number(b));
        const int keep = cboRow_->findText(row);
        cboRow_->setCurrentIndex(keep >= 0 ? keep : (cboRow_->count() > 0 ? 0 : -1));
        if (isFunctionMode(mode_)) fillRangeLists();
    }
    markChanged();
    repaintPreview();
}

void frmEditiClass::positionChosen() {
    markChanged();
    repaintPreview();
}

void frmEditiClass::setCurrentTextOf(QComboBox* box, int value) {
    const int index = box->findText(QString::number(value));
    if (index >= 0) box->setCurrentIndex(index);
}

void frmEditiClass::sizeEdited() {
    if (filling_) return;
    const CPage* page = currentPage();
    const bool parity = checkedProperty() == kChecksumParity;
    const std::string limited =
        limitSizeText(txtNrBytes_->text().toStdString(), mode_, txtSelectedField_->text().toStdString(), parity,
                      page ? page->PageSize : 0);
    if (limited != txtNrBytes_->text().toStdString()) txtNrBytes_->setText(QString::fromStdString(limited));
    markChanged();
}

void frmEditiClass::markChanged() {
    if (filling_) return;
    changed_ = true;
    refreshApply();
}

void frmEditiClass::refreshApply() {
    cmdApply_->setEnabled(changed_);
}

void frmEditiClass::repaintPreview() {
    const CPage* page = currentPage();
    if (!page || !ctx_.records) return;
    if (isBitMode(mode_))
        paintBitPage(*grdPreview_, *page, *ctx_.records);
    else
        paintPage(*grdPreview_, *page, *ctx_.records, true);
}

// ---- Reading the controls and applying ------------------------------------------------------

EditorEntries frmEditiClass::entries() const {
    EditorEntries e;
    e.mode = mode_;
    e.selectedText = txtSelectedField_->text().toStdString();
    e.itemName = e.selectedText;
    e.fieldType = fieldType_;
    e.page = static_cast<int16_t>(currentPage() ? currentPage()->PageNumber : -1);
    e.row = static_cast<int16_t>(cboRow_->currentIndex() < 0 ? -1 : cboRow_->currentText().toInt());
    e.beginByte = static_cast<int16_t>(cboBeginByte_->currentIndex());
    e.beginBit = static_cast<int16_t>(isBitMode(mode_) ? std::max(0, cboBeginBit_->currentIndex()) : 0);
    e.sizeText = txtNrBytes_->text().toStdString();
    if (isFunctionMode(mode_)) {
        e.function = functionInput();
        e.function.rangePage = e.page;
    } else {
        e.encodeOption = encodeGroup_->checkedId();
        e.formatIndex = cboFormat_->currentIndex();  // -1 when the choice has no format list
    }
    return e;
}

QLineEdit* frmEditiClass::boxOf(EditorBox box) const {
    switch (box) {
    case EditorBox::NrBytes: return txtNrBytes_;
    case EditorBox::ConstantValue: return txtConstantValue_;
    case EditorBox::Polynom: return txtPolynom_;
    case EditorBox::StartValue: return txtStartValue_;
    case EditorBox::None: break;
    }
    return nullptr;
}

bool frmEditiClass::apply() {
    if (!ctx_.card || !ctx_.records || !ctx_.prompter || !ctx_.translator) return false;
    const EditorEntries e = entries();

    // An edited item makes way for its new version; it comes back when the new one is refused.
    std::optional<ItemRecord> old;
    if (editingPending_) {
        const ItemPosition at{record_.page,      record_.block,   record_.beginByte,
                              record_.numBytes,  record_.beginBit, record_.numBits};
        const uint16_t index = ctx_.records->findByPosition(at, record_.name, record_.kindWord);
        if (index != RecordArray::kNone) {
            old = (*ctx_.records)[index];
            ctx_.records->removeByPosition(at, record_.name, record_.kindWord);
        }
    }

    const PlacementResult result = ValidatePlacement(placementRequestOf(e), *ctx_.card, *ctx_.records,
                                                     *ctx_.prompter, *ctx_.translator);
    if (result.code == kPlacementRejected) {
        if (old) ctx_.records->add(*old);
        if (QLineEdit* box = boxOf(result.focus)) {
            box->setFocus();
            box->selectAll();
        }
        return false;
    }

    const int32_t color = editingPending_ ? editColor_ : randomItemColor();
    const ItemRecord written = itemRecordOf(e, color);
    ctx_.records->add(written);
    if (editingPending_) {
        // Further Applies of this item replace the version just written.
        record_.page = written.page, record_.block = written.block, record_.beginByte = written.beginByte;
        record_.numBytes = written.numBytes, record_.beginBit = written.beginBit, record_.numBits = written.numBits;
        record_.name = written.name;
        record_.kindWord = std::string(kindWord(written));
    }
    repaintPreview();
    changed_ = false;
    refreshApply();
    ++applied_;
    return true;
}

void frmEditiClass::newItem() {
    FlagScope filling(filling_);
    editingPending_ = false;
    cboBeginBit_->setCurrentIndex(0);
    txtNrBytes_->clear();
    if (!isFunctionMode(mode_)) {
        grdFields_->clearSelection();
        chosenRows_.clear();
        txtSelectedField_->clear();
        fieldType_ = -1;
        setEncodingOptions(fieldType_);
    }
}

void frmEditiClass::okClicked() {
    if (cmdApply_->isEnabled() && !apply()) return;
    Cancelled = false;
    accept();
}

void frmEditiClass::cancelClicked() {
    Cancelled = true;
    reject();
}

void frmEditiClass::presetFromRecord() {
    const ItemPosition at{record_.page, record_.block, record_.beginByte, record_.numBytes, record_.beginBit,
                          record_.numBits};
    const uint16_t index =
        ctx_.records ? ctx_.records->findByPosition(at, record_.name, record_.kindWord) : RecordArray::kNone;
    if (index == RecordArray::kNone) return;
    const ItemRecord r = (*ctx_.records)[index];
    editingPending_ = true;
    editColor_ = r.color;

    setCurrentTextOf(cboPage_, r.page);
    setCurrentTextOf(cboRow_, r.block);
    cboBeginByte_->setCurrentIndex(std::clamp<int>(r.beginByte, 0, 7));
    cboBeginBit_->setCurrentIndex(std::clamp<int>(r.beginBit, 0, 7));
    txtNrBytes_->setText(QString::number(isBitMode(mode_) ? r.numBits : r.numBytes));

    if (isFunctionMode(mode_)) {
        presetFunction(functionInputOf(r));
        return;
    }
    for (const std::string& part : splitCombined(r.name)) {
        const auto found = grdFields_->findItems(QString::fromStdString(part), Qt::MatchExactly);
        for (QTableWidgetItem* item : found) {
            if (item->column() != 0) continue;
            grdFields_->selectionModel()->select(grdFields_->model()->index(item->row(), 0),
                                                 QItemSelectionModel::Select | QItemSelectionModel::Rows);
            break;
        }
    }
    if (mode_ != kModeField) return;
    const EncodingChoice choice = encodingChoiceOf(fieldType_, r.encodingCode);
    if (choice.option < 0) return;
    optEncode_[static_cast<size_t>(choice.option)]->setChecked(true);
    setFormatList(choice.option);
    if (choice.formatIndex >= 0) cboFormat_->setCurrentIndex(choice.formatIndex);
}

}  // namespace kestrin
