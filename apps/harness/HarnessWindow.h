#pragma once
#include <QMainWindow>
#include <memory>

#include "card/CIClass.h"
#include "control/MessageBoxPrompter.h"
#include "items/DialogContext.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "preview/DialogPrintServices.h"
#include "text/CatalogRegistry.h"
#include "text/Translator.h"

class QTableWidget;

namespace kestrin {

// Opens a layout and lets a developer run every item dialog and the preview on it, showing
// the records after each dialog closes. No rules of its own: it only opens and lists.
class HarnessWindow : public QMainWindow {
    Q_OBJECT
public:
    HarnessWindow(const QString& layout, const QString& project, const QString& language);
    // Shows every dialog in turn and saves what the screen shows of it, one PNG a dialog.
    void saveScreenshots(const QString& folder);

private:
    void addItem(int mode);
    void addMultiTrack();
    void addDatabaseUpdate();
    void preview();
    void save();
    void refresh();
    DialogContext context();

    QString layout_;
    CatalogRegistry registry_;
    Translator translator_{&registry_};
    HostFieldList fields_;
    CIClass card_;
    RecordArray records_;
    MessageBoxPrompter prompter_{this};
    DialogPrintSetup printSetup_;
    DialogFileChooser fileChooser_;
    QTableWidget* table_ = nullptr;
};

}  // namespace kestrin
