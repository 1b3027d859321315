#include "DialogParts.h"

#include <QEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLineEdit>
#include <QTableWidget>
#include <algorithm>

#include "persist/HostFields.h"
#include "rules/FunctionProperties.h"
#include "text/TextIds.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

// Drops every printable character the number filter refuses. Keys that edit or move rather
// than type (Delete, which arrives as the character 0x7F, arrows, Home, End, shortcuts such
// as paste) go on to the box.
class DigitKeyFilter : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress) {
            const QString typed = static_cast<QKeyEvent*>(event)->text();
            if (!typed.isEmpty()) {
                const char32_t key = typed.toUcs4().value(0);
                const bool control = key < 0x20 || key == 0x7F;
                if (!control && !acceptsNumberKey(key)) return true;
            }
        }
        return QObject::eventFilter(watched, event);
    }
};

}  // namespace

QString translated(const Translator& translator, int32_t id, std::string_view defaultText) {
    return QString::fromStdString(translator.text(id, defaultText));
}

QString translated(const Translator& translator, const TextRef& text) {
    return QString::fromStdString(translator.text(text));
}

void filterToDigits(QLineEdit& box) {
    box.installEventFilter(new DigitKeyFilter(&box));
    // Pasted or dropped text arrives as an edit: keep only what the key filter would let in.
    QObject::connect(&box, &QLineEdit::textEdited, &box, [&box](const QString& typed) {
        const QString kept = QString::fromStdString(filterNumberText(typed.toStdString()));
        if (kept == typed) return;
        const int cursor = box.cursorPosition() - static_cast<int>(typed.size() - kept.size());
        box.setText(kept);
        box.setCursorPosition(std::clamp(cursor, 0, static_cast<int>(kept.size())));
    });
}

void fillFieldGrid(QTableWidget& grid, const HostFieldList& fields, const Translator& translator) {
    grid.setColumnCount(2);
    grid.setHorizontalHeaderLabels({translated(translator, kTextFieldName), translated(translator, kTextFieldTypeColumn)});
    grid.verticalHeader()->hide();
    grid.setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid.setSelectionBehavior(QAbstractItemView::SelectRows);
    grid.setSelectionMode(QAbstractItemView::SingleSelection);
    grid.horizontalHeader()->setStretchLastSection(true);
    const auto& list = fields.fields();
    grid.setRowCount(static_cast<int>(list.size()));
    for (size_t i = 0; i < list.size(); ++i) {
        const int row = static_cast<int>(i);
        grid.setItem(row, 0, new QTableWidgetItem(QString::fromStdString(list[i].dbField)));
        grid.setItem(row, 1, new QTableWidgetItem(QString::fromStdString(list[i].fieldType)));
    }
    grid.resizeColumnToContents(0);
    grid.setColumnWidth(0, std::max(grid.columnWidth(0), 150));
    grid.setMinimumWidth(grid.columnWidth(0) + 120);
}

}  // namespace kestrin
