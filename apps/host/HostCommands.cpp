// The commands an operator uses in the demo host: File, Layout, Item and Language menus, the
// toolbar, the window title with the unsaved mark, the status bar and recent files. Each
// command calls the control's members by name, as any host does.
#include <QAction>
#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeySequence>
#include <QMenuBar>
#include <QMetaMethod>
#include <QMessageBox>
#include <QSettings>
#include <QStatusBar>
#include <QToolBar>

#include "HostWindow.h"
#include "control/IClass.h"
#include "control/LanguageLibraries.h"

namespace kestrin {

namespace {

constexpr int kRecentFiles = 6;

QSettings settings() { return QSettings(QStringLiteral("Kestrin"), QStringLiteral("demo host")); }

}  // namespace

QVariant HostWindow::call(const char* member) {
    const QMetaObject* meta = control_->metaObject();
    const QMetaMethod method = meta->method(meta->indexOfMethod(QByteArray(member) + "()"));
    QVariant result(method.returnMetaType(), nullptr);
    if (method.returnMetaType().id() == QMetaType::Void)
        method.invoke(control_, Qt::DirectConnection);
    else
        method.invoke(control_, Qt::DirectConnection,
                      QGenericReturnArgument(method.returnMetaType().name(), result.data()));
    refreshState();
    return result;
}

void HostWindow::buildOperatorCommands() {
    QToolBar* tools = addToolBar(QStringLiteral("Layout"));
    tools->setObjectName(QStringLiteral("toolbar"));
    auto command = [&](QMenu* menu, const QString& text, auto&& run, bool layout, QKeySequence keys = {},
                       bool onToolbar = true) {
        QAction* action = menu->addAction(text, this, run);
        action->setShortcut(keys);
        if (onToolbar) tools->addAction(action);
        if (layout) needLayout_.push_back(action);
        return action;
    };

    QMenu* file = menuBar()->addMenu(QStringLiteral("&File"));
    command(file, QStringLiteral("&New..."), [this] {
        QMetaObject::invokeMethod(control_, "NewLayout", Q_ARG(bool, true));
        call("FetchDBFields");
    }, false, QKeySequence::New);
    command(file, QStringLiteral("&Open..."), [this] { chooseAndOpen(); }, false, QKeySequence::Open);
    command(file, QStringLiteral("&Save"), [this] {
        if (call("SaveLayout").toBool()) remember(control_->LayoutFile());
    }, true, QKeySequence::Save);
    command(file, QStringLiteral("Save &As..."), [this] {
        if (call("SaveiClassAs").toBool()) remember(control_->LayoutFile());
    }, true, QKeySequence::SaveAs, false);
    command(file, QStringLiteral("&Close"), [this] { call("CloseLayout"); }, true, QKeySequence::Close, false);
    recent_ = file->addMenu(QStringLiteral("&Recent Layouts"));
    file->addSeparator();
    file->addAction(QStringLiteral("&Quit"), QKeySequence::Quit, this, &QWidget::close);
    tools->addSeparator();

    QMenu* layout = menuBar()->addMenu(QStringLiteral("&Layout"));
    command(layout, QStringLiteral("&Properties..."), [this] { call("SetProperties"); }, true);
    command(layout, QStringLiteral("Pre&view..."), [this] { call("ShowPreview"); }, true, QKeySequence(Qt::CTRL | Qt::Key_P));
    command(layout, QStringLiteral("&Fetch Database Fields"), [this] { call("FetchDBFields"); }, true, {}, false);
    tools->addSeparator();

    QMenu* item = menuBar()->addMenu(QStringLiteral("&Item"));
    command(item, QStringLiteral("Add &Field..."), [this] { call("AddField"); }, true, QKeySequence(Qt::CTRL | Qt::Key_F));
    command(item, QStringLiteral("Add F&unction..."), [this] { call("AddFunction"); }, true, QKeySequence(Qt::CTRL | Qt::Key_U));
    command(item, QStringLiteral("Add Item over &Multiple Tracks..."), [this] { call("AddItemOverMultipleTracks"); }, true,
            QKeySequence(Qt::CTRL | Qt::Key_M));
    command(item, QStringLiteral("Add &Database Update..."), [this] { call("AddDBUpdateItem"); }, true,
            QKeySequence(Qt::CTRL | Qt::Key_D));
    command(item, QStringLiteral("&Edit..."), [this] { call("EditItem"); }, true, QKeySequence(Qt::CTRL | Qt::Key_E));
    command(item, QStringLiteral("&Remove"), [this] { removeSelected(); }, true, QKeySequence(Qt::CTRL | Qt::Key_R));

    QMenu* language = menuBar()->addMenu(QStringLiteral("L&anguage"));
    language->addAction(QStringLiteral("&Standard Library..."), this, [this] { chooseLanguage("LanguageDLL"); });
    language->addAction(QStringLiteral("&Customer Library..."), this, [this] { chooseLanguage("CustomLanguageDLL"); });

    QMenu* help = menuBar()->addMenu(QStringLiteral("&Help"));
    help->addAction(QStringLiteral("&About"), this, [this] { call("ShowAbout"); });
    fillRecent();
}

bool HostWindow::openLayout(const QString& file) {
    bool opened = false;
    QMetaObject::invokeMethod(control_, "OpenLayout", Q_RETURN_ARG(bool, opened), Q_ARG(QString, file));
    if (opened) {
        call("FetchDBFields");
        remember(file);
    }
    refreshState();
    return opened;
}

void HostWindow::chooseAndOpen() {
    const QString file = QFileDialog::getOpenFileName(this, QStringLiteral("Open Layout"), control_->IifDirectory(),
                                                      QStringLiteral("Layouts (*.IIF *.iif);;All files (*)"));
    if (!file.isEmpty()) openLayout(file);
}

// A library is loaded once for the process; its handle goes to the control like any host's (on
// Windows a language DLL's module handle). Windows hosts keep their language DLLs beside the
// program, so there the dialog starts in the program's folder.
void HostWindow::chooseLanguage(const char* property) {
#ifdef _WIN32
    const QString folder = QCoreApplication::applicationDirPath();
#else
    const QString folder;
#endif
    const QString file = QFileDialog::getOpenFileName(this, QStringLiteral("Language Library"), folder,
                                                      QStringLiteral("Language libraries (*.dll *.DLL *.txt);;All files (*)"));
    if (file.isEmpty()) return;
    QString why;
    const LanguageHandle handle = loadLanguageLibrary(file, &why);
    if (handle == 0) {
        QMessageBox::warning(this, QStringLiteral("Language Library"), why);
        return;
    }
    control_->setProperty(property, qlonglong{handle});
    statusBar()->showMessage(QFileInfo(file).fileName() + QStringLiteral(" loaded"), 5000);
}

void HostWindow::removeSelected() {
    call(control_->SelectedGrid() == QStringLiteral("DBUpdates") ? "RemoveDBUpdateItem" : "RemoveItem");
}

void HostWindow::remember(const QString& file) {
    if (file.isEmpty()) return;
    QSettings store = settings();
    QStringList files = store.value(QStringLiteral("recent")).toStringList();
    files.removeAll(file);
    files.prepend(file);
    while (files.size() > kRecentFiles) files.removeLast();
    store.setValue(QStringLiteral("recent"), files);
    fillRecent();
}

void HostWindow::fillRecent() {
    recent_->clear();
    const QStringList files = settings().value(QStringLiteral("recent")).toStringList();
    for (const QString& file : files) recent_->addAction(file, this, [this, file] { openLayout(file); });
    recent_->setEnabled(!files.isEmpty());
}

// The title names the layout and marks it while it is unsaved; commands that need a layout
// are offered only while one is open.
void HostWindow::refreshState() {
    const bool open = control_->CLessLayoutEntered();
    for (QAction* action : needLayout_) action->setEnabled(open);
    const QString file = control_->LayoutFile();
    const QString name = !open ? QStringLiteral("no layout")
                         : file.isEmpty() ? QStringLiteral("Untitled")
                                          : QFileInfo(file).fileName();
    setWindowTitle(name + QStringLiteral("[*] - Kestrin demo host"));
    setWindowModified(open && !control_->Saved());
    statusBar()->showMessage(!open ? QStringLiteral("Open or create a layout.")
                             : control_->Saved() ? QStringLiteral("Saved: ") + file
                                                 : QStringLiteral("Unsaved changes"));
}

}  // namespace kestrin
