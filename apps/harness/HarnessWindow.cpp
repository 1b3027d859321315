#include "HarnessWindow.h"

#include <QDir>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QHeaderView>
#include <QScreen>
#include <QTableWidget>
#include <QToolBar>

#include "editor/frmEditiClass.h"
#include "items/GridRows.h"
#include "items/frmDBUpdate.h"
#include "items/frmMultiTrack.h"
#include "preview/frmPreview.h"

namespace kestrin {

HarnessWindow::HarnessWindow(const QString& layout, const QString& project, const QString& language)
    : layout_(layout) {
    setWindowTitle("Kestrin dialog harness - " + layout);
    if (!language.isEmpty()) doc_.translator().setLanguageDLL(registry_.open(language.toStdString()));
    if (!project.isEmpty()) doc_.fetchFields(project.toStdString());
    if (layout.isEmpty())
        doc_.newLayout();
    else
        doc_.open(layout.toStdString());

    auto* tools = addToolBar("Dialogs");
    tools->addAction("Add Field", this, [this] { addItem(0); });
    tools->addAction("Add Function", this, [this] { addItem(1); });
    tools->addAction("Add Bit Field", this, [this] { addItem(2); });
    tools->addAction("Add Bit Function", this, [this] { addItem(3); });
    tools->addAction("Over Multiple Tracks", this, &HarnessWindow::addMultiTrack);
    tools->addAction("Database Update", this, &HarnessWindow::addDatabaseUpdate);
    tools->addAction("Preview", this, &HarnessWindow::preview);
    tools->addAction("Save", this, &HarnessWindow::save);

    table_ = new QTableWidget(this);
    table_->setColumnCount(8);
    table_->setHorizontalHeaderLabels({"Name", "Kind", "Page", "Block", "Byte", "Bytes", "Bit", "Bits"});
    table_->horizontalHeader()->setStretchLastSection(true);
    setCentralWidget(table_);
    resize(900, 500);
    refresh();
}

void HarnessWindow::addItem(int mode) {
    frmEditiClass dialog(doc_, mode, -1, this);
    dialog.exec();
    refresh();
}

void HarnessWindow::addMultiTrack() {
    frmMultiTrack dialog(doc_, -1, this);
    dialog.exec();
    refresh();
}

void HarnessWindow::addDatabaseUpdate() {
    frmDBUpdate dialog(doc_, -1, this);
    dialog.exec();
    refresh();
}

void HarnessWindow::preview() {
    frmPreview dialog(*doc_.card(), doc_.records(), doc_.translator(), layout_,
                      PrintServices{&printSetup_, &fileChooser_}, this);
    dialog.exec();
}

void HarnessWindow::save() {
    doc_.save();
}

namespace {

// Shows a dialog without blocking, lets the window system draw it, and saves the screen's
// picture of it.
void screenshot(QDialog& dialog, const QString& file) {
    dialog.show();
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 400) QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    const QRect frame = dialog.frameGeometry();
    QGuiApplication::primaryScreen()
        ->grabWindow(0, frame.x(), frame.y(), frame.width(), frame.height())
        .save(file);
    dialog.close();
}

}  // namespace

void HarnessWindow::saveScreenshots(const QString& folder) {
    QDir().mkpath(folder);
    const QDir dir(folder);
    for (int mode = 0; mode < 4; ++mode) {
        frmEditiClass editor(doc_, mode, -1, this);
        screenshot(editor, dir.filePath(QString("frmEditiClass-mode%1.png").arg(mode)));
    }
    frmMultiTrack multiTrack(doc_, -1, this);
    screenshot(multiTrack, dir.filePath("frmMultiTrack.png"));
    frmDBUpdate update(doc_, -1, this);
    screenshot(update, dir.filePath("frmDBUpdate.png"));
    frmPreview map(*doc_.card(), doc_.records(), doc_.translator(), layout_,
                   PrintServices{&printSetup_, &fileChooser_}, this);
    screenshot(map, dir.filePath("frmPreview.png"));
}

void HarnessWindow::refresh() {
    const auto rows = itemRows(doc_.records());
    table_->setRowCount(static_cast<int>(rows.size()));
    auto cell = [](const std::optional<int16_t>& v) { return v ? QString::number(*v) : QString(); };
    for (int r = 0; r < static_cast<int>(rows.size()); ++r) {
        const ItemRow& row = rows[static_cast<size_t>(r)];
        const QStringList cells = {QString::fromStdString(row.name), QString::fromStdString(row.kind),
                                   QString::number(row.page), QString::number(row.block),
                                   QString::number(row.beginByte), cell(row.bytes), cell(row.beginBit), cell(row.bits)};
        for (int c = 0; c < cells.size(); ++c) table_->setItem(r, c, new QTableWidgetItem(cells[c]));
    }
}

}  // namespace kestrin
