// The item editor in its field modes: fields, combined fields, encodings, placement errors,
// overlaps, Apply/New/OK/Cancel, editing, and the page map.
#include <gtest/gtest.h>

#include "editor/BitMapView.h"
#include "frmEditiClass_test.h"
#include "preview/PagePainter.h"

namespace kestrin::test {
namespace {

TEST(EditiClassFields, AddsAFieldWithItsPositionCodeAndALightColour) {
    Editor ed;
    frmEditiClass& form = ed.open(kModeField);
    ed.clickField(0);
    EXPECT_EQ(ed.text("txtSelectedField"), "NAME");
    EXPECT_TRUE(ed.applyEnabled());  // choosing a field is a change to apply
    ed.place(20, 2, "4");
    ASSERT_TRUE(ed.applyEnabled());
    ed.click("cmdApply");
    ASSERT_EQ(ed.records().size(), 1);
    const ItemRecord& r = ed.records()[0];
    EXPECT_EQ(r.name, "NAME");
    EXPECT_EQ(kindWord(r), kKindField);
    EXPECT_EQ(r.page, 0);
    EXPECT_EQ(r.block, 20);
    EXPECT_EQ(r.beginByte, 2);
    EXPECT_EQ(r.numBytes, 4);
    EXPECT_EQ(r.encodingCode, 0);
    EXPECT_EQ(r.fieldType, kFieldTypeCharacter);
    EXPECT_TRUE(lightColour(r.color)) << std::hex << r.color;
    EXPECT_EQ(form.appliedCount(), 1);
    EXPECT_FALSE(ed.applyEnabled());
    EXPECT_TRUE(ed.prompter.messages.empty());
}

struct EncodeCase {
    int fieldRow;
    int option;
    const char* format;  // nullptr: no format list shown
    int code;
};

class EditiClassEncodings : public ::testing::TestWithParam<EncodeCase> {};

TEST_P(EditiClassEncodings, TheChosenOptionAndFormatGiveTheStoredCode) {
    const EncodeCase& c = GetParam();
    Editor ed;
    ed.open(kModeField);
    ed.clickField(c.fieldRow);
    ed.click(QStringLiteral("optEncode(%1)").arg(c.option));
    QComboBox* format = ed.child<QComboBox>("cboFormat");
    EXPECT_EQ(format->isVisible(), c.format != nullptr);
    if (c.format) ed.choose("cboFormat", c.format);
    ed.place(21, 0, "8");
    ed.click("cmdApply");
    ASSERT_EQ(ed.records().size(), 1);
    EXPECT_EQ(ed.records()[0].encodingCode, c.code);
}

INSTANTIATE_TEST_SUITE_P(Codes, EditiClassEncodings,
                         ::testing::Values(EncodeCase{1, 1, nullptr, 1}, EncodeCase{1, 3, "Postfix F", 4},
                                           EncodeCase{2, 1, "CC YY MM DD", 34}));

TEST(EditiClassFields, TwoChosenRowsMakeACombinedField) {
    Editor ed;
    ed.open(kModeField);
    ed.clickField(2);
    ed.clickField(1);  // a plain click chooses one field
    EXPECT_EQ(ed.text("txtSelectedField"), "NUMBER");
    ed.clickField(2);
    ed.clickField(0, Qt::ControlModifier);
    EXPECT_EQ(ed.text("txtSelectedField"), "BIRTH [+] NAME");
    // The first chosen field's type decides the options: a date offers three.
    EXPECT_TRUE(ed.child<QRadioButton>("optEncode(2)")->isVisible());
    ed.place(22, 0, "12");
    ed.click("cmdApply");
    ASSERT_EQ(ed.records().size(), 1);
    EXPECT_EQ(ed.records()[0].name, "BIRTH [+] NAME");
    EXPECT_EQ(ed.records()[0].fieldType, kFieldTypeDate);
    EXPECT_TRUE(isCombinedField(ed.records()[0]));
}

TEST(EditiClassFields, AFieldBeyondThePageIsRefusedAndNothingIsWritten) {
    Editor ed;
    ed.open(kModeField);
    ed.clickField(0);
    ed.place(31, 1, "8");
    ed.click("cmdApply");
    EXPECT_EQ(ed.records().size(), 0);
    ASSERT_EQ(ed.prompter.messages.size(), 1u);
    EXPECT_EQ(ed.prompter.messages[0].text, "T4600");
    EXPECT_TRUE(ed.applyEnabled());
}

struct OverlapCase {
    Answer answer;
    const char* remaining;
};

class EditiClassOverlap : public ::testing::TestWithParam<OverlapCase> {};

TEST_P(EditiClassOverlap, TheQuestionDecidesWhetherTheOldItemIsReplaced) {
    Editor ed({field("OLD", 0, 20, 0, 4)});
    ed.prompter.answerNext(GetParam().answer);
    ed.open(kModeField);
    ed.clickField(0);
    ed.place(20, 2, "4");
    ed.click("cmdApply");
    ASSERT_EQ(ed.prompter.messages.size(), 1u);
    EXPECT_TRUE(ed.prompter.messages[0].question);
    EXPECT_EQ(ed.prompter.messages[0].buttons, Buttons::OkCancel);
    ASSERT_EQ(ed.records().size(), 1);
    EXPECT_EQ(ed.records()[0].name, GetParam().remaining);
}

INSTANTIATE_TEST_SUITE_P(Answers, EditiClassOverlap,
                         ::testing::Values(OverlapCase{Answer::Ok, "NAME"}, OverlapCase{Answer::Cancel, "OLD"}));

TEST(EditiClassFields, OkWithNothingChangedClosesWithoutValidating) {
    Editor ed;
    frmEditiClass& form = ed.open(kModeField);
    ed.click("cmdOK");
    EXPECT_FALSE(form.Cancelled);
    EXPECT_EQ(form.result(), QDialog::Accepted);
    EXPECT_FALSE(form.isVisible());
    EXPECT_TRUE(ed.prompter.messages.empty());
    EXPECT_EQ(ed.records().size(), 0);
}

TEST(EditiClassFields, OkAppliesPendingChangesAndStaysOpenWhenTheyAreRefused) {
    Editor ed;
    frmEditiClass& form = ed.open(kModeField);
    ed.clickField(0);
    ed.place(31, 4, "8");
    ed.click("cmdOK");
    EXPECT_TRUE(form.isVisible());
    EXPECT_EQ(ed.prompter.messages.size(), 1u);
    ed.type("txtNrBytes", "4");
    ed.click("cmdOK");
    EXPECT_FALSE(form.isVisible());
    EXPECT_FALSE(form.Cancelled);
    EXPECT_EQ(ed.records().size(), 1);
}

TEST(EditiClassFields, CancelStoresNothing) {
    Editor ed;
    frmEditiClass& form = ed.open(kModeField);
    ed.clickField(0);
    ed.place(20, 0, "4");
    ed.click("cmdCancel");
    EXPECT_TRUE(form.Cancelled);
    EXPECT_EQ(form.result(), QDialog::Rejected);
    EXPECT_EQ(ed.records().size(), 0);
}

EditorRecord editing(const ItemRecord& r, int kind) {
    EditorRecord e;
    e.editing = true;
    e.page = r.page, e.name = r.name, e.block = r.block, e.beginByte = r.beginByte;
    e.numBytes = r.numBytes, e.beginBit = r.beginBit, e.numBits = r.numBits;
    e.kindCode = kind;
    e.kindWord = std::string(kindWord(r));
    return e;
}

TEST(EditiClassFields, EditingPresetsTheControlsAndReplacesTheItem) {
    const ItemRecord old = field("NUMBER", 0, 20, 1, 6, 4, 0x00A0B0C0);
    Editor ed({field("OTHER", 0, 25, 0, 2), old});
    ed.open(kModeField, editing(old, 0));
    EXPECT_EQ(ed.text("txtSelectedField"), "NUMBER");
    EXPECT_EQ(ed.child<QComboBox>("cboRow")->currentText(), "20");
    EXPECT_EQ(ed.child<QComboBox>("cboBeginByte")->currentText(), "1");
    EXPECT_EQ(ed.text("txtNrBytes"), "6");
    EXPECT_TRUE(ed.child<QRadioButton>("optEncode(3)")->isChecked());
    EXPECT_EQ(ed.child<QComboBox>("cboFormat")->currentText(), "Postfix F");
    EXPECT_FALSE(ed.applyEnabled());

    ed.choose("cboRow", "21");
    ed.click("cmdApply");
    EXPECT_TRUE(ed.prompter.messages.empty());
    ASSERT_EQ(ed.records().size(), 2);
    const uint16_t at = ed.records().findByPosition({0, 21, 1, 6, 0, 0}, "NUMBER", kKindField);
    ASSERT_NE(at, RecordArray::kNone);
    EXPECT_EQ(ed.records()[at].color, 0x00A0B0C0);
    EXPECT_EQ(ed.records()[at].encodingCode, 4);
    EXPECT_EQ(ed.records().findByPosition({0, 20, 1, 6, 0, 0}, "NUMBER", kKindField), RecordArray::kNone);
}

TEST(EditiClassFields, ARefusedEditPutsTheOldItemBack) {
    const ItemRecord old = field("NAME", 0, 20, 0, 4);
    Editor ed({old});
    ed.open(kModeField, editing(old, 0));
    ed.choose("cboRow", "31");
    ed.choose("cboBeginByte", "6");
    ed.click("cmdApply");
    EXPECT_EQ(ed.prompter.messages.size(), 1u);
    ASSERT_EQ(ed.records().size(), 1);
    EXPECT_EQ(ed.records()[0], old);
}

// Before Apply the map marks the chosen place over what lies there; after it, the item itself.
TEST(EditiClassFields, ThePageMapMarksTheChosenPlaceAndShowsTheAppliedItem) {
    Editor ed;
    ed.open(kModeField);
    QTableWidget* map = ed.child<QTableWidget>("grdPreview");
    ed.clickField(0);
    ed.place(23, 3, "2");
    const QColor mark = memoryMapColor(kMapMarkColor);
    EXPECT_EQ(map->item(24, 4)->background().color(), mark);
    EXPECT_EQ(map->item(24, 5)->background().color(), mark);
    EXPECT_NE(map->item(24, 6)->background().color(), mark);
    ed.choose("cboRow", "25");
    EXPECT_NE(map->item(24, 4)->background().color(), mark);
    EXPECT_EQ(map->item(26, 4)->background().color(), mark);
    ed.choose("cboRow", "23");
    ed.click("cmdApply");
    ASSERT_EQ(ed.records().size(), 1);
    EXPECT_EQ(map->item(24, 4)->text(), "NAME");
    EXPECT_EQ(map->item(24, 4)->background().color(), memoryMapColor(ed.records()[0].color));
}

TEST(EditiClassBitFields, ABitFieldIsABinaryNumberAtItsBit) {
    Editor ed;
    frmEditiClass& form = ed.open(kModeBitField);
    EXPECT_EQ(form.windowTitle(), "<Add Bit Fields>");
    EXPECT_EQ(ed.child<QLabel>("lblNrOfBytes")->text(), "<No of Bits>");
    EXPECT_TRUE(ed.child<QRadioButton>("optEncode(0)")->isChecked());
    EXPECT_FALSE(ed.child<QRadioButton>("optEncode(0)")->isEnabled());
    ed.type("txtNrBytes", "400");
    EXPECT_EQ(ed.text("txtNrBytes"), "384");
    ed.clickField(1);
    ed.place(20, 1, "5");
    ed.choose("cboBeginBit", "6");
    ed.click("cmdApply");
    ASSERT_EQ(ed.records().size(), 1);
    const ItemRecord& r = ed.records()[0];
    EXPECT_EQ(kindWord(r), kKindBitField);
    EXPECT_EQ(r.encodingCode, 1);
    EXPECT_EQ(r.beginBit, 6);
    EXPECT_EQ(r.numBits, 5);
    EXPECT_EQ(r.numBytes, 0);

    // The bit map shows the five bits from byte 1 bit 6 in the item's colour.
    QTableWidget* map = ed.child<QTableWidget>("grdPreview");
    const CPage& page = *ed.doc.card()->page(0);
    const int row = bitGridRow(page, 20);
    for (int bit = 6; bit < 11; ++bit) {
        QTableWidgetItem* cell = map->item(row, bitGridColumn(1, 0) + bit);
        EXPECT_EQ(cell->data(Qt::UserRole).toString(), "NUMBER") << bit;
        EXPECT_EQ(cell->background().color(), memoryMapColor(r.color)) << bit;
    }
    EXPECT_EQ(map->item(row, bitGridColumn(1, 5))->data(Qt::UserRole).toString(), "");
    EXPECT_EQ(map->item(row, bitGridColumn(2, 3))->data(Qt::UserRole).toString(), "");
}

}  // namespace
}  // namespace kestrin::test
