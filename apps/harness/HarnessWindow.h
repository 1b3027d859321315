#pragma once
#include <QMainWindow>
#include <memory>

#include "control/MessageBoxPrompter.h"
#include "document/LayoutDocument.h"
#include "preview/DialogPrintServices.h"
#include "text/CatalogRegistry.h"

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

    QString layout_;
    CatalogRegistry registry_;
    MessageBoxPrompter prompter_{this};
    LayoutDocument doc_{prompter_, &registry_};
    DialogPrintSetup printSetup_;
    DialogFileChooser fileChooser_;
    QTableWidget* table_ = nullptr;
};

}  // namespace kestrin
