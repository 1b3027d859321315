// The multi-track dialog as the operator meets it: a "Binary Field" applied and shown on the
// page map, a refused placement, editing in place, OK after Apply, Cancel.
#include <QComboBox>
#include <QPushButton>
#include <QSpinBox>

#include "DialogFixture.h"
#include "items/frmMultiTrack.h"
#include "preview/PagePainter.h"

namespace kestrin::test {
namespace {

ItemRecord binary(std::string name, int block, int byte, int bytes, int color) {
    ItemRecord r = field(std::move(name), 0, block, byte, bytes, 0, color);
    r.isBinary = true;
    return r;
}

struct MultiTrack : DialogFixture {
    using DialogFixture::DialogFixture;
    frmMultiTrack& open(int32_t editIndex = -1) { return DialogFixture::open<frmMultiTrack>(editIndex); }
    frmMultiTrack& dialog() const { return static_cast<frmMultiTrack&>(*form); }
    QString previewCell(int block, int byte) const {
        const QTableWidgetItem* item = child<QTableWidget>("grdPreview")->item(block + 1, byte + 1);
        return item ? item->text() : QString();
    }
    bool applyEnabled() const { return child<QPushButton>("cmdApply")->isEnabled(); }
};

TEST(MultiTrack, ApplyStoresABinaryFieldByItsDatabaseNameAndShowsItOnTheMap) {
    MultiTrack d;
    d.open();
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
    EXPECT_EQ(d.previewCell(20, 2), "NUMBER");
    EXPECT_EQ(d.child<QTableWidget>("grdPreview")->item(21, 3)->background().color(), memoryMapColor(r.color));
    EXPECT_FALSE(d.applyEnabled());
    d.click("cmdOK");
    EXPECT_FALSE(d.dialog().Cancelled);
}

TEST(MultiTrack, ARefusedPlacementTellsWhyAndStoresNothing) {
    const ItemRecord other = field("Other", 0, 20, 0, 8);
    MultiTrack d({other});
    d.open();
    d.clickField(0);
    d.place(20, 4, "2");
    d.click("cmdOK");
    EXPECT_EQ(d.messageTexts(), std::vector<std::string>{"T3166: Other."});
    EXPECT_EQ(d.records().records(), std::vector<ItemRecord>{other});
    EXPECT_TRUE(d.dialog().Cancelled);
    EXPECT_TRUE(d.applyEnabled());
}

TEST(MultiTrack, EditingMovesTheItemInItsSlotAndARefusedMoveKeepsTheTable) {
    const ItemRecord old = binary("NAME", 20, 0, 4, 0x123456);
    const ItemRecord other = field("Other", 0, 25, 0, 2);
    MultiTrack d({old, other});
    d.open(0);
    EXPECT_EQ(d.child<QComboBox>("cboRow")->currentText(), "20");
    EXPECT_EQ(d.text("txtNrBytes"), "4");
    // Bytes 2 to 5 overlap the item's own old place, which does not count.
    d.choose("cboBeginByte", "2");
    d.click("cmdApply");
    EXPECT_TRUE(d.prompter.messages.empty());
    ItemRecord moved = old;
    moved.beginByte = 2;
    EXPECT_EQ(d.records().records(), (std::vector<ItemRecord>{moved, other}));

    d.choose("cboRow", "25");
    d.choose("cboBeginByte", "1");
    d.click("cmdApply");
    EXPECT_EQ(d.messageTexts(), std::vector<std::string>{"T3166: Other."});
    EXPECT_EQ(d.records().records(), (std::vector<ItemRecord>{moved, other}));
}

TEST(MultiTrack, OkAfterApplyClosesAndCancelStoresNothing) {
    MultiTrack d;
    d.open();
    d.clickField(0);
    d.place(22, 0, "8");
    d.click("cmdApply");
    d.click("cmdOK");
    EXPECT_TRUE(d.prompter.messages.empty());
    EXPECT_EQ(d.records().size(), 1);

    MultiTrack cancelled;
    cancelled.open();
    cancelled.clickField(0);
    cancelled.place(22, 0, "8");
    cancelled.click("cmdCancel");
    EXPECT_TRUE(cancelled.dialog().Cancelled);
    EXPECT_TRUE(cancelled.records().empty());
}

}  // namespace
}  // namespace kestrin::test
