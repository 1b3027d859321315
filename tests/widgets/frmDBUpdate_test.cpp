#include "items/frmDBUpdate.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QTest>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

#include "card/CIClass.h"
#include "items/GridRows.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/CatalogRegistry.h"
#include "text/Translator.h"

namespace kestrin {
namespace {

using test::RecordingPrompter;

constexpr const char* kCatalog = "3158=T3158\n3189=T3189\n3190=T3190\n";

// A database-update dialog over three host fields; the database names differ from the
// display names so a test sees which one is stored.
struct DBUpdate {
    test::TempDir dir;
    CatalogRegistry registry;
    Translator translator{&registry};
    RecordingPrompter prompter;
    CIClass card;
    RecordArray records;
    HostFieldList fields;
    std::unique_ptr<frmDBUpdate> form;

    explicit DBUpdate(std::vector<ItemRecord> items = {}) {
        test::writeBytes(dir / "lang.txt", kCatalog);
        translator.setLanguageDLL(registry.open(dir / "lang.txt"));
        fields.setFields({{"Name", "DB_NAME", "Character", 20, 0, true},
                          {"Printed", "DB_PRINTED", "Number", 4, 3, true},
                          {"Serial", "DB_SERIAL", "Number", 8, 5, true}});
        for (const ItemRecord& r : items) records.add(r);
    }
    void open(int32_t editIndex = -1) {
        form = std::make_unique<frmDBUpdate>(DialogContext{&card, &records, &fields, &translator, &prompter},
                                             editIndex);
    }
    template <class T>
    T* child(const QString& name) const {
        T* w = form->findChild<T*>(name);
        EXPECT_NE(w, nullptr) << name.toStdString();
        return w;
    }
    QLineEdit* box(const char* name) const { return child<QLineEdit>(name); }
    void chooseField(int row) const { child<QTableWidget>("grdFields")->setCurrentCell(row, 0); }
    void function(int index) const { child<QRadioButton>(QStringLiteral("optFunction(%1)").arg(index))->click(); }
    void property(int index) const { child<QRadioButton>(QStringLiteral("optProperty(%1)").arg(index))->click(); }
    void type(const char* name, const QString& text) const {
        box(name)->clear();
        QTest::keyClicks(box(name), text);
    }
    void click(const char* name) const { child<QPushButton>(name)->click(); }
};

struct Written {
    const char* name;
    std::function<void(DBUpdate&)> enter;
    int fieldRow;
    ItemRecord expected;
};

ItemRecord update(std::string dbField, int16_t column, std::string word, std::string p1, std::string p2 = {}) {
    ItemRecord r = test::dbUpdate(std::move(dbField), std::move(word), std::move(p1), std::move(p2));
    r.dbColumn = column;
    return r;
}

class DBUpdateFunctions : public ::testing::TestWithParam<Written> {};

TEST_P(DBUpdateFunctions, OkWritesOneRecordWithItsParameters) {
    const Written& c = GetParam();
    DBUpdate d({test::field("Card", 0, 20, 0, 4)});
    d.open();
    d.chooseField(c.fieldRow);
    c.enter(d);
    d.click("cmdOK");
    EXPECT_TRUE(d.prompter.messages.empty());
    EXPECT_FALSE(d.form->Cancelled);
    EXPECT_EQ(d.form->result(), QDialog::Accepted);
    ASSERT_EQ(d.records.size(), 2);
    EXPECT_EQ(d.records[1], c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Words, DBUpdateFunctions,
    ::testing::Values(
        Written{"Constant", [](DBUpdate& d) { d.type("txtConstantValue", "4294967295"); }, 0,
                update("DB_NAME", 0, "Constant", "4294967295")},
        Written{"ConstantLeadingZeros", [](DBUpdate& d) { d.type("txtConstantValue", "007"); }, 0,
                update("DB_NAME", 0, "Constant", "7")},
        Written{"Count",
                [](DBUpdate& d) {
                    d.function(1);
                    d.type("txtCountNumber", "10");
                    d.type("txtCountStep", "255");
                },
                1, update("DB_PRINTED", 3, "Count", "10", "255")},
        Written{"CardSnNrDecimal", [](DBUpdate& d) { d.function(2); }, 2, update("DB_SERIAL", 5, "CardSnNr", "0")},
        Written{"CardSnNrHexadecimal",
                [](DBUpdate& d) {
                    d.function(2);
                    d.property(1);
                },
                2, update("DB_SERIAL", 5, "CardSnNr", "1")}),
    [](const auto& tp) { return std::string(tp.param.name); });

TEST(DBUpdate, ShowsOnlyTheBoxesOfTheChosenFunction) {
    DBUpdate d;
    d.open();
    d.form->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(d.form.get()));
    struct Case {
        int function;
        bool constant, count, property;
    };
    for (const Case c : {Case{0, true, false, false}, Case{1, false, true, false}, Case{2, false, false, true}}) {
        d.function(c.function);
        EXPECT_EQ(d.box("txtConstantValue")->isVisible(), c.constant) << c.function;
        EXPECT_EQ(d.box("txtCountNumber")->isVisible(), c.count) << c.function;
        EXPECT_EQ(d.box("txtCountStep")->isVisible(), c.count) << c.function;
        EXPECT_EQ(d.child<QRadioButton>("optProperty(0)")->isVisible(), c.property) << c.function;
        EXPECT_EQ(d.child<QRadioButton>("optProperty(1)")->isVisible(), c.property) << c.function;
    }
    EXPECT_EQ(d.child<QRadioButton>("optProperty(1)")->text(), "<String hexadecimal>");
}

TEST(DBUpdate, NumberBoxesTakeDigitsOnly) {
    DBUpdate d;
    d.open();
    for (const char* name : {"txtConstantValue", "txtCountNumber", "txtCountStep"}) {
        d.type(name, "1a2");
        EXPECT_EQ(d.box(name)->text(), "12") << name;
        d.type(name, "-3 .4");
        EXPECT_EQ(d.box(name)->text(), "34") << name;
    }
}

struct OutOfRange {
    const char* name;
    int function;
    const char* box;
    const char* number, *step, *constant;
};

class DBUpdateRanges : public ::testing::TestWithParam<OutOfRange> {};

TEST_P(DBUpdateRanges, RefusedWithTheRangeMessageAndFocusBack) {
    const OutOfRange& c = GetParam();
    DBUpdate d;
    d.open();
    d.chooseField(0);
    d.function(c.function);
    d.type("txtCountNumber", c.number);
    d.type("txtCountStep", c.step);
    d.type("txtConstantValue", c.constant);
    d.click("cmdOK");
    ASSERT_EQ(d.prompter.messages.size(), 1u);
    EXPECT_TRUE(QString::fromStdString(d.prompter.messages[0].text).startsWith("T3189"))
        << d.prompter.messages[0].text;
    EXPECT_EQ(d.form->focusWidget(), d.box(c.box));
    EXPECT_TRUE(d.records.empty());
    EXPECT_TRUE(d.form->Cancelled);
    EXPECT_NE(d.form->result(), QDialog::Accepted);
}

INSTANTIATE_TEST_SUITE_P(Boxes, DBUpdateRanges,
                         ::testing::Values(OutOfRange{"Step256", 1, "txtCountStep", "1", "256", ""},
                                           OutOfRange{"StepEmpty", 1, "txtCountStep", "1", "", ""},
                                           OutOfRange{"Number256", 1, "txtCountNumber", "256", "1", ""},
                                           OutOfRange{"ConstantTooBig", 0, "txtConstantValue", "", "", "4294967296"},
                                           OutOfRange{"ConstantEmpty", 0, "txtConstantValue", "", "", ""}),
                         [](const auto& tp) { return std::string(tp.param.name); });

TEST(DBUpdate, MissingFieldRefused) {
    DBUpdate d;
    d.open();
    // Shown with the focus in the field grid, it still has no field until one is chosen.
    d.form->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(d.form.get()));
    d.child<QTableWidget>("grdFields")->setFocus();
    QApplication::processEvents();
    d.type("txtConstantValue", "5");
    d.click("cmdOK");
    ASSERT_EQ(d.prompter.messages.size(), 1u);
    EXPECT_EQ(d.prompter.messages[0].text, "T3158");
    EXPECT_EQ(d.prompter.messages[0].icon, Icon::Exclamation);
    EXPECT_TRUE(d.records.empty());
    EXPECT_TRUE(d.form->Cancelled);
}

TEST(DBUpdate, EditingPresetsEveryControlAndReplacesInPlace) {
    const ItemRecord item = test::field("Card", 0, 20, 0, 4);
    const ItemRecord count = update("DB_PRINTED", 3, "Count", "10", "2");
    const ItemRecord serial = update("DB_SERIAL", 5, "CardSnNr", "1");
    DBUpdate d({count, item, serial});
    d.open(0);
    EXPECT_EQ(d.box("txtSelectedField")->text(), "Printed");
    EXPECT_EQ(d.child<QTableWidget>("grdFields")->currentRow(), 1);
    EXPECT_TRUE(d.child<QRadioButton>("optFunction(1)")->isChecked());
    EXPECT_EQ(d.box("txtCountNumber")->text(), "10");
    EXPECT_EQ(d.box("txtCountStep")->text(), "2");

    d.type("txtCountStep", "3");
    d.chooseField(0);
    d.click("cmdOK");
    ASSERT_EQ(d.records.size(), 3);
    EXPECT_EQ(d.records[0], update("DB_NAME", 0, "Count", "10", "3"));
    EXPECT_EQ(d.records[1], item);
    EXPECT_EQ(d.records[2], serial);
    EXPECT_EQ(dbUpdateRowOf(d.records[0], d.translator).summary, "<Step>: 10. <Start value>: 3.");

    DBUpdate e({item, serial});
    e.open(1);
    EXPECT_TRUE(e.child<QRadioButton>("optFunction(2)")->isChecked());
    EXPECT_TRUE(e.child<QRadioButton>("optProperty(1)")->isChecked());
    EXPECT_EQ(e.box("txtSelectedField")->text(), "Serial");
    e.function(0);
    e.type("txtConstantValue", "42");
    e.click("cmdOK");
    ASSERT_EQ(e.records.size(), 2);
    EXPECT_EQ(e.records[1], update("DB_SERIAL", 5, "Constant", "42"));
}

TEST(DBUpdate, EditingAConstantPresetsItsValue) {
    DBUpdate d({update("DB_NAME", 0, "Constant", "99")});
    d.open(0);
    EXPECT_TRUE(d.child<QRadioButton>("optFunction(0)")->isChecked());
    EXPECT_EQ(d.box("txtConstantValue")->text(), "99");
    EXPECT_EQ(d.box("txtSelectedField")->text(), "Name");
    d.click("cmdOK");
    EXPECT_EQ(d.records.records(), std::vector<ItemRecord>{update("DB_NAME", 0, "Constant", "99")});
}

TEST(DBUpdate, CancelChangesNothing) {
    const ItemRecord count = update("DB_PRINTED", 3, "Count", "10", "2");
    DBUpdate d({count});
    d.open(0);
    d.chooseField(2);
    d.function(0);
    d.type("txtConstantValue", "5");
    d.click("cmdCancel");
    EXPECT_TRUE(d.form->Cancelled);
    EXPECT_EQ(d.form->result(), QDialog::Rejected);
    EXPECT_EQ(d.records.records(), std::vector<ItemRecord>{count});

    DBUpdate fresh;
    fresh.open();
    fresh.chooseField(0);
    fresh.click("cmdCancel");
    EXPECT_TRUE(fresh.records.empty());
}

}  // namespace
}  // namespace kestrin
