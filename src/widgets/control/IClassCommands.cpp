// The item commands: adding, editing and removing items through the item dialogs, the
// layout properties and the preview. Each dialog session is one change of the document.
#include <QTableView>

#include "IClassGuard.h"
#include "base/ProductInfo.h"
#include "dialogs/frmProperties.h"
#include "editor/frmEditiClass.h"
#include "items/frmDBUpdate.h"
#include "items/frmMultiTrack.h"
#include "preview/frmPreview.h"

namespace kestrin {

void IClass::SetChipType(IClassType sChipType) {
    guarded([&] { doc_.setChipType(sChipType); });
}

void IClass::SetAppBoundaries(QString sBoundaries) {
    // A one-page card refuses boundaries with the page collection's lookup error.
    guarded([&] { doc_.setAppBoundaries(sBoundaries.toStdString()); });
}

void IClass::AddField() { addItem(kModeField); }

void IClass::AddFunction() { addItem(kModeFunction); }

void IClass::addItem(int32_t mode) {
    if (!doc_.layoutEntered()) return;
    guarded([&] {
        doc_.batch([&] {
            frmEditiClass dialog(doc_, mode, -1, this);
            runDialog(dialog);
        });
    });
}

void IClass::AddBitField() {
    doc_.prompter().tell(Icon::None, "This function has not been implemented yet!", "QUORVANE");
}

void IClass::AddBitFunction() { AddBitField(); }

void IClass::AddDBUpdateItem() {
    if (!doc_.layoutEntered()) return;
    guarded([&] {
        doc_.batch([&] {
            frmDBUpdate dialog(doc_, -1, this);
            runDialog(dialog);
        });
    });
}

void IClass::AddItemOverMultipleTracks() {
    guarded([&] {
        doc_.batch([&] {
            frmMultiTrack dialog(doc_, -1, this);
            runDialog(dialog);
        });
    });
}

void IClass::EditItem() {
    if (!doc_.layoutEntered()) return;
    editItemRecord(doc_.editorRecordOfRow(currentRow(grdItems_)));
}

void IClass::editItemRecord(const EditorRecord& record) {
    if (!record.editing) {
        // The empty row (or a row that is no item) starts a new field instead.
        AddField();
        return;
    }
    const int32_t index = doc_.recordIndexOf(record);
    guarded([&] {
        doc_.batch([&] {
            if (record.kindWord == kKindBinaryField) {
                frmMultiTrack dialog(doc_, index, this);
                runDialog(dialog);
            } else {
                frmEditiClass dialog(doc_, record.kindCode, index, this);
                runDialog(dialog);
            }
        });
    });
}

void IClass::editDbUpdateRow() {
    if (!doc_.layoutEntered()) return;
    // A row without an update opens the dialog for a new one.
    guarded([&] {
        doc_.batch([&] {
            frmDBUpdate dialog(doc_, doc_.dbUpdateIndexOfRow(currentRow(grdDBUpdateFields_)), this);
            runDialog(dialog);
        });
    });
}

void IClass::RemoveItem() {
    guarded([&] { doc_.removeItemRow(currentRow(grdItems_)); });
}

void IClass::RemoveDBUpdateItem() {
    guarded([&] { doc_.removeDbUpdateRow(currentRow(grdDBUpdateFields_)); });
}

void IClass::ShowPreview() {
    if (!doc_.card()) {
        doc_.prompter().tell(Icon::Exclamation, "Error: no iClass object found!", kProductTitle);
        return;
    }
    guarded([&] {
        frmPreview dialog(*doc_.card(), doc_.records(), doc_.translator(), LayoutFile(),
                          PrintServices{printSetup_, chooser_}, this);
        runDialog(dialog);
    });
}

// The properties dialog edits a copy of the card; OK (or the window's close button) hands
// the copy back, Cancel drops it.
void IClass::runProperties() {
    frmProperties dialog(doc_, this);
    dialog.setCard(doc_.card() ? std::make_unique<CIClass>(*doc_.card()) : nullptr);
    runDialog(dialog);
    if (dialog.Cancelled || !dialog.Card) return;
    doc_.adoptCard(*dialog.Card, !dialog.Unchanged);
}

void IClass::SetProperties() {
    guarded([&] { runProperties(); });
}

void IClass::NewLayout(bool bShowPropsDlg) {
    // The new layout and the properties chosen for it are one change.
    guarded([&] {
        doc_.batch([&] {
            doc_.newLayout();
            if (bShowPropsDlg) runProperties();
        });
    });
}

void IClass::ShowSettings() {}

}  // namespace kestrin
