// The database-update dialog as the operator meets it: the boxes of the chosen function,
// OK writing one record (in place when editing), a box refused when it is left, Cancel.
#include <QLabel>
#include <QRadioButton>

#include "DialogFixture.h"
#include "items/frmDBUpdate.h"

namespace kestrin::test {
namespace {

ItemRecord update(std::string dbField, int16_t column, std::string word, std::string p1, std::string p2 = {}) {
    ItemRecord r = dbUpdate(std::move(dbField), std::move(word), std::move(p1), std::move(p2));
    r.dbColumn = column;
    return r;
}

struct DBUpdate : DialogFixture {
    using DialogFixture::DialogFixture;
    frmDBUpdate& open(int32_t editIndex = -1) { return DialogFixture::open<frmDBUpdate>(editIndex); }
    void function(int index) const { click(QStringLiteral("optFunction(%1)").arg(index)); }
    frmDBUpdate& dialog() const { return static_cast<frmDBUpdate&>(*form); }
};

TEST(DBUpdate, OkWritesTheChosenFieldAndFunctionAsOneRecord) {
    DBUpdate d({field("Card", 0, 20, 0, 4)});
    d.open();
    d.clickField(1);
    EXPECT_EQ(d.text("txtSelectedField"), "NUMBER");
    d.function(1);
    // Only the boxes of the chosen function show, with their labels.
    EXPECT_FALSE(d.child<QLineEdit>("txtConstantValue")->isVisible());
    EXPECT_FALSE(d.child<QWidget>("lblConstantValue")->isVisible());
    EXPECT_TRUE(d.child<QLineEdit>("txtCountStep")->isVisible());
    EXPECT_TRUE(d.child<QWidget>("lblCountStep")->isVisible());
    d.type("txtCountNumber", "1a0");
    d.type("txtCountStep", "255");
    d.click("cmdOK");
    EXPECT_TRUE(d.prompter.messages.empty());
    EXPECT_FALSE(d.dialog().Cancelled);
    ASSERT_EQ(d.records().size(), 2);
    EXPECT_EQ(d.records()[1], update("NUMBER", 1, "Count", "10", "255"));
}

TEST(DBUpdate, ABoxOutOfRangeIsRefusedWhenLeftAndOnOk) {
    DBUpdate d;
    d.open();
    d.clickField(0);
    d.type("txtConstantValue", "256");
    d.leave("txtConstantValue");
    EXPECT_EQ(d.messageTexts(), std::vector<std::string>{"T3189 0 & 255!"});
    d.click("cmdOK");
    EXPECT_TRUE(d.records().empty());
    EXPECT_TRUE(d.dialog().Cancelled);
}

TEST(DBUpdate, EditingPresetsTheControlsAndReplacesTheRecordInPlace) {
    const ItemRecord item = field("Card", 0, 20, 0, 4);
    const ItemRecord serial = update("BIRTH", 2, "CardSnNr", "1");
    DBUpdate d({serial, item});
    d.open(0);
    EXPECT_EQ(d.text("txtSelectedField"), "BIRTH");
    EXPECT_TRUE(d.child<QRadioButton>("optFunction(2)")->isChecked());
    EXPECT_TRUE(d.child<QRadioButton>("optProperty(1)")->isChecked());
    d.function(0);
    d.type("txtConstantValue", "42");
    d.click("cmdOK");
    EXPECT_EQ(d.records().records(), (std::vector<ItemRecord>{update("BIRTH", 2, "Constant", "42"), item}));
}

TEST(DBUpdate, CancelChangesNothing) {
    const ItemRecord count = update("NUMBER", 1, "Count", "10", "2");
    DBUpdate d({count});
    d.open(0);
    d.function(0);
    d.type("txtConstantValue", "5");
    d.click("cmdCancel");
    EXPECT_TRUE(d.dialog().Cancelled);
    EXPECT_EQ(d.records().records(), std::vector<ItemRecord>{count});
}

}  // namespace
}  // namespace kestrin::test
