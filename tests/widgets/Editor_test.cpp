// The item editor driven by its control names: fields, combined fields, bit fields and
// functions applied, refused placements and values, overlaps, OK and Cancel, editing, the page map.
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>

#include "DialogFixture.h"
#include "editor/BitMapView.h"
#include "editor/frmEditiClass.h"
#include "preview/PagePainter.h"
#include "rules/Encodings.h"
#include "rules/FunctionProperties.h"

namespace kestrin::test {
namespace {

using Boxes = std::vector<std::pair<const char*, const char*>>;

struct Editor : DialogFixture {
    using DialogFixture::DialogFixture;
    frmEditiClass& open(int32_t mode, int32_t editIndex = -1) { return DialogFixture::open<frmEditiClass>(mode, editIndex); }
    bool applyEnabled() const { return child<QPushButton>("cmdApply")->isEnabled(); }
    void typeAll(const Boxes& boxes) const {
        for (const auto& [box, typed] : boxes) type(box, typed);
    }
    QColor mapColour(int row, int column) const { return child<QTableWidget>("grdPreview")->item(row, column)->background().color(); }
};

// Items get a light colour: every channel from 127 to 227.
bool lightColour(int32_t bgr) {
    for (int shift : {0, 8, 16})
        if (((bgr >> shift) & 0xFF) < 127 || ((bgr >> shift) & 0xFF) > 227) return false;
    return (bgr >> 24) == 0;
}

TEST(EditiClassFields, ApplyAddsTheChosenFieldAtItsPlace) {
    Editor ed;
    frmEditiClass& form = ed.open(kModeField);
    ed.clickField(0);
    EXPECT_EQ(ed.text("txtSelectedField"), "NAME");
    EXPECT_TRUE(ed.applyEnabled());  // choosing a field is a change to apply
    ed.place(20, 2, "4");
    ed.click("cmdApply");
    ASSERT_EQ(ed.records().size(), 1);
    const ItemRecord& r = ed.records()[0];
    EXPECT_EQ(std::make_tuple(r.name, std::string(kindWord(r)), r.page, r.block, r.beginByte, r.numBytes, r.encodingCode),
              std::make_tuple(std::string("NAME"), std::string(kKindField), 0, 20, 2, 4, 0));
    EXPECT_EQ(r.fieldType, kFieldTypeCharacter);
    EXPECT_TRUE(lightColour(r.color)) << std::hex << r.color;
    EXPECT_EQ(form.appliedCount(), 1);
    EXPECT_FALSE(ed.applyEnabled());
    EXPECT_TRUE(ed.prompter.messages.empty());
}

TEST(EditiClassFields, AControlClickedSecondRowMakesACombinedField) {
    Editor ed;
    ed.open(kModeField);
    ed.clickField(1);
    ed.clickField(2);  // a plain click chooses one field
    ed.clickField(0, Qt::ControlModifier);
    EXPECT_EQ(ed.text("txtSelectedField"), "BIRTH [+] NAME");
    ed.place(22, 0, "12");
    ed.click("cmdApply");
    ASSERT_EQ(ed.records().size(), 1);
    EXPECT_EQ(std::make_pair(ed.records()[0].name, ed.records()[0].fieldType), std::make_pair(std::string("BIRTH [+] NAME"), int{kFieldTypeDate}));
    EXPECT_TRUE(isCombinedField(ed.records()[0]));
}

// A refused Apply tells why and keeps Apply on; OK applies what is pending and closes only once accepted.
TEST(EditiClassFields, APlaceBeyondThePageIsRefusedByApplyAndOk) {
    Editor ed;
    frmEditiClass& form = ed.open(kModeField);
    ed.clickField(0);
    ed.place(31, 1, "8");
    ed.click("cmdApply");
    EXPECT_EQ(ed.messageTexts(), std::vector<std::string>{"T4600"});
    EXPECT_TRUE(ed.applyEnabled());
    ed.click("cmdOK");
    EXPECT_EQ(ed.records().size(), 0);
    EXPECT_TRUE(form.isVisible());
    ed.type("txtNrBytes", "4");
    ed.click("cmdOK");
    EXPECT_FALSE(form.isVisible());
    EXPECT_FALSE(form.Cancelled);
    EXPECT_EQ(form.result(), QDialog::Accepted);
    EXPECT_EQ(ed.records().size(), 1);
}

TEST(EditiClassFields, CancelStoresNothingAndOkWithNothingChangedAsksNothing) {
    for (const char* button : {"cmdCancel", "cmdOK"}) {
        Editor ed;
        frmEditiClass& form = ed.open(kModeField);
        if (button == std::string("cmdCancel")) ed.clickField(0), ed.place(20, 0, "4");
        ed.click(button);
        EXPECT_EQ(form.Cancelled, button == std::string("cmdCancel"));
        EXPECT_FALSE(form.isVisible());
        EXPECT_TRUE(ed.prompter.messages.empty());
        EXPECT_EQ(ed.records().size(), 0);
    }
}

TEST(EditiClassFields, TheOverlapQuestionDecidesWhetherTheOldItemIsReplaced) {
    for (const auto& [answer, remaining] : {std::pair{Answer::Ok, "NAME"}, std::pair{Answer::Cancel, "OLD"}}) {
        Editor ed({field("OLD", 0, 20, 0, 4)});
        ed.prompter.answerNext(answer);
        ed.open(kModeField);
        ed.clickField(0);
        ed.place(20, 2, "4");
        ed.click("cmdApply");
        ASSERT_EQ(ed.prompter.messages.size(), 1u);
        EXPECT_TRUE(ed.prompter.messages[0].question);
        EXPECT_EQ(ed.prompter.messages[0].buttons, Buttons::OkCancel);
        ASSERT_EQ(ed.records().size(), 1);
        EXPECT_EQ(ed.records()[0].name, remaining);
    }
}

TEST(EditiClassFields, EditingPresetsTheControlsAndReplacesTheItemOrPutsItBackWhenRefused) {
    ItemRecord old = field("NUMBER", 0, 20, 1, 6, 4, 0x00A0B0C0);
    old.fieldType = kFieldTypeNumber;
    Editor ed({field("OTHER", 0, 25, 0, 2), old});
    ed.open(kModeField, 1);
    EXPECT_EQ(QStringList({ed.text("txtSelectedField"), ed.child<QComboBox>("cboRow")->currentText(), ed.text("txtNrBytes"),
                           ed.child<QComboBox>("cboBeginByte")->currentText(), ed.child<QComboBox>("cboFormat")->currentText()}),
              QStringList({"NUMBER", "20", "6", "1", "Postfix F"}));
    EXPECT_TRUE(ed.child<QRadioButton>("optEncode(3)")->isChecked());
    EXPECT_FALSE(ed.applyEnabled());
    ed.choose("cboRow", "31");
    ed.choose("cboBeginByte", "6");
    ed.click("cmdApply");
    EXPECT_EQ(ed.messageTexts(), std::vector<std::string>{"T4600"});
    EXPECT_EQ(ed.records().records(), (std::vector<ItemRecord>{field("OTHER", 0, 25, 0, 2), old}));

    ed.choose("cboRow", "21");
    ed.choose("cboBeginByte", "1");
    ed.click("cmdApply");
    EXPECT_EQ(ed.prompter.messages.size(), 1u);
    ItemRecord moved = old;  // colour and encoding kept
    moved.block = 21;
    EXPECT_EQ(ed.records().records(), (std::vector<ItemRecord>{field("OTHER", 0, 25, 0, 2), moved}));
}

// Before Apply the map marks the chosen place over what lies there; after it, the item itself.
TEST(EditiClassFields, ThePageMapMarksTheChosenPlaceAndShowsTheAppliedItem) {
    Editor ed;
    ed.open(kModeField);
    ed.clickField(0);
    ed.place(23, 3, "2");
    const QColor mark = memoryMapColor(kMapMarkColor);
    EXPECT_EQ(std::make_tuple(ed.mapColour(24, 4), ed.mapColour(24, 5)), std::make_tuple(mark, mark));
    EXPECT_NE(ed.mapColour(24, 6), mark);
    ed.choose("cboRow", "25");
    EXPECT_NE(ed.mapColour(24, 4), mark);
    EXPECT_EQ(ed.mapColour(26, 4), mark);
    ed.choose("cboRow", "23");
    ed.click("cmdApply");
    ASSERT_EQ(ed.records().size(), 1);
    EXPECT_EQ(ed.child<QTableWidget>("grdPreview")->item(24, 4)->text(), "NAME");
    EXPECT_EQ(ed.mapColour(24, 4), memoryMapColor(ed.records()[0].color));
}

TEST(EditiClassBitFields, ABitFieldIsABinaryNumberAtItsBitAndTheBitMapShowsIt) {
    Editor ed;
    ed.open(kModeBitField);
    EXPECT_TRUE(ed.child<QRadioButton>("optEncode(0)")->isChecked());
    EXPECT_FALSE(ed.child<QRadioButton>("optEncode(0)")->isEnabled());
    ed.clickField(1);
    ed.place(20, 1, "5");
    ed.choose("cboBeginBit", "6");
    ed.click("cmdApply");
    ASSERT_EQ(ed.records().size(), 1);
    const ItemRecord& r = ed.records()[0];
    EXPECT_EQ(kindWord(r), kKindBitField);
    EXPECT_EQ(std::vector<int>({r.encodingCode, r.beginBit, r.numBits, r.numBytes}), std::vector<int>({1, 6, 5, 0}));
    QTableWidget* map = ed.child<QTableWidget>("grdPreview");
    const int row = bitGridRow(*ed.doc.card()->page(0), 20);
    for (int bit = 5; bit < 12; ++bit) {  // bits 6 to 10 from byte 1 are the item's
        const QTableWidgetItem* cell = map->item(row, bitGridColumn(1, 0) + bit);
        const bool item = bit >= 6 && bit < 11;
        EXPECT_EQ(std::make_pair(cell->data(Qt::UserRole).toString(), cell->background().color() == memoryMapColor(r.color)),
                  std::make_pair(QString(item ? "NUMBER" : ""), item)) << bit;
    }
}

// What the editor stored, read back from the record: option, count number and step, polynomial,
// start value, range row and range count.
std::string stored(const ItemRecord& r) {
    const FunctionInput in = functionInputOf(r);
    return std::to_string(in.option) + " " + in.countNumberText + "/" + in.countStepText + " " + in.polynomText + "/" +
           in.startValueText + " " + std::to_string(in.rangeRow) + "/" + in.rangeCountText;
}

struct FunctionCase {
    int32_t mode;
    FunctionKind function;
    int option;
    Boxes boxes;  // typed in this order
    int block, byte, bit;
    const char* size;  // nullptr: the size the option fixes
    int storedSize;
    const char* stored;
};

TEST(EditiClassFunctions, EachFunctionIsWrittenWithItsValues) {
    const FunctionCase cases[] = {
        {kModeFunction, FunctionKind::Count, 1, {{"txtCountNumber", "5"}, {"txtCountStep", "2"}}, 20, 4, 0, "2", 2, "1 5/2 / 0/"},
        {kModeFunction, FunctionKind::CardSnNr, 3, {}, 21, 0, 0, nullptr, 4, "3 / / 0/"},
        {kModeFunction, FunctionKind::Checksum, 2, {{"txtPolynom", "263"}, {"txtStartValue", "7"}, {"txtRangeBytesCount", "8"}},
         24, 0, 0, nullptr, 1, "2 / 263/7 19/8"},
        {kModeBitFunction, FunctionKind::Checksum, 2,
         {{"txtNrBytes", "4"}, {"txtPolynom", "19"}, {"txtStartValue", "3"}, {"txtRangeBytesCount", "2"}}, 23, 2, 4, nullptr, 4,
         "2 / 19/3 19/2"},
    };
    for (const FunctionCase& c : cases) {
        SCOPED_TRACE(c.stored);
        Editor ed;
        ed.open(c.mode);
        ed.click(QStringLiteral("optFunction(%1)").arg(static_cast<int>(c.function)));
        ed.click(QStringLiteral("optProperty(%1)").arg(c.option));
        ed.typeAll(c.boxes);
        ed.choose("cboRow", QString::number(c.block));
        ed.choose("cboBeginByte", QString::number(c.byte));
        if (c.mode == kModeBitFunction) ed.choose("cboBeginBit", QString::number(c.bit));
        if (c.size) ed.type("txtNrBytes", c.size);
        ed.click("cmdApply");
        EXPECT_EQ(ed.messageTexts(), std::vector<std::string>{});
        ASSERT_EQ(ed.records().size(), 1);
        const ItemRecord& r = ed.records()[0];
        EXPECT_EQ(r.name, functionWord(c.function));
        EXPECT_EQ(kindWord(r), c.mode == kModeFunction ? kKindFunction : kKindBitFunction);
        EXPECT_EQ(std::vector<int>({r.block, r.beginByte, r.beginBit, c.mode == kModeFunction ? r.numBytes : r.numBits}),
                  std::vector<int>({c.block, c.byte, c.bit, c.storedSize}));
        EXPECT_TRUE(lightColour(r.color));
        EXPECT_EQ(stored(r), c.stored);
    }
}

struct RefusedCase {
    int32_t mode;
    const char* function;
    Boxes boxes;
    const char* box;      // left, or (with apply) focused after the refusal
    bool apply;           // refused by Apply rather than on leaving the box
    const char* limits;   // part of the message
};

// A value box is checked against its own limits when it is left and again by Apply; the box keeps the focus.
TEST(EditiClassFunctions, AValueOutOfRangeIsRefusedAndItsBoxKeepsTheFocus) {
    const RefusedCase cases[] = {
        {kModeFunction, "optFunction(1)", {{"txtCountStep", "256"}}, "txtCountStep", false, " 0 & 255!"},
        {kModeFunction, "optFunction(3)", {{"txtPolynom", "1000"}}, "txtPolynom", false, " 257 & 511!"},
        {kModeFunction, "optFunction(3)", {{"txtPolynom", "256"}, {"txtStartValue", "0"}}, "txtPolynom", true, " 257 & 511!"},
        {kModeBitFunction, "optFunction(3)", {{"txtNrBytes", "3"}, {"txtPolynom", "20"}, {"txtStartValue", "0"}},
         "txtPolynom", true, " 9 & 15!"},
    };
    for (const RefusedCase& c : cases) {
        SCOPED_TRACE(c.box + std::string(c.apply ? " on Apply" : " on leaving"));
        Editor ed;
        frmEditiClass& form = ed.open(c.mode);
        ed.click(c.function);
        if (std::string(c.function) == "optFunction(3)") ed.click("optProperty(2)");
        ed.typeAll(c.boxes);
        if (c.apply) {
            ed.choose("cboRow", "25");
            ed.click("cmdApply");
        } else {
            ed.leave(c.box);
        }
        ASSERT_EQ(ed.prompter.messages.size(), 1u);
        EXPECT_NE(ed.prompter.messages[0].text.find(c.limits), std::string::npos) << ed.prompter.messages[0].text;
        EXPECT_EQ(form.focusWidget(), ed.child<QLineEdit>(c.box));
        EXPECT_EQ(ed.records().size(), 0);
    }
}

// Editing a function presets its controls; Apply replaces it keeping its colour.
TEST(EditiClassFunctions, EditingAChecksumOrACountPresetsItsValues) {
    FunctionInput checksum;
    checksum.kind = FunctionKind::Checksum, checksum.option = kChecksumCrc, checksum.polynomText = "263";
    checksum.startValueText = "5", checksum.rangeRow = 20, checksum.rangeBeginByte = 3, checksum.rangeCountText = "4";
    FunctionInput count;
    count.kind = FunctionKind::Count, count.countNumberText = "7", count.countStepText = "3";
    for (const auto& [in, bytes, option, boxes] :
         {std::tuple{checksum, 1, "optProperty(2)", Boxes{{"txtPolynom", "263"}, {"txtStartValue", "5"}}},
          std::tuple{count, 2, "optProperty(0)", Boxes{{"txtCountNumber", "7"}, {"txtCountStep", "3"}}}}) {
        ItemRecord old = function(std::string(functionWord(in.kind)), "", "", "", 0, 25, 0, bytes, 0x00909090);
        applyFunctionValues(in, kModeFunction, old);
        Editor ed({old});
        ed.open(kModeFunction, 0);
        EXPECT_TRUE(ed.child<QRadioButton>(QStringLiteral("optFunction(%1)").arg(static_cast<int>(in.kind)))->isChecked());
        EXPECT_TRUE(ed.child<QRadioButton>(option)->isChecked());
        for (const auto& [box, shown] : boxes) EXPECT_EQ(ed.text(box), shown) << box;
        EXPECT_FALSE(ed.applyEnabled());
        if (in.kind != FunctionKind::Checksum) continue;
        EXPECT_EQ(ed.child<QComboBox>("cboRangeBeginRow")->currentText(), "20");
        EXPECT_EQ(ed.child<QComboBox>("cboRangeBeginByte")->currentText(), "3");
        ed.type("txtStartValue", "9");
        ed.click("cmdApply");
        EXPECT_EQ(ed.messageTexts(), std::vector<std::string>{});
        ASSERT_EQ(ed.records().size(), 1);
        FunctionInput changed = checksum;
        changed.startValueText = "9";
        EXPECT_EQ(functionInputOf(ed.records()[0]), changed);
        EXPECT_EQ(ed.records()[0].color, 0x00909090);
    }
}

}  // namespace
}  // namespace kestrin::test
