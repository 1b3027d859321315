#pragma once
// One fixture for every dialog test: a layout document on a card (2 kbit, HID area on: free
// blocks 19 to 31 unless told), three host fields, a catalog whose texts read "T<number>" so a
// test sees which text was shown, a recording prompter, and helpers that drive the real
// controls by their names.
#include <QtTest>
#include <QtWidgets>
#include <gtest/gtest.h>

#include "card/CIClass.h"
#include "document/LayoutDocument.h"
#include "preview/PagePainter.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/CatalogRegistry.h"

namespace kestrin::test {

inline std::vector<std::string> texts(const RecordingPrompter& prompter) {
    std::vector<std::string> shown;
    for (const auto& m : prompter.messages) shown.push_back(m.text);
    return shown;
}

// Drives the real controls of a window by their names.
struct Controls {
    QWidget* root = nullptr;

    template <class T = QWidget>
    T* child(const QString& name) const {
        T* w = root->findChild<T*>(name);
        EXPECT_NE(w, nullptr) << name.toStdString();
        return w;
    }
    void click(const QString& name) const { child<QAbstractButton>(name)->click(); }
    void type(const QString& box, const QString& text) const {
        child<QLineEdit>(box)->clear();
        QTest::keyClicks(child<QLineEdit>(box), text);
    }
    QString text(const QString& box) const { return child<QLineEdit>(box)->text(); }
    void choose(const QString& combo, const QString& entry) const {
        EXPECT_GE(child<QComboBox>(combo)->findText(entry), 0) << combo.toStdString() << " has no " << entry.toStdString();
        child<QComboBox>(combo)->setCurrentIndex(child<QComboBox>(combo)->findText(entry));
    }
    // Clicks a row of the field grid, as the operator picks a field.
    void clickField(int row, Qt::KeyboardModifiers modifiers = {}) const {
        QTableWidget* grid = child<QTableWidget>("grdFields");
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, modifiers, grid->visualItemRect(grid->item(row, 0)).center());
    }
    // Moves the keyboard focus out of a box the way Tab does; a box that still has the focus
    // afterwards has taken it back.
    void leave(const QString& box) const {
        if (!child<QLineEdit>(box)->hasFocus()) {
            QFocusEvent out(QEvent::FocusOut, Qt::TabFocusReason);
            QApplication::sendEvent(child<QLineEdit>(box), &out);
        }
        QWidget* pageList = root->findChild<QWidget*>("cboPage");  // the update dialog has none
        (pageList ? pageList : child("grdFields"))->setFocus(Qt::TabFocusReason);
        QApplication::processEvents();
    }
    // Chooses place and size: block, begin byte and the size text.
    void place(int block, int byte, const QString& size) const {
        choose("cboRow", QString::number(block));
        choose("cboBeginByte", QString::number(byte));
        type("txtNrBytes", size);
    }
    void activate() const {
        root->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(root));
    }
    bool applyEnabled() const { return child<QPushButton>("cmdApply")->isEnabled(); }
    QColor mapColour(int row, int column) const {
        return child<QTableWidget>("grdPreview")->item(row, column)->background().color();
    }
};

struct DialogFixture : Controls {
    TempDir dir;
    CatalogRegistry registry;
    RecordingPrompter prompter{Answer::Ok};
    LayoutDocument doc{prompter, &registry};
    std::unique_ptr<QWidget> form;

    explicit DialogFixture(std::vector<ItemRecord> items = {}, IClassType chip = iSmallOnePage) {
        std::string catalog;
        for (int id : {3166, 3189, 4600, 4610, 4611, 4643, 4644})
            catalog += std::to_string(id) + "=T" + std::to_string(id) + "\n";
        writeBytes(dir / "lang.txt", catalog);
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
        form = std::make_unique<D>(doc, std::forward<Args>(args)...);
        form->show();
        root = form.get();
        return static_cast<D&>(*form);
    }
    const RecordArray& records() const { return doc.records(); }
    std::vector<std::string> messageTexts() const { return texts(prompter); }
};

}  // namespace kestrin::test
