#include "HarnessWindow.h"

#include <QHeaderView>
#include <QTableWidget>
#include <QToolBar>

#include "editor/frmEditiClass.h"
#include "items/DialogContext.h"
#include "items/EditorRecord.h"
#include "items/GridRows.h"
#include "items/frmDBUpdate.h"
#include "items/frmMultiTrack.h"
#include "persist/LayoutReader.h"
#include "persist/LayoutSaver.h"
#include "preview/frmPreview.h"

namespace kestrin {

HarnessWindow::HarnessWindow(const QString& layout, const QString& project, const QString& language)
    : layout_(layout) {
    setWindowTitle("Kestrin dialog harness - " + layout);
    if (!language.isEmpty()) translator_.setLanguageDLL(registry_.open(language.toStdString()));
    if (!project.isEmpty()) fields_.fetch(project.toStdString());
    if (!layout.isEmpty()) readLayout(layout.toStdString(), card_, records_, prompter_, &fields_);

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
    frmEditiClass dialog(DialogContext{&card_, &records_, &fields_, &translator_, &prompter_}, mode, EditorRecord{},
                         this);
    dialog.exec();
    refresh();
}

void HarnessWindow::addMultiTrack() {
    frmMultiTrack dialog(DialogContext{&card_, &records_, &fields_, &translator_, &prompter_}, EditorRecord{}, this);
    dialog.exec();
    refresh();
}

void HarnessWindow::addDatabaseUpdate() {
    frmDBUpdate dialog(DialogContext{&card_, &records_, &fields_, &translator_, &prompter_}, -1, this);
    dialog.exec();
    refresh();
}

void HarnessWindow::preview() {
    frmPreview dialog(card_, records_, translator_, layout_, PrintServices{&printSetup_, &fileChooser_}, this);
    dialog.exec();
}

void HarnessWindow::save() {
    if (!layout_.isEmpty()) saveLayout(layout_.toStdString(), &card_, records_, fields_, prompter_, translator_);
}

void HarnessWindow::refresh() {
    const auto rows = itemRows(records_);
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
