// The item commands: adding, editing and removing items through the item dialogs, the
// layout properties and the preview.
#include <QTableView>

#include "DbUpdateGridModel.h"
#include "IClass.h"
#include "ItemGridModel.h"
#include "dialogs/frmProperties.h"
#include "rules/PlacementValidation.h"
#include "editor/frmEditiClass.h"
#include "items/frmDBUpdate.h"
#include "items/frmMultiTrack.h"
#include "preview/frmPreview.h"

namespace kestrin {

namespace {

constexpr int kTextSelectItemFirst = 3104;
constexpr int kTextReallyRemove = 3105;

}  // namespace

DialogContext IClass::context() { return DialogContext{&ensureCard(), &records_, &fields_, &translator_, prompter_}; }

// A host may switch CLessLayoutEntered on without creating a layout; the dialogs then
// work on a default card rather than on nothing.
CIClass& IClass::ensureCard() {
    if (!card_) {
        card_ = std::make_unique<CIClass>();
        card_->setEnableBitwise(useBit_);
        card_->setUseHIDSection(useHID_);
    }
    return *card_;
}

void IClass::SetChipType(int sChipType) { ensureCard().setChipSize(static_cast<IClassType>(sChipType)); }

void IClass::SetAppBoundaries(QString sBoundaries) { ensureCard().SetBoundaries(sBoundaries.toStdString()); }

void IClass::AddField() { addItem(kModeField); }

void IClass::AddFunction() { addItem(kModeFunction); }

void IClass::addItem(int32_t mode) {
    if (!layoutEntered_) return;
    // A new item starts from a cleared record: no name, page 0, all numbers 0.
    frmEditiClass dialog(context(), mode, EditorRecord{}, this);
    runDialog(dialog);
    refresh();
}

void IClass::AddBitField() { notImplemented(); }

void IClass::AddBitFunction() { notImplemented(); }

void IClass::notImplemented() {
    tell(Icon::None, QStringLiteral("This function has not been implemented yet!"), QStringLiteral("QUORVANE"));
}

void IClass::AddDBUpdateItem() {
    if (!layoutEntered_) return;
    frmDBUpdate dialog(context(), -1, this);
    runDialog(dialog);
    refresh();
}

void IClass::AddItemOverMultipleTracks() {
    frmMultiTrack dialog(context(), EditorRecord{}, this);
    runDialog(dialog);
    refresh();
}

void IClass::EditItem() {
    if (!layoutEntered_) return;
    editItemRecord(itemModel_->editorRecordOfRow(currentRow(grdItems_)));
}

void IClass::editItemRecord(const EditorRecord& record) {
    if (!record.editing) {
        // The empty row (or a row that is no item) starts a new field instead.
        AddField();
        return;
    }
    if (record.kindWord == kKindBinaryField) {
        frmMultiTrack dialog(context(), record, this);
        runDialog(dialog);
    } else {
        frmEditiClass dialog(context(), record.kindCode, record, this);
        runDialog(dialog);
    }
    refresh();
}

void IClass::editDbUpdateRow() {
    if (!layoutEntered_) return;
    // Model row r is grid row r + 1; a row without an update opens the dialog for a new one.
    frmDBUpdate dialog(context(), records_.indexOfDbUpdateRow(currentRow(grdDBUpdateFields_) + 1), this);
    runDialog(dialog);
    refresh();
}

bool IClass::confirmRemove(const QString& name) {
    if (name.isEmpty()) {
        tell(Icon::Exclamation, text(kTextSelectItemFirst));
        return false;
    }
    const QString question = text(kTextSelectItemFirst) + QStringLiteral("\r\n") + text(kTextReallyRemove);
    return ask(Icon::Question, question, Buttons::YesNo) == Answer::Yes;
}

void IClass::RemoveItem() {
    const int row = currentRow(grdItems_);
    if (!confirmRemove(itemModel_->cellText(row, ItemGridModel::ColName))) return;
    const EditorRecord item = itemModel_->editorRecordOfRow(row);
    const ItemPosition pos{item.page, item.block, item.beginByte, item.numBytes, item.beginBit, item.numBits};
    if (records_.removeByPosition(pos, item.name, item.kindWord)) refresh();
}

void IClass::RemoveDBUpdateItem() {
    const int row = currentRow(grdDBUpdateFields_);
    if (!confirmRemove(dbModel_->cellText(row, DbUpdateGridModel::ColField))) return;
    const int32_t index = records_.indexOfDbUpdateRow(row + 1);
    if (index < 0) return;
    records_.removeAt(index);
    refresh();
}

void IClass::ShowPreview() {
    if (!card_) {
        tell(Icon::Exclamation, QStringLiteral("Error: no iClass object found!"));
        return;
    }
    frmPreview dialog(*card_, records_, translator_, layoutFile_, PrintServices{printSetup_, chooser_}, this);
    runDialog(dialog);
}

void IClass::SetProperties() {
    frmProperties dialog(records_, translator_, *prompter_, this);
    dialog.setCard(card_ ? std::make_unique<CIClass>(*card_) : nullptr);
    runDialog(dialog);
    if (dialog.Cancelled || !dialog.Card) return;
    card_ = std::move(dialog.Card);
    useBit_ = card_->EnableBitwise();
    useHID_ = card_->UseHIDSection();
    if (!dialog.Unchanged) {
        // The layout on disk no longer matches.
        saved_ = false;
        emit Changed();
    }
}

void IClass::NewLayout(bool bShowPropsDlg) {
    layoutEntered_ = true;
    card_.reset();
    records_.clear();
    layoutFile_.clear();
    ensureCard();
    if (bShowPropsDlg) SetProperties();
    refresh();
}

void IClass::ShowSettings() {}

}  // namespace kestrin
