// The numbers an operator types, the layout properties, database updates and the record the
// item editor's Apply writes: first and last accepted value, first refused one, exact messages.
#include <gtest/gtest.h>

#include "card/CIClass.h"
#include "items/GridRows.h"
#include "items/RecordArray.h"
#include "rules/DatabaseUpdateRules.h"
#include "rules/EditorEntries.h"
#include "rules/LayoutPropertiesRules.h"
#include "rules/NumberChecks.h"
#include "rules/PlacementValidation.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

namespace kestrin::test {
namespace {

const std::string kRange0To255 = "<Please enter a value between> 0 & 255!", kNotANumber = "<Please enter a number.>";

TEST(NumberChecks, InRangeAcceptsOnlyNumbersWithinTheBounds) {
    const Translator tr;
    const std::pair<const char*, int32_t> cases[] = {
        {"0", 0}, {"255", 0}, {" 7 ", 0}, {"05", 0}, {"256", kTextOutOfRange}, {"-1", kTextOutOfRange}, {"", kTextOutOfRange},
        {"   ", kTextOutOfRange}, {"1234567890123456789012345678901234567890", kTextOutOfRange}, {"abc", kTextNotANumber},
        {"1a", kTextNotANumber}, {"1 2", kTextNotANumber}, {"-", kTextNotANumber}};
    for (const auto& [text, id] : cases) {
        const NumberCheck check = checkNumberInRange(0, 255, text, tr);
        EXPECT_EQ(std::tuple(check.ok, check.textId), std::tuple(id == 0, id)) << text;
        EXPECT_EQ(check.message, id == 0 ? "" : id == kTextOutOfRange ? kRange0To255 : kNotANumber) << text;
    }
}

TEST(NumberChecks, EqualsIsTrueWhenTheValueIsWrong) {
    const Translator tr;
    const std::tuple<const char*, bool, std::string> cases[] = {
        {"8", false, ""}, {" 8", false, ""}, {"7", true, "<The value must be exactly> 8!"}, {"9", true, "<The value must be exactly> 8!"},
        {"", true, "<The value must be exactly> 8!"}, {"x", true, kNotANumber}};
    for (const auto& [text, wrong, message] : cases) {
        RecordingPrompter prompter;
        EXPECT_EQ(CheckNumberEquals(8, text, "", prompter, tr), wrong) << text;
        ASSERT_EQ(prompter.messages.size(), wrong ? 1u : 0u) << text;
        if (wrong) {
            EXPECT_EQ(std::tuple(prompter.messages[0].text, prompter.messages[0].title), std::tuple(message, "Kestrin")) << text;
        }
    }
}

TEST(NumberChecks, RangeCheckShowsItsMessageWithTheGivenTitle) {
    const Translator tr;
    RecordingPrompter prompter;
    for (const auto& [text, ok] : {std::pair("5", true), {"31", true}, {"4", false}, {"32", false}}) EXPECT_EQ(CheckNumberInRange(5, 31, text, "Props", prompter, tr), ok) << text;
    ASSERT_EQ(prompter.messages.size(), 2u);
    EXPECT_EQ(std::tuple(prompter.messages[1].title, prompter.messages[1].icon, prompter.messages[1].text), std::tuple("Props", Icon::Exclamation, "<Please enter a value between> 5 & 31!"));
}

BoundaryTexts allAt(const std::string& value) {
    BoundaryTexts t;
    t.fill(value);
    return t;
}
RecordArray recordsOf(const std::vector<ItemRecord>& list) {
    RecordArray records;
    for (const auto& r : list) records.add(r);
    return records;
}

const std::string kCutMessage = "Some or all application boundaries cut through database items or functions.\r\n"
                                "Move the boundary or click cancel and move your iClass items.";
const std::string kHidMessage = "HID Space should not cover database items or functions.\r\n"
                                "Disable HID application or click cancel and move your iClass items.";

TEST(LayoutProperties, BoxOfPageNMinusOneIsComparedWithItemsOfPageN) {
    // Page 0 is never checked; P2 takes blocks 19 and 20.
    const RecordArray records = recordsOf({field("P0", 0, 19, 0, 16), field("P2", 2, 19, 0, 16), field("P7", 7, 19, 0, 16)});
    BoundaryTexts boxes = allAt("18");
    boxes[1] = "20";  // box 1 pairs with page 2: one block into the item
    boxes[6] = "19";  // box 6 pairs with page 7: exactly at the item's first block
    boxes[7] = "20";  // box 7 is never compared
    const auto check = checkLayoutProperties(boxes, false, records, Translator());
    EXPECT_TRUE(check.boundaryFailed);
    EXPECT_EQ(check.cutItems, std::vector<int32_t>{1});
    EXPECT_EQ(std::tuple(check.cutBoxes[1], check.cutBoxes[6], check.cutBoxes[7]), std::tuple(true, false, false));
    EXPECT_EQ(check.messages, std::vector<std::string>{kCutMessage});
}

TEST(LayoutProperties, HidCheckAndBothMessagesInOrder) {
    const Translator tr;
    const RecordArray records = recordsOf({field("Hid", 0, 18, 0, 1), field("Free", 0, 19, 0, 1), field("Cut", 1, 17, 0, 16)});
    RecordingPrompter prompter;
    const auto check = checkLayoutProperties(allAt("18"), true, records, tr);
    EXPECT_EQ(check.hidItems, std::vector<int32_t>{0});
    EXPECT_FALSE(acceptLayoutProperties(check, prompter));
    ASSERT_EQ(prompter.messages.size(), 2u);
    EXPECT_EQ(std::tuple(prompter.messages[0].text, prompter.messages[1].text), std::tuple(kCutMessage, kHidMessage));
    EXPECT_TRUE(checkLayoutProperties(allAt("18"), false, RecordArray{}, tr).messages.empty());
    EXPECT_TRUE(acceptLayoutProperties(checkLayoutProperties(allAt("16"), false, records, tr), prompter));
}

TEST(LayoutProperties, BoundaryBoxesAcceptFiveToThirtyOne) {
    const Translator tr;
    for (const auto& [text, ok] : {std::pair("5", true), {"31", true}, {"05", true}, {" 7 ", true}, {"4", false}, {"32", false}, {"", false}, {"x", false}}) EXPECT_EQ(checkBoundaryBox(text, tr).ok, ok) << text;
    EXPECT_EQ(checkBoundaryBox("", tr).message, "<Please enter a value between> 5 & 31!");
}

TEST(LayoutProperties, ControlsMapToChipTypesAndWriteBack) {
    EXPECT_EQ(std::tuple(chipTypeOf(true, 1), chipTypeOf(false, 0), chipTypeOf(false, 1)), std::tuple(iSmallOnePage, iBigOnePage, iBigEightPages));
    EXPECT_EQ(std::tuple(boundaryTabEnabled(true, 1), boundaryTabEnabled(true, 0), boundaryTabEnabled(false, 1)), std::tuple(true, false, false));
    CIClass card;
    BoundaryTexts boxes = allAt("18");
    boxes[0] = "10", boxes[5] = "25";
    EXPECT_TRUE(writeLayoutProperties(card, false, 1, true, false, boxes));
    EXPECT_EQ(std::tuple(card.ChipSize(), card.EnableBitwise(), card.UseHIDSection()), std::tuple(iBigEightPages, true, false));
    EXPECT_EQ(std::tuple(card.GetBoundary(0), card.GetBoundary(5), boundaryTextsOf(card)[5]), std::tuple(10, 25, "25"));
    boxes[3] = "";
    EXPECT_FALSE(writeLayoutProperties(card, false, 1, false, true, boxes));
    EXPECT_EQ(card.GetBoundary(5), 18);  // rebuilt pages keep their defaults; one page takes no boundaries
    EXPECT_TRUE(writeLayoutProperties(card, true, 0, false, true, boxes));
    EXPECT_EQ(boundaryTextsOf(card), allAt("18"));
}

DbUpdateEntries entries(std::string function, std::string constant, std::string number, std::string step, bool hex = false, std::string field = "NUMBER") {
    return {std::move(function), std::move(field), 4, std::move(constant), std::move(number), std::move(step), hex};
}

TEST(DbUpdateRules, EntriesAreCheckedAndBecomeOneRecord) {
    using Box = DbUpdateBox;
    const std::tuple<DbUpdateEntries, int32_t, Box, std::string, std::string> cases[] = {
        {entries("Constant", "0", "", ""), 0, Box::None, "0", ""},
        {entries("Constant", "255", "", ""), 0, Box::None, "255", ""},
        {entries("Constant", "007", "", ""), 0, Box::None, "7", ""},
        {entries("Constant", "256", "", ""), kTextOutOfRange, Box::ConstantValue, "", ""},
        {entries("Constant", "", "", ""), kTextOutOfRange, Box::ConstantValue, "", ""},
        {entries("Count", "", "10", "255"), 0, Box::None, "10", "255"},
        {entries("Count", "", "1", "256"), kTextOutOfRange, Box::CountStep, "", ""},
        {entries("Count", "", "", "1"), kTextOutOfRange, Box::CountNumber, "", ""},
        {entries("CardSnNr", "999", "", ""), 0, Box::None, "0", ""},
        {entries("CardSnNr", "", "", "", true), 0, Box::None, "1", ""},
        {entries("Constant", "1", "", "", false, ""), kTextIncomplete, Box::Fields, "", ""}};
    for (const auto& [e, textId, focus, param1, param2] : cases) {
        SCOPED_TRACE(e.function + " " + e.constantText + " " + e.countNumberText + " " + e.countStepText);
        const auto v = dbUpdateViolation(e, Translator());
        EXPECT_EQ(v ? std::pair(v->textId, v->focus) : std::pair(0, Box::None), std::pair(textId, focus));
        if (v) continue;
        const ItemRecord r = dbUpdateRecordOf(e);
        EXPECT_EQ(std::tuple(r.isDbUpdate, r.name, r.dbFieldName, r.dbColumn, r.param1, r.param2), std::tuple(true, e.function, "NUMBER", 4, param1, param2));
        EXPECT_EQ(dbUpdateEntriesOf(r).function, e.function);
    }
}

TEST(EditorEntries, TheRecordHasTheKindPlaceAndSizeOfItsMode) {
    const std::pair<int32_t, const char*> modes[] = {{kModeField, "Field"}, {kModeFunction, "Function"}, {kModeBitField, "Bit Field"}, {kModeBitFunction, "Bit Function"}};
    for (const auto& [mode, kind] : modes) {
        EditorEntries e;
        e.mode = mode, e.itemName = "NAME", e.fieldType = 0, e.sizeText = "4", e.encodeOption = 0;
        e.page = 0, e.row = 20, e.beginByte = 3, e.beginBit = 2;
        e.function.kind = FunctionKind::Count;
        e.function.countNumberText = e.function.countStepText = "1";
        const ItemRecord r = itemRecordOf(e, 0x123456);
        EXPECT_EQ(kindWord(r), kind);
        EXPECT_EQ(r.name, isFunctionMode(mode) ? "Count" : "NAME");
        EXPECT_EQ(std::tuple(r.page, r.block, r.beginByte, r.color), std::tuple(0, 20, 3, 0x123456)) << kind;
        EXPECT_EQ(isBitMode(mode) ? r.numBits : r.numBytes, 4) << kind;
        EXPECT_EQ(r.beginBit, isBitMode(mode) ? 2 : 0) << kind;
    }
}

}  // namespace
}  // namespace kestrin::test
