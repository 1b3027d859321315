#pragma once
// One fixture for every dialog test: a layout document on a card (2 kbit, HID area on: free
// blocks 19 to 31 unless told), three host fields, a catalog whose texts read "T<number>" so a
// test sees which text was shown, a recording prompter, and helpers that drive the real
// controls by their names.
#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QTableWidget>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "card/CIClass.h"
#include "document/LayoutDocument.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/CatalogRegistry.h"

namespace kestrin::test {

// Every message and caption id the dialog tests look for.
inline std::string dialogCatalog() {
    std::string lines;
    for (int id : {3158, 3160, 3162, 3163, 3164, 3165, 3166, 3189, 3190, 3194, 3288, 4536, 4600, 4601, 4602, 4609,
                   4610, 4611, 4643, 4644})
        lines += std::to_string(id) + "=T" + std::to_string(id) + "\n";
    return lines;
}

struct DialogFixture {
    TempDir dir;
    CatalogRegistry registry;
    RecordingPrompter prompter{Answer::Ok};
    LayoutDocument doc{prompter, &registry};
    std::unique_ptr<QWidget> form;

    explicit DialogFixture(std::vector<ItemRecord> items = {}, IClassType chip = iSmallOnePage) {
        writeBytes(dir / "lang.txt", dialogCatalog());
        doc.translator().setLanguageDLL(registry.open(dir / "lang.txt"));
        doc.fields().setFields({{"Surname", "NAME", "Character", 20, 0, true},
                                {"Number", "NUMBER", "Number", 6, 1, true},
                                {"Birthday", "BIRTH", "Date", 8, 2, true}});
        CIClass card;
        card.setChipSize(chip);
        RecordArray records;
        for (const ItemRecord& r : items) records.add(r);
        doc.setLayout(card, std::move(records));
    }

    // Opens dialog D on the document, as the control does, and shows it.
    template <class D, class... Args>
    D& open(Args&&... args) {
        auto dialog = std::make_unique<D>(doc, std::forward<Args>(args)...);
        D& result = *dialog;
        form = std::move(dialog);
        form->show();
        return result;
    }

    template <class T>
    T* child(const QString& name) const {
        T* w = form->findChild<T*>(name);
        EXPECT_NE(w, nullptr) << name.toStdString();
        return w;
    }
    void click(const QString& name) const { child<QAbstractButton>(name)->click(); }
    void type(const QString& box, const QString& text) const {
        QLineEdit* e = child<QLineEdit>(box);
        e->clear();
        QTest::keyClicks(e, text);
    }
    QString text(const QString& box) const { return child<QLineEdit>(box)->text(); }
    void choose(const QString& combo, const QString& entry) const {
        QComboBox* c = child<QComboBox>(combo);
        const int i = c->findText(entry);
        EXPECT_GE(i, 0) << combo.toStdString() << " has no " << entry.toStdString();
        c->setCurrentIndex(i);
    }
    // Clicks a row of the field grid, as the operator picks a field.
    void clickField(int row, Qt::KeyboardModifiers modifiers = {}) const {
        QTableWidget* grid = child<QTableWidget>("grdFields");
        const QRect cell = grid->visualItemRect(grid->item(row, 0));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, modifiers, cell.center());
    }
    // Moves the keyboard focus out of a box the way Tab does, to the page list (or the field
    // grid); a box that still has the focus afterwards has taken it back.
    void leave(const QString& box) const {
        QLineEdit* e = child<QLineEdit>(box);
        QWidget* elsewhere = form->findChild<QComboBox*>("cboPage");
        if (!elsewhere) elsewhere = child<QTableWidget>("grdFields");
        if (e->hasFocus()) {
            elsewhere->setFocus(Qt::TabFocusReason);
        } else {
            QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
            QApplication::sendEvent(e, &out);
            elsewhere->setFocus(Qt::TabFocusReason);
        }
        QApplication::processEvents();
    }
    // Chooses place and size: block, begin byte and the size text.
    void place(int block, int byte, const QString& size) const {
        choose("cboRow", QString::number(block));
        choose("cboBeginByte", QString::number(byte));
        type("txtNrBytes", size);
    }
    const RecordArray& records() const { return doc.records(); }
    std::vector<std::string> messageTexts() const {
        std::vector<std::string> texts;
        for (const auto& m : prompter.messages) texts.push_back(m.text);
        return texts;
    }
};

}  // namespace kestrin::test
