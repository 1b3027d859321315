// The properties, database-update and multi-track dialogs driven by their control names: what
// each loads, writes on OK, refuses and leaves on Cancel, and the keys a focused button answers.
#include <QCheckBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QTabWidget>

#include "DialogFixture.h"
#include "dialogs/frmProperties.h"
#include "editor/frmEditiClass.h"
#include "items/frmDBUpdate.h"
#include "items/frmMultiTrack.h"
#include "preview/PagePainter.h"

namespace kestrin::test {
namespace {

struct Dialog : DialogFixture {
    using DialogFixture::DialogFixture;
    // The properties dialog on a card of the given chip, HID area and bitwise encoding.
    frmProperties& properties(IClassType chip, bool hid = false, bool bitwise = false, const std::string& bounds = {}) {
        auto card = std::make_unique<CIClass>();
        card->setChipSize(chip);
        card->setUseHIDSection(hid);
        card->setEnableBitwise(bitwise);
        if (!bounds.empty()) card->SetBoundaries(bounds);
        frmProperties& p = open<frmProperties>();
        p.setCard(std::move(card));
        activate();
        return p;
    }
    void activate() const {
        form->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
    QRadioButton* chip(int i) const { return child<QRadioButton>(QStringLiteral("optChipType(%1)").arg(i)); }
    QLineEdit* bound(int page) const { return child<QLineEdit>(QStringLiteral("txtBoundary(%1)").arg(page)); }
    bool boundaryTab() const { return child<QTabWidget>("tabIClass")->isTabEnabled(1); }
    bool checked(const char* name) const { return child<QCheckBox>(name)->isChecked(); }
};

struct LoadCase {
    IClassType chip;
    bool hid, bitwise;
    std::vector<ItemRecord> items;
    bool memoryEnabled, tabEnabled, chipLocked;
};

// The card fills the controls; items (not database updates) lock the chip type; Cancel drops what was changed.
TEST(Properties, TheCardFillsTheControls) {
    const LoadCase cases[] = {
        {iSmallOnePage, true, false, {}, false, false, false},
        {iBigOnePage, false, true, {}, true, false, false},
        {iBigEightPages, true, true, {dbUpdate("Field", "Count", "1")}, true, true, false},
        {iBigEightPages, false, false, {field("Name", 0, 20, 0, 4)}, false, true, true},
    };
    for (const LoadCase& c : cases) {
        SCOPED_TRACE(c.chip);
        Dialog d(c.items);
        frmProperties& p = d.properties(c.chip, c.hid, c.bitwise, c.chip == iBigEightPages ? "5|6|7|8|9|10|11|12" : "");
        EXPECT_EQ(d.chip(1)->isChecked(), c.chip != iSmallOnePage);
        EXPECT_EQ(d.chip(0)->isChecked(), c.chip == iSmallOnePage);
        EXPECT_EQ(d.child<QComboBox>("cboMemoryType")->isEnabled(), c.memoryEnabled);
        EXPECT_EQ(d.chip(0)->isEnabled(), !c.chipLocked);
        EXPECT_EQ(d.boundaryTab(), c.tabEnabled);
        EXPECT_EQ(std::make_pair(d.checked("chkICHID"), d.checked("chkICBitwise")), std::make_pair(c.hid, c.bitwise));
        EXPECT_EQ(d.bound(7)->text(), c.chip == iBigEightPages ? "12" : "18");
        d.click("chkICBitwise");
        d.click("cmdCancel");  // changes nothing
        EXPECT_EQ(std::make_tuple(p.result(), p.Cancelled, p.Unchanged), std::make_tuple(int(QDialog::Rejected), true, true));
    }
}

TEST(Properties, OkWritesTheControlsBackAfterTheChipTypeDrivesMemoryListAndBoundaryTab) {
    Dialog d;
    frmProperties& p = d.properties(iSmallOnePage, true, false);
    d.chip(1)->click();
    EXPECT_TRUE(d.child<QComboBox>("cboMemoryType")->isEnabled());
    EXPECT_FALSE(d.boundaryTab());
    d.child<QComboBox>("cboMemoryType")->setCurrentIndex(1);
    EXPECT_TRUE(d.boundaryTab());
    d.click("chkICHID");
    d.click("chkICBitwise");
    for (const auto& [page, value] : {std::pair{0, "5"}, {3, "20"}, {7, "31"}}) d.bound(page)->setText(value);
    d.click("cmdOK");
    EXPECT_TRUE(d.prompter.messages.empty());
    EXPECT_EQ(std::make_tuple(p.result(), p.Cancelled, p.Unchanged), std::make_tuple(int(QDialog::Accepted), false, false));
    EXPECT_EQ(std::make_tuple(p.Card->ChipSize(), p.Card->UseHIDSection(), p.Card->EnableBitwise()),
              std::make_tuple(iBigEightPages, false, true));
    std::vector<int> bounds;
    for (int page = 0; page < 8; ++page) bounds.push_back(p.Card->GetBoundary(page));
    EXPECT_EQ(bounds, (std::vector<int>{5, 18, 18, 20, 18, 18, 18, 31}));
    d.chip(0)->click();
    EXPECT_FALSE(d.child<QComboBox>("cboMemoryType")->isEnabled());
    EXPECT_FALSE(d.boundaryTab());
}

TEST(Properties, WithoutACardOkMakesOne) {
    Dialog d;
    frmProperties& p = d.open<frmProperties>();
    p.setCard(nullptr);
    EXPECT_FALSE(d.chip(0)->isChecked() || d.chip(1)->isChecked());
    d.chip(0)->click();
    d.click("cmdOK");
    ASSERT_NE(p.Card, nullptr);
    EXPECT_EQ(p.Card->ChipSize(), iSmallOnePage);
}

// A boundary that cuts an item refuses OK with both warnings in turn and writes nothing back;
// the window's close button writes back without the checks.
TEST(Properties, OkIsRefusedWhileABoundaryCutsAnItemAndClosingSkipsTheChecks) {
    Dialog d({field("Low", 0, 10, 0, 8), field("Cut", 1, 10, 0, 24)});
    frmProperties& p = d.properties(iBigEightPages, true);
    d.bound(0)->setText("11");
    d.click("cmdOK");
    EXPECT_EQ(d.messageTexts(), (std::vector<std::string>{"T4610\r\nT4611", "T4643\r\nT4644"}));
    EXPECT_EQ(d.prompter.messages.front().icon, Icon::Exclamation);
    EXPECT_TRUE(p.isVisible());
    EXPECT_TRUE(p.Unchanged);
    EXPECT_EQ(p.Card->GetBoundary(0), 18);
    d.click("chkICBitwise");
    p.close();
    EXPECT_EQ(d.prompter.messages.size(), 2u);
    EXPECT_FALSE(p.Cancelled);
    EXPECT_TRUE(p.Card->EnableBitwise());
    EXPECT_EQ(p.Card->GetBoundary(0), 11);
}

// Boxes take digits only; leaving one checks 5 to 31 and a refused value keeps the focus.
TEST(Properties, BoundaryBoxesFilterAndCheckOnLeaving) {
    for (const auto& [typed, kept, refused] : {std::tuple{"1x2", "12", false}, {"4", "4", true}}) {
        Dialog d;
        d.properties(iBigEightPages);
        d.child<QTabWidget>("tabIClass")->setCurrentIndex(1);
        d.bound(1)->setFocus();
        d.bound(1)->clear();
        QTest::keyClicks(d.bound(1), typed);
        d.bound(2)->setFocus(Qt::TabFocusReason);
        EXPECT_EQ(d.bound(1)->text(), kept);
        EXPECT_EQ(d.messageTexts(), refused ? std::vector<std::string>{"T3189 5 & 31!"} : std::vector<std::string>{});
        EXPECT_EQ(QApplication::focusWidget(), refused ? d.bound(1) : d.bound(2));
    }
}

ItemRecord update(std::string dbField, int16_t column, std::string word, std::string p1, std::string p2 = {}) {
    ItemRecord r = dbUpdate(std::move(dbField), std::move(word), std::move(p1), std::move(p2));
    r.dbColumn = column;
    return r;
}

TEST(DBUpdate, OkWritesTheChosenFieldAndFunctionAsOneRecord) {
    Dialog d({field("Card", 0, 20, 0, 4)});
    frmDBUpdate& u = d.open<frmDBUpdate>(-1);
    d.clickField(1);
    EXPECT_EQ(d.text("txtSelectedField"), "NUMBER");
    d.click("optFunction(1)");
    // Only the boxes of the chosen function show, with their labels.
    for (const auto& [name, shown] : {std::pair{"txtConstantValue", false}, {"lblConstantValue", false},
                                      {"txtCountStep", true}, {"lblCountStep", true}})
        EXPECT_EQ(d.child(name)->isVisible(), shown) << name;
    d.type("txtCountNumber", "1a0");
    d.type("txtCountStep", "255");
    d.click("cmdOK");
    EXPECT_TRUE(d.prompter.messages.empty());
    EXPECT_FALSE(u.Cancelled);
    EXPECT_EQ(d.records().records(), (std::vector<ItemRecord>{field("Card", 0, 20, 0, 4), update("NUMBER", 1, "Count", "10", "255")}));
}

TEST(DBUpdate, ABoxOutOfRangeIsRefusedWhenLeftAndOnOk) {
    Dialog d;
    frmDBUpdate& u = d.open<frmDBUpdate>(-1);
    d.clickField(0);
    d.type("txtConstantValue", "256");
    d.leave("txtConstantValue");
    EXPECT_EQ(d.messageTexts(), std::vector<std::string>{"T3189 0 & 255!"});
    d.click("cmdOK");
    EXPECT_TRUE(d.records().empty());
    EXPECT_TRUE(u.Cancelled);
}

TEST(DBUpdate, EditingPresetsTheControlsAndOkReplacesTheRecordInPlaceWhileCancelKeepsIt) {
    for (const char* button : {"cmdOK", "cmdCancel"}) {
        const ItemRecord item = field("Card", 0, 20, 0, 4);
        Dialog d({update("BIRTH", 2, "CardSnNr", "1"), item});
        frmDBUpdate& u = d.open<frmDBUpdate>(0);
        EXPECT_EQ(d.text("txtSelectedField"), "BIRTH");
        EXPECT_TRUE(d.child<QRadioButton>("optFunction(2)")->isChecked());
        EXPECT_TRUE(d.child<QRadioButton>("optProperty(1)")->isChecked());
        d.click("optFunction(0)");
        d.type("txtConstantValue", "42");
        d.click(button);
        const bool ok = button == std::string("cmdOK");
        EXPECT_EQ(u.Cancelled, !ok);
        EXPECT_EQ(d.records().records(), (std::vector<ItemRecord>{ok ? update("BIRTH", 2, "Constant", "42")
                                                                     : update("BIRTH", 2, "CardSnNr", "1"), item}));
    }
}

ItemRecord binary(std::string name, int block, int byte, int bytes, int color) {
    ItemRecord r = field(std::move(name), 0, block, byte, bytes, 0, color);
    r.isBinary = true;
    return r;
}

TEST(MultiTrack, ApplyStoresABinaryFieldByItsDatabaseNameShowsItOnTheMapAndOkCloses) {
    Dialog d;
    frmMultiTrack& m = d.open<frmMultiTrack>(-1);
    d.clickField(1);
    EXPECT_EQ(d.text("txtSelectedField"), "NUMBER");
    d.place(20, 2, "1x2");
    d.choose("cboBeginBit", "3");
    EXPECT_EQ(d.child<QSpinBox>("spinBytes")->value(), 12);
    d.click("cmdApply");
    EXPECT_TRUE(d.prompter.messages.empty());
    ASSERT_EQ(d.records().size(), 1);
    const ItemRecord& r = d.records()[0];
    EXPECT_EQ(kindWord(r), kKindBinaryField);
    EXPECT_EQ(r.name, "NUMBER");
    EXPECT_EQ(std::vector<int>({r.block, r.beginByte, r.beginBit, r.numBytes}), std::vector<int>({20, 2, 3, 12}));
    const QTableWidgetItem* cell = d.child<QTableWidget>("grdPreview")->item(21, 3);
    EXPECT_EQ(cell->text(), "NUMBER");
    EXPECT_EQ(cell->background().color(), memoryMapColor(r.color));
    EXPECT_FALSE(d.child<QPushButton>("cmdApply")->isEnabled());
    d.click("cmdOK");
    EXPECT_FALSE(m.Cancelled);
    EXPECT_FALSE(m.isVisible());
}

// An edited item may overlap its own old place; an overlap with another item is refused with
// that item's name, and Cancel afterwards keeps what was applied.
TEST(MultiTrack, EditingMovesTheItemInItsSlotAndAnOverlapIsRefused) {
    const ItemRecord old = binary("NAME", 20, 0, 4, 0x123456);
    const ItemRecord other = field("Other", 0, 25, 0, 2);
    Dialog d({old, other});
    frmMultiTrack& m = d.open<frmMultiTrack>(0);
    EXPECT_EQ(d.child<QComboBox>("cboRow")->currentText(), "20");
    EXPECT_EQ(d.text("txtNrBytes"), "4");
    d.choose("cboBeginByte", "2");
    d.click("cmdApply");
    EXPECT_TRUE(d.prompter.messages.empty());
    ItemRecord moved = old;
    moved.beginByte = 2;
    EXPECT_EQ(d.records().records(), (std::vector<ItemRecord>{moved, other}));
    d.choose("cboRow", "25");
    d.choose("cboBeginByte", "1");
    d.click("cmdApply");
    d.click("cmdOK");
    EXPECT_EQ(d.messageTexts(), (std::vector<std::string>{"T3166: Other.", "T3166: Other."}));
    EXPECT_TRUE(d.child<QPushButton>("cmdApply")->isEnabled());
    d.click("cmdCancel");
    EXPECT_TRUE(m.Cancelled);
    EXPECT_EQ(d.records().records(), (std::vector<ItemRecord>{moved, other}));
}

// Enter on a focused Apply or New runs that button, not the default one; Enter in a box means OK.
TEST(DialogKeys, EnterOnAFocusedButtonRunsIt) {
    Dialog ed;
    frmEditiClass& e = ed.open<frmEditiClass>(kModeField, -1);
    ed.activate();
    const auto enterOn = [&](const char* name) {
        ed.child(name)->setFocus(Qt::TabFocusReason);
        QTest::keyClick(ed.child(name), Qt::Key_Return);
    };
    ed.clickField(0);
    ed.place(20, 0, "4");
    enterOn("cmdApply");
    EXPECT_EQ(e.appliedCount(), 1);
    enterOn("cmdNew");
    EXPECT_EQ(ed.text("txtSelectedField"), "");
    ed.clickField(1);
    ed.place(21, 0, "2");
    enterOn("txtNrBytes");
    EXPECT_FALSE(e.Cancelled);
    EXPECT_EQ(ed.records().size(), 2);
}

}  // namespace
}  // namespace kestrin::test
