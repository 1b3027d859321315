#include "items/frmMultiTrack.h"

#include <QApplication>
#include <QComboBox>
#include <QItemSelectionModel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTableWidget>
#include <QTest>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "preview/PagePainter.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/CatalogRegistry.h"
#include "text/Translator.h"

namespace kestrin {
namespace {

using test::RecordingPrompter;

// Every message the dialog can give reads "T<number>", so a test sees which one it was.
constexpr const char* kCatalog = "3158=T3158\n4536=T4536\n4609=T4609\n4602=T4602\n3165=T3165\n3166=T3166\n";

// A multi-track dialog on a card (2 kbit, HID area on: free from block 19 to 31 unless told)
// with two host fields, "Name" and "Photo".
struct MultiTrack {
    test::TempDir dir;
    CatalogRegistry registry;
    Translator translator{&registry};
    RecordingPrompter prompter;
    CIClass card;
    RecordArray records;
    HostFieldList fields;
    std::unique_ptr<frmMultiTrack> form;

    explicit MultiTrack(IClassType chip = iSmallOnePage, std::vector<ItemRecord> items = {}) {
        test::writeBytes(dir / "lang.txt", kCatalog);
        translator.setLanguageDLL(registry.open(dir / "lang.txt"));
        card.setChipSize(chip);
        fields.setFields({{"Name", "NAME", "Character", 20, 0, true}, {"Photo", "PHOTO", "Binary", 0, 1, true}});
        for (const ItemRecord& r : items) records.add(r);
    }
    void open(EditorRecord record = {}) {
        form = std::make_unique<frmMultiTrack>(DialogContext{&card, &records, &fields, &translator, &prompter}, record);
    }
    template <class T>
    T* child(const char* name) const {
        T* w = form->findChild<T*>(name);
        EXPECT_NE(w, nullptr) << name;
        return w;
    }
    void click(const char* name) const { child<QPushButton>(name)->click(); }
    void chooseField(int row) const { child<QTableWidget>("grdFields")->setCurrentCell(row, 0); }
    void choose(const char* combo, int value) const {
        QComboBox* box = child<QComboBox>(combo);
        const int index = box->findData(value);
        ASSERT_GE(index, 0) << combo << " lacks " << value;
        box->setCurrentIndex(index);
    }
    void typeBytes(const QString& text) const {
        QLineEdit* box = child<QLineEdit>("txtNrBytes");
        box->clear();
        QTest::keyClicks(box, text);
    }
    // Field, block, begin byte and size, as the operator picks them.
    void place(int field, int block, int byte, const QString& bytes) const {
        if (field >= 0) chooseField(field);
        choose("cboRow", block);
        choose("cboBeginByte", byte);
        typeBytes(bytes);
    }
    QString previewCell(int block, int byte) const {
        const QTableWidgetItem* item = child<QTableWidget>("grdPreview")->item(block + 1, byte + 1);
        return item ? item->text() : QString();
    }
};

ItemRecord binary(std::string name, int page, int block, int byte, int bytes, int color) {
    ItemRecord r = test::field(std::move(name), page, block, byte, bytes, 0, color);
    r.isBinary = true;
    return r;
}

EditorRecord editing(const ItemRecord& r) {
    EditorRecord e;
    e.editing = true;
    e.page = r.page, e.name = r.name, e.block = r.block, e.beginByte = r.beginByte, e.numBytes = r.numBytes;
    e.kindWord = std::string(kKindBinaryField);
    return e;
}

TEST(MultiTrack, ApplyStoresABinaryFieldAndShowsItOnThePageMap) {
    MultiTrack d;
    d.open();
    d.place(0, 20, 2, "12");
    d.choose("cboBeginBit", 3);
    d.click("cmdApply");

    EXPECT_TRUE(d.prompter.messages.empty());
    ASSERT_EQ(d.records.size(), 1);
    const ItemRecord& r = d.records[0];
    EXPECT_EQ(kindWord(r), kKindBinaryField);
    EXPECT_EQ(r.name, "Name");
    EXPECT_EQ(r.page, 0);
    EXPECT_EQ(r.block, 20);
    EXPECT_EQ(r.beginByte, 2);
    EXPECT_EQ(r.beginBit, 3);
    EXPECT_EQ(r.numBytes, 12);
    EXPECT_NE(r.color, 0);
    EXPECT_EQ(d.previewCell(20, 2), "Name");
    EXPECT_EQ(d.child<QTableWidget>("grdPreview")->item(21, 3)->background().color(), memoryMapColor(r.color));
    EXPECT_FALSE(d.child<QPushButton>("cmdApply")->isEnabled());
    EXPECT_TRUE(d.form->Cancelled);

    d.click("cmdOK");
    EXPECT_FALSE(d.form->Cancelled);
    EXPECT_EQ(d.form->result(), QDialog::Accepted);
    EXPECT_EQ(d.records.size(), 1);
}

TEST(MultiTrack, CaptionsListsAndFieldClick) {
    MultiTrack d(iBigEightPages);
    d.open();
    d.form->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(d.form.get()));
    auto* grid = d.child<QTableWidget>("grdFields");
    ASSERT_EQ(grid->rowCount(), 2);
    EXPECT_EQ(grid->horizontalHeaderItem(0)->text(), "<Field Name>");
    EXPECT_EQ(grid->horizontalHeaderItem(1)->text(), "<Field Type>");
    EXPECT_EQ(grid->item(1, 1)->text(), "Binary");
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualItemRect(grid->item(1, 1)).center());
    EXPECT_EQ(d.child<QLineEdit>("txtSelectedField")->text(), "Photo");
    EXPECT_TRUE(d.child<QLineEdit>("txtSelectedField")->isReadOnly());

    EXPECT_EQ(d.child<QComboBox>("cboPage")->count(), 8);
    EXPECT_EQ(d.child<QComboBox>("cboRow")->itemData(0).toInt(), 19);  // page 0: after the HID area
    d.choose("cboPage", 1);
    auto* rows = d.child<QComboBox>("cboRow");
    EXPECT_EQ(rows->itemData(0).toInt(), 6);
    EXPECT_EQ(rows->itemData(rows->count() - 1).toInt(), 31);
    EXPECT_EQ(d.child<QComboBox>("cboBeginByte")->count(), 8);
    EXPECT_EQ(d.child<QComboBox>("cboBeginBit")->count(), 8);
    EXPECT_EQ(d.child<QPushButton>("cmdApply")->text(), "<&Apply>");
}

TEST(MultiTrack, ShowingTheDialogChoosesNoFieldByItself) {
    const ItemRecord old = binary("Photo", 0, 20, 0, 4, 9);
    MultiTrack d(iSmallOnePage, {old});
    d.open(editing(old));
    d.form->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(d.form.get()));
    d.child<QTableWidget>("grdFields")->setFocus();
    QApplication::processEvents();
    EXPECT_EQ(d.child<QLineEdit>("txtSelectedField")->text(), "Photo");
    EXPECT_EQ(d.child<QTableWidget>("grdFields")->selectionModel()->selectedRows().value(0).row(), 1);

    MultiTrack fresh;
    fresh.open();
    fresh.form->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(fresh.form.get()));
    fresh.child<QTableWidget>("grdFields")->setFocus();
    QApplication::processEvents();
    fresh.place(-1, 20, 0, "4");
    fresh.click("cmdOK");
    ASSERT_EQ(fresh.prompter.messages.size(), 1u);
    EXPECT_EQ(fresh.prompter.messages[0].text, "T3158");
    EXPECT_TRUE(fresh.records.empty());
}

TEST(MultiTrack, NumberBoxTakesDigitsOnlyAndFollowsTheSpinControl) {
    MultiTrack d;
    d.open();
    d.typeBytes("1a2");
    EXPECT_EQ(d.child<QLineEdit>("txtNrBytes")->text(), "12");
    auto* spin = d.child<QSpinBox>("spinBytes");
    EXPECT_EQ(spin->value(), 12);
    spin->stepUp();
    EXPECT_EQ(d.child<QLineEdit>("txtNrBytes")->text(), "13");
    // From block 31, byte 0 only the last eight bytes remain.
    d.choose("cboRow", 31);
    EXPECT_EQ(spin->maximum(), 8);
}

struct Refusal {
    const char* name;
    IClassType chip;
    std::vector<ItemRecord> existing;
    std::function<void(MultiTrack&)> enter;
    const char* message;  // what the message starts with
};

class MultiTrackRefusals : public ::testing::TestWithParam<Refusal> {};

TEST_P(MultiTrackRefusals, ShowsTheMessageStoresNothingAndStaysOpen) {
    const Refusal& c = GetParam();
    MultiTrack d(c.chip, c.existing);
    d.open();
    c.enter(d);
    d.click("cmdOK");

    ASSERT_EQ(d.prompter.messages.size(), 1u);
    EXPECT_TRUE(QString::fromStdString(d.prompter.messages[0].text).startsWith(c.message))
        << d.prompter.messages[0].text;
    EXPECT_EQ(d.prompter.messages[0].icon, Icon::Exclamation);
    EXPECT_EQ(d.records.records(), c.existing);
    EXPECT_TRUE(d.form->Cancelled);
    EXPECT_NE(d.form->result(), QDialog::Accepted);
    EXPECT_TRUE(d.child<QPushButton>("cmdApply")->isEnabled());
}

INSTANTIATE_TEST_SUITE_P(
    Order, MultiTrackRefusals,
    ::testing::Values(
        Refusal{"NoField", iSmallOnePage, {}, [](MultiTrack& d) { d.place(-1, 20, 0, "4"); }, "T3158"},
        Refusal{"NoSize", iSmallOnePage, {}, [](MultiTrack& d) { d.place(0, 20, 0, ""); }, "T3158"},
        Refusal{"PastPageEnd", iSmallOnePage, {}, [](MultiTrack& d) { d.place(0, 31, 1, "8"); }, "T4536"},
        Refusal{"AcrossBoundary", iBigEightPages, {},
                [](MultiTrack& d) {
                    d.choose("cboPage", 1);
                    d.place(0, 17, 4, "8");
                },
                "T4602"},
        Refusal{"OverOtherItem", iSmallOnePage, {test::field("Other", 0, 20, 0, 8)},
                [](MultiTrack& d) { d.place(0, 20, 4, "2"); }, "T3166: Other."},
        Refusal{"OverSameName", iSmallOnePage, {binary("Name", 0, 21, 0, 8, 5)},
                [](MultiTrack& d) { d.place(0, 20, 7, "2"); }, "T3165: Name."},
        // Missing field and too large at once: only the first rule's message.
        Refusal{"OnlyFirstFailureShown", iSmallOnePage, {test::field("Other", 0, 20, 0, 8)},
                [](MultiTrack& d) { d.place(-1, 20, 0, "300"); }, "T3158"}),
    [](const auto& tp) { return std::string(tp.param.name); });

struct Fit {
    int block, byte, bytes;
    bool accepted;
};

class MultiTrackPageEnd : public ::testing::TestWithParam<Fit> {};

TEST_P(MultiTrackPageEnd, ExactEndAcceptedOneByteMoreRefused) {
    const Fit& c = GetParam();
    MultiTrack d;
    d.open();
    d.place(1, c.block, c.byte, QString::number(c.bytes));
    d.click("cmdApply");
    EXPECT_EQ(d.records.size(), c.accepted ? 1 : 0);
    if (c.accepted) {
        EXPECT_TRUE(d.prompter.messages.empty());
        EXPECT_EQ(d.records[0].numBytes, c.bytes);
    } else {
        ASSERT_EQ(d.prompter.messages.size(), 1u);
        EXPECT_EQ(d.prompter.messages[0].text, "T4536");
    }
}

INSTANTIATE_TEST_SUITE_P(Sizes, MultiTrackPageEnd,
                         ::testing::Values(Fit{31, 0, 8, true}, Fit{31, 0, 9, false}, Fit{30, 1, 15, true},
                                           Fit{30, 1, 16, false}, Fit{19, 0, 104, true}, Fit{19, 0, 105, false}));

TEST(MultiTrack, FirstFreeBlockAcceptedTheBlockBeforeRefused) {
    MultiTrack first;
    first.open();
    EXPECT_EQ(first.child<QComboBox>("cboRow")->itemData(0).toInt(), 19);
    first.place(0, 19, 0, "1");
    first.click("cmdOK");
    EXPECT_TRUE(first.prompter.messages.empty());
    EXPECT_EQ(first.records.size(), 1);
    EXPECT_FALSE(first.form->Cancelled);

    // An item left in block 18 (a layout made with the HID area off) is shown there when
    // edited, and applying it in place is refused; the record is put back unchanged.
    const ItemRecord old = binary("Name", 0, 18, 0, 4, 77);
    MultiTrack before(iSmallOnePage, {test::field("Other", 0, 25, 0, 2), old});
    before.open(editing(old));
    EXPECT_EQ(before.child<QComboBox>("cboRow")->currentData().toInt(), 18);
    before.click("cmdApply");
    ASSERT_EQ(before.prompter.messages.size(), 1u);
    EXPECT_EQ(before.prompter.messages[0].text, "T4609");
    ASSERT_EQ(before.records.size(), 2);
    EXPECT_EQ(before.records[1], old);
}

TEST(MultiTrack, OkAfterApplyClosesWithoutValidatingAgain) {
    MultiTrack d;
    d.open();
    d.place(0, 22, 0, "8");
    d.click("cmdApply");
    ASSERT_EQ(d.records.size(), 1);
    // Another item now lies over the applied one: a second validation would refuse.
    d.records.add(test::field("Other", 0, 22, 0, 8));
    d.click("cmdOK");
    EXPECT_TRUE(d.prompter.messages.empty());
    EXPECT_FALSE(d.form->Cancelled);
    EXPECT_EQ(d.form->result(), QDialog::Accepted);
    EXPECT_EQ(d.records.size(), 2);
}

TEST(MultiTrack, ChangeAfterApplyEnablesApplyAgain) {
    MultiTrack d;
    d.open();
    d.place(0, 22, 0, "8");
    d.click("cmdApply");
    auto* apply = d.child<QPushButton>("cmdApply");
    ASSERT_FALSE(apply->isEnabled());
    d.choose("cboBeginByte", 4);
    EXPECT_TRUE(apply->isEnabled());
    d.click("cmdOK");  // applies the move: the item the dialog placed moves, no copy appears
    ASSERT_EQ(d.records.size(), 1);
    EXPECT_EQ(d.records[0].beginByte, 4);
    EXPECT_EQ(d.previewCell(22, 4), "Name");
    EXPECT_NE(d.previewCell(22, 0), "Name");
}

TEST(MultiTrack, CancelStoresNothing) {
    MultiTrack d;
    d.open();
    d.place(0, 22, 0, "8");
    d.click("cmdCancel");
    EXPECT_TRUE(d.form->Cancelled);
    EXPECT_EQ(d.form->result(), QDialog::Rejected);
    EXPECT_TRUE(d.records.empty());
    EXPECT_TRUE(d.prompter.messages.empty());
}

TEST(MultiTrack, EditingPresetsAndReplacesTheRecord) {
    const ItemRecord old = binary("Name", 0, 20, 0, 4, 0x123456);
    const ItemRecord other = test::field("Other", 0, 25, 0, 2);
    MultiTrack d(iSmallOnePage, {old, other});
    d.open(editing(old));
    EXPECT_EQ(d.child<QComboBox>("cboPage")->currentData().toInt(), 0);
    EXPECT_EQ(d.child<QComboBox>("cboRow")->currentData().toInt(), 20);
    EXPECT_EQ(d.child<QComboBox>("cboBeginByte")->currentData().toInt(), 0);
    EXPECT_EQ(d.child<QLineEdit>("txtSelectedField")->text(), "Name");
    EXPECT_EQ(d.child<QLineEdit>("txtNrBytes")->text(), "4");
    EXPECT_EQ(d.previewCell(20, 0), "Name");

    // Bytes 2 to 5 overlap the item's own old place: that must not count.
    d.choose("cboBeginByte", 2);
    d.click("cmdApply");
    EXPECT_TRUE(d.prompter.messages.empty());
    ASSERT_EQ(d.records.size(), 2);
    EXPECT_EQ(d.records[0].beginByte, 2);
    EXPECT_EQ(d.records[0].numBytes, 4);
    EXPECT_EQ(d.records[0].color, 0x123456);
    EXPECT_TRUE(d.records[0].isBinary);
    EXPECT_EQ(d.records[1], other);

    d.typeBytes("6");
    d.click("cmdOK");
    ASSERT_EQ(d.records.size(), 2);
    EXPECT_EQ(d.records[0].numBytes, 6);
    EXPECT_EQ(d.records[0].beginByte, 2);
    EXPECT_FALSE(d.form->Cancelled);
}

TEST(MultiTrack, RefusedEditKeepsTheOldRecord) {
    const ItemRecord old = binary("Name", 0, 20, 0, 4, 9);
    const ItemRecord other = test::field("Other", 0, 25, 0, 2);
    MultiTrack d(iSmallOnePage, {old, other});
    d.open(editing(old));
    d.choose("cboRow", 25);
    d.click("cmdApply");
    ASSERT_EQ(d.prompter.messages.size(), 1u);
    EXPECT_EQ(d.prompter.messages[0].text, "T3166: Other.");
    ASSERT_EQ(d.records.size(), 2);
    EXPECT_EQ(d.records[0], old);
    EXPECT_EQ(d.records[1], other);
}

}  // namespace
}  // namespace kestrin
