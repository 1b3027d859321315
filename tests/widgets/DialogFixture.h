#pragma once
// One fixture for every dialog test: a layout document on a card (2 kbit, HID area on: free
// blocks 19 to 31 unless told), host fields of the five types, a catalog registry in which a test may
// open a library whose texts read "T<number>" (to see which text was shown), a recording prompter, and
// helpers that drive the real controls by their names.
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

// Opens a language library in which each of the given text numbers reads "T<number>".
inline int32_t numberedLibrary(CatalogRegistry& registry, const std::filesystem::path& file, const std::vector<int>& ids) {
    std::string lines;
    for (int id : ids) lines += std::to_string(id) + "=T" + std::to_string(id) + "\n";
    writeBytes(file, lines);
    return registry.open(file);
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
    bool checked(const QString& name) const { return child<QAbstractButton>(name)->isChecked(); }
    void type(const QString& box, const QString& text) const {
        child<QLineEdit>(box)->clear();
        QTest::keyClicks(child<QLineEdit>(box), text);
    }
    QString text(const QString& box) const { return child<QLineEdit>(box)->text(); }
    QString current(const QString& combo) const { return child<QComboBox>(combo)->currentText(); }
    void choose(const QString& combo, const QString& entry) const {
        EXPECT_GE(child<QComboBox>(combo)->findText(entry), 0) << combo.toStdString() << " has no " << entry.toStdString();
        child<QComboBox>(combo)->setCurrentIndex(child<QComboBox>(combo)->findText(entry));
    }
    QStringList entries(const QString& combo) const {
        QStringList out;
        for (int i = 0; i < child<QComboBox>(combo)->count(); ++i) out << child<QComboBox>(combo)->itemText(i);
        return out;
    }
    // The options of a frame ("optEncode", "optProperty") as the operator sees them: the caption
    // of each one shown, "*" after the checked one and "-" after one that cannot be chosen.
    QStringList options(const QString& frame) const {
        QStringList out;
        for (int i = 0; i < 4; ++i)
            if (auto* o = child<QRadioButton>(QStringLiteral("%1(%2)").arg(frame).arg(i)); o->isVisible())
                out << o->text() + (o->isChecked() ? "*" : "") + (o->isEnabled() ? "" : "-");
        return out;
    }
    // Those of the named controls that show.
    QStringList shown(const QStringList& names) const {
        QStringList out;
        for (const QString& n : names)
            if (child(n)->isVisible()) out << n;
        return out;
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
        doc.fields().setFields({{"Surname", "NAME", "Character", 20, 0, true}, {"Number", "NUMBER", "Number", 6, 1, true},
                                {"Amount", "AMOUNT", "Numeric", 6, 2, true},  {"Birthday", "BIRTH", "Date", 8, 3, true},
                                {"Photo", "PHOTO", "Binary", 64, 4, true}});
        CIClass card;
        card.setChipSize(chip);
        doc.setLayout(card, recordsOf(items));
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
