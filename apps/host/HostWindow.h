#pragma once
#include <QMainWindow>
#include <QStringList>
#include <vector>

class QAction;
class QMenu;
class QPlainTextEdit;

namespace kestrin {

class IClass;

// A badge-design host's document window: the control in the middle; File, Layout, Item and
// Language menus with a toolbar for the commands an operator uses; the layout's name in the
// title with a mark while it is unsaved; a status bar and recent files. For host developers a
// menu item for every automation member (properties read and set, methods called by name with
// their arguments asked for), an event log, and error dialogs for the errors the control raises.
class HostWindow : public QMainWindow {
    Q_OBJECT
public:
    explicit HostWindow(const QString& workFolder);
    IClass& control() { return *control_; }
    void log(const QString& line);
    // Opens a layout as the File menu does: by member name, then the project's fields.
    bool openLayout(const QString& file);
    // Errors the control raises appear in error boxes unless a script answers for the operator.
    void setErrorBoxes(bool on) { errorBoxes_ = on; }

private:
    void buildMemberMenus();
    void buildOperatorCommands();
    void callMember(int methodIndex);
    void editProperty(int propertyIndex);
    // Calls a member by name, as a host does; the answer of a member that has one.
    QVariant call(const char* member);
    void chooseAndOpen();
    void chooseLanguage(const char* property);
    void removeSelected();
    void remember(const QString& file);
    void fillRecent();
    void refreshState();

    IClass* control_ = nullptr;
    std::vector<QAction*> needLayout_;  // commands that cannot run without a layout
    QMenu* recent_ = nullptr;
    QPlainTextEdit* log_ = nullptr;
    bool errorBoxes_ = true;
};

// Copies the bundled sample project and layouts into folder (once) so saving never touches
// the bundled files; sets the control's stored properties to them and loads the English texts
// as its standard language library (on Windows kestrin-en.dll beside the program, if there).
void setUpSampleProject(IClass& control, const QString& folder);

}  // namespace kestrin
