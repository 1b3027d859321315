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
#include "base/NumberText.h"
#include "card/CIClass.h"
#include "document/LayoutDocument.h"
#include "rules/Encodings.h"
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

}  // namespace

frmEditiClass::frmEditiClass(LayoutDocument& doc, int32_t mode, int32_t editIndex, QWidget* parent)
    : QDialog(parent), doc_(doc), card_(doc.cardForEditing()), mode_(mode),
      editIndex_(editIndex >= 0 && editIndex < doc.records().size() ? editIndex : -1) {
    setObjectName(QStringLiteral("frmEditiClass"));
    FlagScope filling(filling_);
    buildControls();
    setCaptions();
    if (isFunctionMode(mode_)) {
        for (const HostField& f : doc_.fields().fields()) cboFieldList_->addItem(QString::fromStdString(f.dbField));
        cboFieldList_->setCurrentIndex(-1);
        functionClicked(-1);
    } else {
        fillFieldGrid();
        setEncodingOptions(fieldType_);
    }
    fillPages();
    if (editIndex_ >= 0) presetFromRecord();
    refreshApply();  // nothing is changed yet: the filling above marked nothing
    repaintPreview();
}

// ---- Fields and encoding ----------------------------------------------------------------

void frmEditiClass::fillFieldGrid() {
    const auto& fields = doc_.fields().fields();
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
    repaintPreview();
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
    if (cboPage_->currentIndex() < 0) return nullptr;
    return card_.page(cboPage_->currentText().toInt());
}

void frmEditiClass::fillPages() {
    {
        FlagScope filling(filling_);
        for (const CPage* p : card_.Pages().list()) cboPage_->addItem(QString::number(p->PageNumber));
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
    repaintPreview();
}

void frmEditiClass::markChanged() {
    if (filling_) return;
    changed_ = true;
    refreshApply();
}

void frmEditiClass::refreshApply() {
    cmdApply_->setEnabled(changed_);
}

// The page with the items on it and, marked over them until it is applied, the place the
// entries choose.
void frmEditiClass::repaintPreview() {
    const CPage* page = currentPage();
    if (!page) return;
    const EditorEntries e = entries();
    const int64_t size = wholeNumberOf(e.sizeText);
    std::optional<PlaceMark> mark;
    if (changed_ && e.row >= 0 && e.beginByte >= 0 && size > 0) {
        const PageAddress first = PageAddress::at(e.row, e.beginByte, isBitMode(mode_) ? e.beginBit : 0);
        mark = PlaceMark{isBitMode(mode_) ? BitSpan::ofBits(first, size) : BitSpan::ofBytes(first, size),
                         e.itemName.empty() ? std::string("?") : e.itemName};
    }
    if (isBitMode(mode_))
        paintBitPage(*grdPreview_, *page, doc_.records(), mark ? &*mark : nullptr);
    else
        paintPage(*grdPreview_, *page, doc_.records(), true, mark ? &*mark : nullptr);
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
    const LayoutDocument::ApplyResult result = doc_.applyItem(entries(), editIndex_);
    if (result.code == kPlacementRejected) {
        if (QLineEdit* box = boxOf(result.focus)) {
            box->setFocus();
            box->selectAll();
        }
        return false;
    }
    // Further Applies of this item replace the version just written.
    editIndex_ = result.index;
    changed_ = false;
    repaintPreview();
    refreshApply();
    ++applied_;
    return true;
}

void frmEditiClass::newItem() {
    FlagScope filling(filling_);
    editIndex_ = -1;
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
    const ItemRecord r = doc_.records()[editIndex_];
    setCurrentTextOf(cboPage_, r.page);
    setCurrentTextOf(cboRow_, r.block);
    cboBeginByte_->setCurrentIndex(std::clamp<int>(r.beginByte, 0, 7));
    cboBeginBit_->setCurrentIndex(std::clamp<int>(r.beginBit, 0, 7));
    txtNrBytes_->setText(QString::number(isBitMode(mode_) ? r.numBits : r.numBytes));

    if (isFunctionMode(mode_)) {
        presetFunction(functionInputOf(r));
        return;
    }
    for (const std::string& part : splitCombinedName(r.name)) {
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
