// What the operator enters: encodings, function properties, layout properties and
// database updates, and the record the item editor's Apply writes; first and last accepted
// value, first refused one, exact messages.
#include <gtest/gtest.h>

#include <set>

#include "rules/DatabaseUpdateRules.h"
#include "rules/EditorEntries.h"
#include "rules/Encodings.h"
#include "rules/FunctionProperties.h"
#include "rules/NumberChecks.h"
#include "rules/LayoutPropertiesRules.h"
#include "rules/PlacementValidation.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

namespace kestrin::test {
namespace {

const Translator tr;

BoundaryTexts allAt(const std::string& value) {
    BoundaryTexts t;
    t.fill(value);
    return t;
}

const std::string kCutMessage = "Some or all application boundaries cut through database items or functions.\r\n"
                                "Move the boundary or click cancel and move your iClass items.";
const std::string kHidMessage = "HID Space should not cover database items or functions.\r\n"
                                "Disable HID application or click cancel and move your iClass items.";

// What a number box takes for a number: blanks around it, a sign, a fraction, an exponent in
// either letter case with a sign of its own; the range is checked on the value it stands for.
TEST(NumberBoxes, TakeNumbersAsWrittenAndCheckTheValuesRange) {
    const std::pair<const char*, int32_t> cases[] = {  // the text and the failure's text id (0: taken) for 0 to 255
        {" 7 ", 0}, {"+7", 0}, {"2.5", 0}, {"1e2", 0}, {"1E+2", 0}, {"25e-1", 0}, {"3e2", kTextOutOfRange},
        {"", kTextOutOfRange}, {"-1", kTextOutOfRange}, {"1e", kTextNotANumber}, {"e2", kTextNotANumber},
        {"7x", kTextNotANumber}, {"0x1F", kTextNotANumber}};
    for (const auto& [text, id] : cases) {
        const NumberCheck c = checkNumberInRange(0, 255, text, tr);
        EXPECT_EQ(std::tuple(c.ok, c.textId), std::tuple(id == 0, id)) << text;
    }
}

TEST(LayoutProperties, BoxOfPageNMinusOneIsComparedWithItemsOfPageNTheHidAreaWithPageZero) {
    // Page 0 is never checked; P2 takes blocks 19 and 20.
    RecordArray records = recordsOf({field("P0", 0, 19, 0, 16), field("P2", 2, 19, 0, 16), field("P7", 7, 19, 0, 16)});
    // Box 1 pairs with page 2: one block into the item; box 6 with page 7: exactly at the item's
    // first block; box 7 is never compared.
    BoundaryTexts boxes = allAt("18");
    boxes[1] = "20", boxes[6] = "19", boxes[7] = "20";
    auto check = checkLayoutProperties(boxes, false, records, tr);
    EXPECT_EQ(
        std::tuple(check.boundaryFailed, check.cutItems, check.cutBoxes[1], check.cutBoxes[6], check.cutBoxes[7], check.messages),
        std::tuple(true, std::vector<int32_t>{1}, true, false, false, std::vector<std::string>{kCutMessage}));
    // The HID check; both messages in order (the properties dialog shows them and refuses OK).
    records = recordsOf({field("Hid", 0, 18, 0, 1), field("Free", 0, 19, 0, 1), field("Cut", 1, 17, 0, 16)});
    check = checkLayoutProperties(allAt("18"), true, records, tr);
    EXPECT_EQ(std::tuple(check.hidItems, check.messages),
              std::tuple(std::vector<int32_t>{0}, std::vector<std::string>{kCutMessage, kHidMessage}));
    EXPECT_TRUE(checkLayoutProperties(allAt("18"), false, RecordArray{}, tr).messages.empty());
    RecordingPrompter prompter;
    EXPECT_TRUE(acceptLayoutProperties(checkLayoutProperties(allAt("16"), false, records, tr), prompter));
}

DbUpdateEntries upd(std::string function, std::string constant, std::string number, std::string step, bool hex = false,
                    std::string field = "NUMBER") {
    return {std::move(function), std::move(field), 4, std::move(constant), std::move(number), std::move(step), hex};
}

TEST(EditorEntries, DatabaseUpdateAndItemEntriesAreCheckedAndBecomeOneRecord) {
    using Box = DbUpdateBox;
    const std::tuple<DbUpdateEntries, int32_t, Box, std::string, std::string> cases[] = {
        {upd("Constant", "0", "", ""), 0, Box::None, "0", ""}, {upd("Constant", "255", "", ""), 0, Box::None, "255", ""},
        {upd("Constant", "007", "", ""), 0, Box::None, "7", ""}, {upd("Count", "", "10", "255"), 0, Box::None, "10", "255"},
        {upd("Constant", "256", "", ""), kTextOutOfRange, Box::ConstantValue, "", ""},
        {upd("Constant", "", "", ""), kTextOutOfRange, Box::ConstantValue, "", ""},
        {upd("Count", "", "1", "256"), kTextOutOfRange, Box::CountStep, "", ""},
        {upd("Count", "", "", "1"), kTextOutOfRange, Box::CountNumber, "", ""},
        {upd("CardSnNr", "999", "", ""), 0, Box::None, "0", ""}, {upd("CardSnNr", "", "", "", true), 0, Box::None, "1", ""},
        {upd("Constant", "1", "", "", false, ""), kTextIncomplete, Box::Fields, "", ""}};
    for (const auto& [e, textId, focus, param1, param2] : cases) {
        SCOPED_TRACE(e.function + " " + e.constantText + " " + e.countNumberText + " " + e.countStepText);
        const auto v = dbUpdateViolation(e, tr);
        EXPECT_EQ(v ? std::pair(v->textId, v->focus) : std::pair(0, Box::None), std::pair(textId, focus));
        const ItemRecord r = dbUpdateRecordOf(e);
        if (v) continue;
        EXPECT_EQ(std::tuple(r.isDbUpdate, r.name, r.dbFieldName, r.dbColumn, r.param1, r.param2),
                  std::tuple(true, e.function, "NUMBER", 4, param1, param2));
        // What the dialog shows when the update is edited: its function and values.
        const DbUpdateEntries back = dbUpdateEntriesOf(r);
        const std::string values =
            e.function == "Constant" ? param1 + "||" : e.function == "Count" ? "|" + param1 + "|" + param2 : "||";
        EXPECT_EQ(std::tuple(back.function, back.constantText + "|" + back.countNumberText + "|" + back.countStepText),
                  std::tuple(e.function, values));
    }
    // The item editor's record has the kind, place and size of its mode.
    const std::pair<int32_t, const char*> modes[] = {
        {kModeField, "Field"}, {kModeFunction, "Function"}, {kModeBitField, "Bit Field"}, {kModeBitFunction, "Bit Function"}};
    for (const auto& [mode, kind] : modes) {
        EditorEntries e;
        e.mode = mode, e.itemName = "NAME", e.fieldType = 0, e.sizeText = "4", e.encodeOption = 0;
        e.page = 0, e.row = 20, e.beginByte = 3, e.beginBit = 2;
        e.function.kind = FunctionKind::Count, e.function.countNumberText = e.function.countStepText = "1";
        const ItemRecord r = itemRecordOf(e, 0x123456);
        EXPECT_EQ(std::tuple(kindWord(r), r.name, r.page, r.block, r.beginByte, r.color, isBitMode(mode) ? r.numBits : r.numBytes,
                             r.beginBit, placementRequestOf(e).beginBit),
                  std::tuple(kind, isFunctionMode(mode) ? "Count" : "NAME", 0, 20, 3, 0x123456, 4, isBitMode(mode) ? 2 : 0,
                             isBitMode(mode) ? 2 : 0));
    }
}

const std::string k40Digits(40, '9');

TEST(EncodingCodes, ListFormatsGiveTheStoredCodeAndReadBack) {
    // Type, option, format; the format list's size and selected first entry; the stored code.
    // Motorola after BCD: the hidden list's stale index is ignored.
    const std::tuple<int16_t, int, int, size_t, std::string_view, int16_t> cases[] = {
        {kFieldTypeNumber, 3, 0, 2, "Prefix 0", 3},   {kFieldTypeNumber, 1, 0, 0, "", 1},
        {kFieldTypeNumber, 3, -1, 2, "Prefix 0", 0},  {kFieldTypeNumber, 3, 2, 2, "Prefix 0", 0},
        {kFieldTypeDate, 0, 3, 4, "DD/MM/CCYY", 67},  {kFieldTypeDate, 1, 2, 3, "DD MM CC YY", 34},
        {kFieldTypeDate, 2, 2, 3, "DD MM CC YY", 10}, {kFieldTypeDate, 0, 4, 4, "DD/MM/CCYY", 64},
        {kFieldTypeCharacter, 0, -1, 0, "", 0}, {kFieldTypeBinary, 0, -1, 0, "", 0}, {kFieldTypeNumber, 9, -1, 0, "", 0}};
    for (const auto& [type, option, format, formats, first, code] : cases) {
        const auto list = formatList(type, option);
        EXPECT_EQ(std::tuple(list.size(), list.empty() ? std::string_view() : list.front(), EncodingCode(type, option, format)),
                  std::tuple(formats, first, code))
            << type << " " << option << " " << format;
    }
    // Every choice reads back from its code; unknown codes fall back to option 0.
    std::set<int16_t> dateCodes;
    for (int16_t type = kFieldTypeCharacter; type <= kFieldTypeBinary; ++type)
        for (int option = 0; option < 4; ++option) {
            const int formats = static_cast<int>(formatList(type, option).size());
            for (int f = formats ? 0 : -1; f < formats && encodingOptions(type, 0).options[static_cast<size_t>(option)].visible;
                 ++f) {
                const int16_t code = EncodingCode(type, option, f);
                EXPECT_EQ(encodingChoiceOf(type, code), (EncodingChoice{option, f})) << type << " " << option << " " << f;
                if (type == kFieldTypeDate) dateCodes.insert(code);
            }
        }
    EXPECT_EQ(dateCodes, (std::set<int16_t>{8, 9, 10, 32, 33, 34, 64, 65, 66, 67}));
    EXPECT_EQ(std::tuple(encodingChoiceOf(kFieldTypeNumber, 7), encodingChoiceOf(kFieldTypeDate, 11), encodingChoiceOf(-1, 1)),
              std::tuple(EncodingChoice{0, -1}, EncodingChoice{0, 0}, EncodingChoice{-1, -1}));
}

TEST(SizeTyping, CutsToTheModesLimitAndSpinsByOneAtOrAboveOne) {
    const std::tuple<std::string, int32_t, std::string_view, bool, std::string> cases[] = {
        {"400", 2, "", false, "384"}, {"384", 2, "", false, "384"}, {"300", 0, "", false, "256"}, {"256", 0, "", false, "256"},
        {"300", 1, "Count", false, "256"}, {"2", 3, "Checksum", true, "1"}, {"9", 3, "Checksum", false, "8"},
        {"500", 3, "Constant", false, "500"}, {"", 2, "", false, ""}, {"12a", 0, "", false, "12a"},
        {k40Digits, 2, "", false, "384"}, {k40Digits, 0, "", false, "256"}};
    for (const auto& [text, mode, function, parity, want] : cases)
        EXPECT_EQ(limitSizeText(text, mode, function, parity, 256), want) << text << " mode " << mode;
    // The spin buttons step by one and stay at or above one.
    const std::tuple<std::string, std::string, std::string> spins[] = {
        {"", "2", ""}, {"x", "2", "x"}, {"0", "1", "0"}, {"1", "2", "1"}, {"2", "3", "1"}, {"099", "100", "98"},
        {"32767", "32768", "32766"}, {"1.5", "2.5", "1"}, {k40Digits, "1" + std::string(40, '0'), std::string(39, '9') + "8"},
        {"1" + std::string(40, '0'), "1" + std::string(39, '0') + "1", k40Digits}};
    for (const auto& [text, up, down] : spins) EXPECT_EQ(std::tuple(spinUp(text), spinDown(text)), std::tuple(up, down)) << text;
}

using K = FunctionKind;

TEST(FunctionProperties, TheBoxesSizesAndValueLimitsFollowTheChoiceAndMode) {
    // constantValue, fieldList, countFirstValue, countNumber, countStep, polynom, startValue, range, sizeEnabled
    const std::tuple<K, int, bool, int32_t, PropertyBoxes> cases[] = {
        {K::Constant, 0, false, 1, {true, false, false, false, false, false, false, false, true}},
        {K::Constant, 1, false, 3, {false, true, false, false, false, false, false, false, true}},
        {K::Count, 0, false, 1, {false, false, true, true, true, false, false, false, true}},
        {K::Count, 1, true, 3, {false, true, true, false, true, false, false, false, true}},
        {K::CardSnNr, 2, false, 1, {false, false, false, false, false, false, false, false, false}},
        {K::Checksum, 0, false, 3, {false, false, false, false, false, true, true, true, true}},
        {K::Checksum, 2, false, 3, {false, false, false, false, false, true, true, true, true}},
        {K::Checksum, 2, false, 1, {false, false, false, false, false, true, true, true, false}},
        {K::Checksum, 3, false, 3, {false, false, false, false, false, false, true, true, false}}};
    for (const auto& [kind, option, fromField, mode, want] : cases)
        EXPECT_EQ(propertyBoxes(kind, option, fromField, mode), want) << int(kind) << " option " << option << " mode " << mode;
    // Sizes and value limits follow the representation method and mode.
    const std::pair<int, std::optional<int64_t>> cardSnNr[] = {{0, 10}, {1, 8}, {2, 4}, {3, 4}, {4, std::nullopt}};
    for (const auto& [option, bytes] : cardSnNr) EXPECT_EQ(requiredCardSnNrBytes(option), bytes) << option;
    EXPECT_EQ(std::tuple(fixedSize(K::Checksum, kChecksumAdd, 3), fixedSize(K::Checksum, kChecksumParity, 3),
                         fixedSize(K::Checksum, kChecksumCrc, 3)),
              std::tuple(8, 1, std::nullopt));
    // The value boxes' limits follow the mode.
    // A start value is 0 to 2^n - 1 for a bit CRC only, 0 or 1 for parity, else 0 to 255.
    using V = ValueBox;
    const std::tuple<ValueBox, int32_t, K, int, int64_t, Limits> limits[] = {
        {V::ConstantValue, 1, K::Constant, 0, 8, {0, 255}}, {V::ConstantValue, 3, K::Constant, 0, 9, {0, 4294967295}},
        {V::CountNumber, 3, K::Count, 0, 16, {0, 255}}, {V::Polynom, 1, K::Checksum, 2, 8, {257, 511}},
        {V::Polynom, 3, K::Checksum, 2, 1, {3, 3}}, {V::Polynom, 3, K::Checksum, 2, 8, {257, 511}},
        {V::Polynom, 3, K::Checksum, 2, 0, {3, 3}}, {V::Polynom, 3, K::Checksum, 2, 100, {(int64_t{1} << 62) + 1, INT64_MAX}},
        {V::StartValue, 3, K::Checksum, 2, 4, {0, 15}}, {V::StartValue, 1, K::Checksum, 3, 8, {0, 1}},
        {V::StartValue, 3, K::Checksum, 1, 4, {0, 255}}, {V::StartValue, 1, K::Checksum, 2, 4, {0, 255}}};
    for (const auto& [box, mode, kind, option, bits, want] : limits)
        EXPECT_EQ(boxLimits(box, mode, kind, option, bits), want) << int(box) << " mode " << mode << " bits " << bits;
    // The size box: room left in the page, the begin bit counted.
    for (const auto& [mode, row, byte, bit, max] :
         {std::tuple(0, 30, 0, 0, 16), {1, 30, 1, 5, 15}, {2, 30, 1, 5, 125}, {3, 30, 0, 7, 135}, {0, 32, 0, 0, 0}})
        EXPECT_EQ(sizeBoxLimits(mode, 256, row, byte, bit), (Limits{1, max})) << mode << " " << row << " " << byte << " " << bit;
    // Only digits and backspace pass the value boxes.
    for (char32_t key : {U'0', U'5', U'9', char32_t{8}}) EXPECT_TRUE(acceptsNumberKey(key)) << int(key);
    for (char32_t key : {U'a', U'-', U'.', U' ', U'/', U':', U'\u0663', char32_t{127}})
        EXPECT_FALSE(acceptsNumberKey(key)) << int(key);
    EXPECT_EQ(std::tuple(filterNumberText("1a2"), filterNumberText(" -3.5e2\b")), std::tuple("12", "352"));
}

using In = FunctionInput;

struct ValuesCase { FunctionInput input; int32_t mode; std::array<std::string, 3> params; std::array<int16_t, 2> polynomial;
                    int16_t initValue; std::array<int16_t, 5> range; };

// A function's values are stored and read back; numbers beyond the file's fields saturate, unknown
// choices read back as option 0, and the placement request is filled from them.
TEST(FunctionValues, AreStoredSaturatedAndReadBackAndFillTheRequest) {
    const ValuesCase cases[] = {
        {In{.constantText = "300"}, 1, {"300", "", ""}, {}, 0, {}},
        {In{.option = 1, .valueFromField = true, .fieldName = "Name"}, 3, {"Name", "", ""}, {}, 0, {}},
        {In{.kind = K::Count, .option = 1, .countNumberText = "10", .countStepText = "5"}, 1, {"5", "10", "1"}, {}, 0, {}},
        {In{.kind = K::Count, .valueFromField = true, .fieldName = "Id", .countStepText = "2"}, 3, {"2", "Id", "0"}, {}, 0, {}},
        {In{.kind = K::CardSnNr, .option = 3}, 1, {"3", "", ""}, {}, 0, {}},
        {In{.kind = K::Checksum, .option = 2, .polynomText = "263", .startValueText = "0", .rangePage = 1, .rangeRow = 19,
            .rangeCountText = "8"}, 1, {"2", "", ""}, {263, 0}, 0, {1, 19, 0, 8, 0}},
        // A bit checksum keeps its range in bits.
        {In{.kind = K::Checksum, .option = 3, .startValueText = "1", .rangePage = 2, .rangeRow = 20, .rangeBeginByte = 3,
            .rangeBeginBit = 5, .rangeCountText = "12"}, 3, {"3", "", ""}, {}, 1, {2, 20, 3, 5, 96}},
        {In{.kind = K::Checksum, .option = 1, .startValueText = "7", .rangePage = 1, .rangeRow = 21, .rangeCountText = "16"},
         1, {"1", "", ""}, {}, 7, {1, 21, 0, 16, 0}}};
    for (const ValuesCase& c : cases) {
        ItemRecord r;
        r.isFunction = c.mode == 1, r.isBitFunction = c.mode == 3;
        r.param2 = "stale", r.initValue = 99, r.polynomial = {9, 9};
        applyFunctionValues(c.input, c.mode, r);
        const std::array<std::string, 3> params{r.param1, r.param2, r.param3};
        EXPECT_EQ(std::tuple(r.name, params, r.polynomial, r.initValue, r.range),
                  std::tuple(functionWord(c.input.kind), c.params, c.polynomial, c.initValue, c.range));
        EXPECT_EQ(functionInputOf(r), c.input);
    }
    ItemRecord r;
    applyFunctionValues(In{.kind = K::Checksum, .option = 2, .polynomText = "70000", .startValueText = "4294967295",
                           .rangeCountText = "-40000"}, 1, r);
    EXPECT_EQ(std::tuple(r.polynomial, r.range[3]), std::tuple(std::array<int16_t, 2>{32767, 32767}, -32768));
    r = ItemRecord{};
    r.name = "Checksum", r.param1 = "9", r.initValue = 4;
    EXPECT_EQ(std::tuple(functionInputOf(r).option, functionInputOf(r).startValueText), std::tuple(0, ""));
    r.name = "CardSnNr", r.param1 = "1.5";
    EXPECT_EQ(functionInputOf(r).option, 0);
    r.name = "Count";
    r.param3 = "5";  // neither counting order
    EXPECT_EQ(functionInputOf(r).option, 0);
    r.name = "Constant", r.param1 = "";
    EXPECT_FALSE(functionInputOf(r).valueFromField);
    // The Constant's field option and the counter's switch both mean a value from a field.
    PlacementRequest q;
    fillFunctionRequest(q, In{.kind = K::Constant, .option = kConstantField, .fieldName = "NAME"});
    EXPECT_EQ(std::tuple(q.valueFromField, q.fieldChosen), std::tuple(true, "NAME"));
    fillFunctionRequest(q, In{.kind = K::Constant, .option = kConstantValue, .valueFromField = true, .constantText = "7"});
    EXPECT_EQ(std::tuple(q.valueFromField, q.constantText), std::tuple(false, "7"));
    fillFunctionRequest(q, In{.kind = K::Count, .option = 1, .valueFromField = true, .rangeCountText = "3"});
    EXPECT_EQ(std::tuple(q.valueFromField, q.propertyOption, q.rangeCountText), std::tuple(true, 1, "3"));
}

}  // namespace
}  // namespace kestrin::test
