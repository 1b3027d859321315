#pragma once
#include <QMainWindow>

#include "text/CatalogRegistry.h"

class QPlainTextEdit;

namespace kestrin {

class IClass;

// A badge-design host's document window: the control in the middle, a menu item for every
// automation member (properties read and set, methods called by name with their arguments
// asked for), an event log, and error dialogs for the errors the control raises.
class HostWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit HostWindow(const QString& workFolder);
    IClass& control() { return *control_; }
    void log(const QString& line);
    // Errors the control raises appear in error boxes unless a script answers for the operator.
    void setErrorBoxes(bool on) { errorBoxes_ = on; }

private:
    void buildMenus();
    void callMember(int methodIndex);
    void editProperty(int propertyIndex);

    CatalogRegistry registry_;
    IClass* control_ = nullptr;
    QPlainTextEdit* log_ = nullptr;
    bool errorBoxes_ = true;
};

// Copies the bundled sample project and layouts into folder (once) so saving never touches
// the bundled files; sets the control's stored properties to them.
void setUpSampleProject(IClass& control, CatalogRegistry& registry, const QString& folder);

}  // namespace kestrin
