#pragma once
// A harness for the item editor: a 2 kbit card with the HID section on (free blocks 19 to 31),
// three host fields, a recording prompter, and helpers that drive the real controls.
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "card/CIClass.h"
#include "rules/Encodings.h"
#include "editor/frmEditiClass.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

namespace kestrin::test {

struct Editor {
    CIClass card;
    RecordArray records;
    HostFieldList fields;
    Translator translator;
    RecordingPrompter prompter{Answer::Ok};
    std::unique_ptr<frmEditiClass> form;

    explicit Editor(std::vector<ItemRecord> items = {}) {
        card.setChipSize(iSmallOnePage);
        for (const ItemRecord& r : items) records.add(r);
        fields.setFields({{"Surname", "NAME", "Character", 20, 0, true},
                          {"Number", "NUMBER", "Number", 6, 1, true},
                          {"Birthday", "BIRTH", "Date", 8, 2, true}});
    }
    frmEditiClass& open(int32_t mode, EditorRecord record = {}) {
        form = std::make_unique<frmEditiClass>(DialogContext{&card, &records, &fields, &translator, &prompter}, mode,
                                               record);
        form->show();
        return *form;
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
    void clickField(int row) const {
        QTableWidget* grid = child<QTableWidget>("grdFields");
        const QRect cell = grid->visualItemRect(grid->item(row, 0));
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, cell.center());
    }
    // Moves the keyboard focus out of a box the way Tab does.
    // The focus goes to the page list first, so a box that keeps the focus has taken it back.
    void leave(const QString& box) const {
        QLineEdit* e = child<QLineEdit>(box);
        QWidget* elsewhere = child<QComboBox>("cboPage");
        if (e->hasFocus()) {
            elsewhere->setFocus(Qt::TabFocusReason);
        } else {
            QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
            QApplication::sendEvent(e, &out);
            elsewhere->setFocus(Qt::TabFocusReason);
        }
        EXPECT_NE(form->focusWidget(), e);
        QApplication::processEvents();
    }
    // Chooses place and size: block, begin byte and the size text.
    void place(int block, int byte, const QString& size) const {
        choose("cboRow", QString::number(block));
        choose("cboBeginByte", QString::number(byte));
        type("txtNrBytes", size);
    }
    bool applyEnabled() const { return child<QPushButton>("cmdApply")->isEnabled(); }
};

inline bool lightColour(int32_t bgr) {
    for (int shift : {0, 8, 16}) {
        const int c = (bgr >> shift) & 0xFF;
        if (c < 127 || c > 227) return false;
    }
    return (bgr >> 24) == 0;
}

}  // namespace kestrin::test
