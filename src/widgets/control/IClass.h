#pragma once
#include <QObject>
#include <QString>
#include <QVariant>
#include <QWidget>
#include <functional>
#include <memory>

#include "base/Prompter.h"
#include "card/IClassType.h"
#include "document/LayoutDocument.h"
#include "preview/DialogPrintServices.h"
#include "text/LanguageHandle.h"

class QDialog;
class QLabel;
class QTableView;

namespace kestrin {

class CatalogRegistry;
class DbUpdateGridModel;
class ItemGridModel;
class MessageBoxPrompter;

// The layout designer control a host places on its form: the item grid above, the
// database-update grid below. It is the view and the automation adapter of one layout
// document, which holds the layout and decides what every command does.
//
// A host drives it only by member name through the meta-object (properties and invokable
// methods below, declared in the host interface's order); on Windows the ActiveX control iClass
// (src/activex) gives COM hosts the same members. Messages go through the Prompter, file names
// through the FileChooser, so a host or a test can replace both.
//
// Errors: no C++ exception leaves a member. A run-time error the control raises ("No filename
// given.", "File doesn't exist", the page collection's lookup errors) is reported through the
// exception() signal before the member returns, and on Windows to the COM caller as an
// automation error. Every other failure is told to the operator in message boxes.
//
// The automation surface starts at this class (ToSuperClass): the 13 properties, the 26 methods
// and the events Changed, GenericEvent and exception, with fixed class, interface and event
// identifiers.
class IClass : public QWidget {
    Q_OBJECT
    Q_CLASSINFO("ClassID", "{CFF5FADD-5208-4487-8281-58F37B481C32}")
    Q_CLASSINFO("InterfaceID", "{22881314-D62C-4247-8D49-30149AE52187}")
    Q_CLASSINFO("EventsID", "{2D43453C-58DB-4979-8B00-28F17483292F}")
    Q_CLASSINFO("ToSuperClass", "kestrin::IClass")
    Q_CLASSINFO("Description", "Kestrin layout designer control")
    // ShowAbout is the control's About entry (the container's standard about-box member).
    Q_CLASSINFO("ShowAbout", "about")

    Q_PROPERTY(QString ProjectFile READ ProjectFile WRITE setProjectFile)
    Q_PROPERTY(QString IifDirectory READ IifDirectory WRITE setIifDirectory)
    Q_PROPERTY(QString PellmarkINI READ PellmarkINI WRITE setPellmarkINI)
    Q_PROPERTY(bool CLessLayoutEntered READ CLessLayoutEntered WRITE setCLessLayoutEntered)
    Q_PROPERTY(bool UseBit READ UseBit WRITE setUseBit)
    Q_PROPERTY(bool UseHID READ UseHID WRITE setUseHID)
    Q_PROPERTY(QString LayoutFile READ LayoutFile)
    Q_PROPERTY(QString EncodePath READ EncodePath WRITE setEncodePath)
    Q_PROPERTY(bool Saved READ Saved)
    // A language handle is a registry handle or, on Windows, a module handle from LoadLibrary: in a
    // 64-bit Windows build the properties are 64-bit so that a module handle is kept whole.
#if defined(_WIN64)
    Q_PROPERTY(qlonglong LanguageDLL READ LanguageDLL WRITE setLanguageDLL)
    Q_PROPERTY(qlonglong CustomLanguageDLL READ CustomLanguageDLL WRITE setCustomLanguageDLL)
#else
    Q_PROPERTY(int LanguageDLL READ LanguageDLL WRITE setLanguageDLL)
    Q_PROPERTY(int CustomLanguageDLL READ CustomLanguageDLL WRITE setCustomLanguageDLL)
#endif
    Q_PROPERTY(QString AppName READ AppName WRITE setAppName)
    Q_PROPERTY(QString SelectedGrid READ SelectedGrid)

public:
    // The chip types, as the host passes them to SetChipType.
    enum IClassType {
        iSmallOnePage = kestrin::iSmallOnePage,
        iBigOnePage = kestrin::iBigOnePage,
        iBigEightPages = kestrin::iBigEightPages,
    };
    Q_ENUM(IClassType)

    explicit IClass(QWidget* parent = nullptr);
    ~IClass() override;

    // Host interface, in its order (properties are the Q_PROPERTYs above).
    Q_INVOKABLE void SetChipType(IClassType sChipType);
    Q_INVOKABLE void SetAppBoundaries(QString sBoundaries);
    Q_INVOKABLE void AddField();
    Q_INVOKABLE void AddFunction();
    Q_INVOKABLE void AddBitField();
    Q_INVOKABLE void AddBitFunction();
    Q_INVOKABLE void AddDBUpdateItem();
    Q_INVOKABLE void RemoveItem();
    Q_INVOKABLE void ShowPreview();
    Q_INVOKABLE void NewLayout(bool bShowPropsDlg);
    Q_INVOKABLE void SetProperties();
    // Holds the saved mark (bool) after the save.
    Q_INVOKABLE QVariant SaveLayout();
    Q_INVOKABLE bool SaveiClassAs();
    // Raises an error for an empty name or a missing file; false when the operator refused
    // a file of a later version.
    Q_INVOKABLE bool OpenLayout(QString sFileName);
    Q_INVOKABLE bool CloseLayout();
    // True when the project file gave at least one database field.
    Q_INVOKABLE bool FetchDBFields();
    Q_INVOKABLE void AddItemOverMultipleTracks();
    Q_INVOKABLE void RemoveDBUpdateItem();
    Q_INVOKABLE void ShowAbout();
    Q_INVOKABLE void ShowSettings();
    Q_INVOKABLE void EditItem();
    Q_INVOKABLE void CallGenericFunction(QString FunctionName, QString ParamList = QString());
    Q_INVOKABLE void SetPropertyValue(QString PropName, QString Value);
    Q_INVOKABLE QString GetPropertyValue(QString PropName);
    Q_INVOKABLE void SetObjectProperty(QString PropName, QObject* Value);
    Q_INVOKABLE QObject* GetObjectProperty(QString PropName);

    // Property accessors.
    QString ProjectFile() const { return projectFile_; }
    void setProjectFile(const QString& v) { projectFile_ = v; }
    QString IifDirectory() const { return iifDirectory_; }
    void setIifDirectory(const QString& v) { iifDirectory_ = v; }
    QString PellmarkINI() const { return pellmarkIni_; }
    void setPellmarkINI(const QString& v) { pellmarkIni_ = v; }
    bool CLessLayoutEntered() const { return doc_.layoutEntered(); }
    void setCLessLayoutEntered(bool v) { doc_.setLayoutEntered(v); }
    bool UseBit() const { return doc_.useBit(); }
    void setUseBit(bool v) { doc_.setUseBit(v); }
    bool UseHID() const { return doc_.useHID(); }
    void setUseHID(bool v) { doc_.setUseHID(v); }
    QString LayoutFile() const;
    QString EncodePath() const { return encodePath_; }
    void setEncodePath(const QString& v);
    bool Saved() const { return doc_.saved(); }
    LanguageHandle LanguageDLL() const { return doc_.translator().LanguageDLL(); }
    void setLanguageDLL(LanguageHandle handle);
    LanguageHandle CustomLanguageDLL() const { return doc_.translator().CustomLanguageDLL(); }
    void setCustomLanguageDLL(LanguageHandle handle);
    QString AppName() const { return appName_; }
    void setAppName(const QString& v) { appName_ = v; }
    QString SelectedGrid() const { return selectedGrid_; }
    // The container's design mode: the grids give way to a picture. Not part of the host
    // interface; a container sets it (on Windows from its ambient user mode).
    bool designMode() const { return designMode_; }
    void setDesignMode(bool on);

    // Seams for hosts and tests; the objects stay owned by the caller, nullptr restores
    // the default (message boxes, the system's file and print dialogs).
    void setPrompter(Prompter* prompter);
    void setFileChooser(FileChooser* chooser);
    void setPrintSetup(PrintSetup* setup);
    // The registry whose handles LanguageDLL and CustomLanguageDLL name; by default the
    // process's language libraries (loadLanguageLibrary).
    void setCatalogRegistry(const CatalogRegistry* registry);
    // Runs every modal dialog of the control; the default is dialog.exec().
    void setDialogRunner(std::function<int(QDialog&)> runner);

    // The layout behind the grids, for hosts that show more than the grids, and for tests.
    const LayoutDocument& document() const { return doc_; }
    LayoutDocument& document() { return doc_; }
    QChar decimalSeparator() const { return decimalSeparator_; }
    QTableView* itemGrid() const { return grdItems_; }
    QTableView* dbUpdateGrid() const { return grdDBUpdateFields_; }

signals:
    void Changed();
    void GenericEvent(QString sEventName, QString sParamList);
    // A run-time error raised by a member, reported before the member returns.
    void exception(int code, const QString& source, const QString& description, const QString& help);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Grids and surface (IClass.cpp).
    void buildSurface();
    void layoutSurface();
    void applyMode();
    void applyToolTips();
    void rebuildGrids();
    void documentChanged(LayoutDocument::Change change);
    int currentRow(const QTableView* grid) const;
    void startDrag();
    void dragTo(int y);
    void endDrag();

    // Item commands (IClassCommands.cpp).
    void addItem(int32_t mode);
    void editItemRecord(const EditorRecord& record);
    void editDbUpdateRow();
    void runProperties();

    // Files (IClassFiles.cpp).
    bool saveAs();

    // Bridge (IClassBridge.cpp).
    bool acceptsBridgeName(const QString& name);

    QString text(int32_t id, const char* defaultText = "") const;
    // Runs a member's work; an error it raises is reported, never thrown on to the host.
    template <class Fn>
    auto guarded(Fn&& work) -> decltype(work());
    void raise(int code, const QString& source, const QString& description);
    int runDialog(QDialog& dialog);

    std::unique_ptr<MessageBoxPrompter> ownPrompter_;
    LayoutDocument doc_;
    DialogFileChooser ownChooser_;
    FileChooser* chooser_ = &ownChooser_;
    DialogPrintSetup ownPrintSetup_;
    PrintSetup* printSetup_ = &ownPrintSetup_;
    std::function<int(QDialog&)> dialogRunner_;

    QString projectFile_;
    QString iifDirectory_;
    QString pellmarkIni_;
    QString encodePath_;
    QString appName_;
    QString selectedGrid_;
    bool designMode_ = false;
    bool splitterDrag_ = false;
    QChar decimalSeparator_;

    QTableView* grdItems_ = nullptr;
    QTableView* grdDBUpdateFields_ = nullptr;
    QWidget* splitterStrip_ = nullptr;  // the boundary between the grids, dragged to resize them
    QLabel* imgIClass_ = nullptr;
    ItemGridModel* itemModel_ = nullptr;
    DbUpdateGridModel* dbModel_ = nullptr;
    int itemsHeight_ = -1;  // the dragged height of the item grid; -1 splits in halves
};

// The save dialog's filter in the host's "description|pattern|..." form turned into Qt's
// "description (pattern);;..." form.
QString qtFileFilter(const QString& pipeFilter);

}  // namespace kestrin
