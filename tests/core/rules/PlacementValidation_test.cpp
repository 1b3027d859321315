#include <gtest/gtest.h>

#include <functional>

#include "card/CIClass.h"
#include "rules/NumberChecks.h"
#include "rules/PlacementValidation.h"
#include "items/RecordArray.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

PlacementRequest fieldAt(int row, int byte, int bytes, const std::string& name = "Name") {
    PlacementRequest q;
    q.mode = kModeField;
    q.selectedText = q.itemName = name;
    q.page = 0;
    q.row = static_cast<int16_t>(row);
    q.beginByte = static_cast<int16_t>(byte);
    q.nrBytesText = std::to_string(bytes);
    return q;
}

PlacementRequest bitFieldAt(int row, int byte, int bit, int bits) {
    PlacementRequest q = fieldAt(row, byte, bits, "Flag");
    q.mode = kModeBitField;
    q.beginBit = static_cast<int16_t>(bit);
    return q;
}

PlacementRequest functionAt(const std::string& word, int mode, int option, int size, int row = 20) {
    PlacementRequest q = fieldAt(row, 0, size, word);
    q.mode = mode;
    q.propertyOption = option;
    return q;
}

struct RuleCase {
    const char* name;
    IClassType chip;
    PlacementRequest request;
    int32_t textId;  // 0: accepted
    EditorBox focus = EditorBox::None;
};

class Rules : public ::testing::TestWithParam<RuleCase> {};

TEST_P(Rules, FirstBrokenRuleIsReported) {
    const auto& c = GetParam();
    CIClass card;
    card.setChipSize(c.chip);
    RecordArray records;
    RecordingPrompter prompter;
    const Translator tr;
    const PlacementResult result = ValidatePlacement(c.request, card, records, prompter, tr);
    EXPECT_EQ(result.code, c.textId == 0 ? kPlacementAccepted : kPlacementRejected);
    EXPECT_EQ(result.focus, c.focus);
    if (c.textId == 0) {
        EXPECT_TRUE(prompter.messages.empty()) << prompter.messages[0].text;
    } else {
        ASSERT_EQ(prompter.messages.size(), 1u);
        EXPECT_EQ(prompter.messages[0].icon, Icon::Exclamation);
        const auto v = placementViolations(c.request, card, records, tr);
        ASSERT_EQ(v.size(), 1u);
        EXPECT_EQ(v[0].textId, c.textId);
        EXPECT_EQ(v[0].message, prompter.messages[0].text);
    }
}

PlacementRequest with(PlacementRequest q, const std::function<void(PlacementRequest&)>& change) {
    change(q);
    return q;
}

const PlacementRequest kCrc = with(functionAt("Checksum", kModeFunction, kChecksumCrc, 1), [](auto& q) {
    q.polynomText = "263";
    q.startValueText = "0";
});
const PlacementRequest kBitCrc = with(functionAt("Checksum", kModeBitFunction, kChecksumCrc, 4), [](auto& q) {
    q.polynomText = "17";
    q.startValueText = "15";
});

INSTANTIATE_TEST_SUITE_P(
    Cases, Rules,
    ::testing::Values(
        RuleCase{"EndsAtPageEnd", iSmallOnePage, fieldAt(30, 0, 16), 0},
        RuleCase{"OneBytePastPageEnd", iSmallOnePage, fieldAt(30, 1, 16), kTextPageFit},
        RuleCase{"BitsSpanningTwoBytesAtTheEnd", iSmallOnePage, bitFieldAt(31, 7, 6, 3), kTextPageFit},
        RuleCase{"BitsEndingAtTheEnd", iSmallOnePage, bitFieldAt(31, 7, 5, 3), 0},
        RuleCase{"HidRow18", iSmallOnePage, fieldAt(18, 0, 1), kTextHeaderOrHid},
        RuleCase{"HidRow19", iSmallOnePage, fieldAt(19, 0, 1), 0},
        RuleCase{"NothingChosen", iSmallOnePage, with(fieldAt(19, 0, 1), [](auto& q) { q.selectedText.clear(); }),
                 kTextIncomplete},
        RuleCase{"NegativeRow", iSmallOnePage, fieldAt(-1, 0, 1), kTextIncomplete},
        RuleCase{"ZeroSize", iSmallOnePage, fieldAt(19, 0, 0), kTextIncomplete},
        RuleCase{"SizeNotANumber", iSmallOnePage, with(fieldAt(19, 0, 1), [](auto& q) { q.nrBytesText = "x"; }),
                 kTextIncomplete},
        RuleCase{"AbsurdSize", iSmallOnePage,
                 with(fieldAt(19, 0, 1), [](auto& q) { q.nrBytesText = "99999999999999999999999999999999"; }),
                 kTextPageFit},
        RuleCase{"PageNotOnCard", iSmallOnePage, with(fieldAt(19, 0, 1), [](auto& q) { q.page = 3; }), kTextIncomplete},
        // Boundary 18: bytes 151 and 152 straddle block 19's start on the paged chip only.
        RuleCase{"AcrossBoundary", iBigEightPages, with(fieldAt(18, 7, 2), [](auto& q) { q.page = 1; }), kTextBoundary},
        RuleCase{"EndsBeforeBoundaryBlock19", iBigEightPages, with(fieldAt(18, 6, 2), [](auto& q) { q.page = 1; }), 0},
        RuleCase{"NoBoundaryOnOnePage", iBigOnePage, fieldAt(18, 7, 2), kTextHeaderOrHid},
        RuleCase{"NoBoundaryOnOnePageFreeRow", iBigOnePage, fieldAt(19, 7, 2), 0},
        RuleCase{"CardSnNrDecimal10", iSmallOnePage, functionAt("CardSnNr", kModeFunction, 0, 10), 0},
        RuleCase{"CardSnNrDecimal9", iSmallOnePage, functionAt("CardSnNr", kModeFunction, 0, 9), kTextCardSnNrDecimal},
        RuleCase{"CardSnNrHex", iSmallOnePage, functionAt("CardSnNr", kModeFunction, 1, 10), kTextCardSnNrHex},
        RuleCase{"CardSnNrMotorola", iSmallOnePage, functionAt("CardSnNr", kModeFunction, 2, 8), kTextCardSnNrMotorola},
        RuleCase{"CardSnNrIntel4", iSmallOnePage, functionAt("CardSnNr", kModeFunction, 3, 4), 0},
        RuleCase{"CardSnNrIntel5", iSmallOnePage, functionAt("CardSnNr", kModeFunction, 3, 5), kTextCardSnNrIntel},
        RuleCase{"ChecksumTwoBytes", iSmallOnePage, functionAt("Checksum", kModeFunction, kChecksumCrc, 2),
                 kTextChecksumOneByte},
        RuleCase{"ByteCrcOk", iSmallOnePage, kCrc, 0},
        RuleCase{"ByteCrcPolynomial256", iSmallOnePage, with(kCrc, [](auto& q) { q.polynomText = "256"; }),
                 kTextOutOfRange, EditorBox::Polynom},
        RuleCase{"ByteCrcStart256", iSmallOnePage, with(kCrc, [](auto& q) { q.startValueText = "256"; }),
                 kTextOutOfRange, EditorBox::StartValue},
        RuleCase{"ByteParityStart2", iSmallOnePage,
                 with(functionAt("Checksum", kModeFunction, kChecksumParity, 1), [](auto& q) { q.startValueText = "2"; }),
                 kTextOutOfRange, EditorBox::StartValue},
        RuleCase{"BitAdd8", iSmallOnePage, functionAt("Checksum", kModeBitFunction, kChecksumAdd, 8), 0},
        RuleCase{"BitAdd7", iSmallOnePage, functionAt("Checksum", kModeBitFunction, kChecksumAdd, 7), kTextNotExactly,
                 EditorBox::NrBytes},
        RuleCase{"BitParity2", iSmallOnePage, functionAt("Checksum", kModeBitFunction, kChecksumParity, 2),
                 kTextNotExactly, EditorBox::NrBytes},
        RuleCase{"BitCrcOk", iSmallOnePage, kBitCrc, 0},
        RuleCase{"BitCrcStartZero", iSmallOnePage, with(kBitCrc, [](auto& q) { q.startValueText = "0"; }), 0},
        RuleCase{"BitCrc9Bits", iSmallOnePage, with(kBitCrc, [](auto& q) { q.nrBytesText = "9"; }), kTextOutOfRange,
                 EditorBox::NrBytes},
        RuleCase{"BitCrcPolynomialTooSmall", iSmallOnePage, with(kBitCrc, [](auto& q) { q.polynomText = "16"; }),
                 kTextOutOfRange, EditorBox::Polynom},
        RuleCase{"BitCrcStartTooBig", iSmallOnePage, with(kBitCrc, [](auto& q) { q.startValueText = "16"; }),
                 kTextOutOfRange, EditorBox::StartValue},
        RuleCase{"BitConstantFits9Bits", iSmallOnePage,
                 with(functionAt("Constant", kModeBitFunction, 0, 9), [](auto& q) { q.constantText = "511"; }), 0},
        RuleCase{"BitConstantTooBig", iSmallOnePage,
                 with(functionAt("Constant", kModeBitFunction, 0, 9), [](auto& q) { q.constantText = "512"; }),
                 kTextOutOfRange, EditorBox::ConstantValue},
        RuleCase{"ConstantFromFieldWithoutField", iSmallOnePage,
                 with(functionAt("Constant", kModeFunction, 1, 1), [](auto& q) { q.valueFromField = true; }),
                 kTextIncomplete},
        RuleCase{"CountFromField", iSmallOnePage, with(functionAt("Count", kModeFunction, 0, 4), [](auto& q) {
                     q.valueFromField = true;
                     q.fieldChosen = "Name";
                 }),
                 0},
        RuleCase{"ChecksumCoversItself", iSmallOnePage, with(kCrc, [](auto& q) {
                     q.rangeRow = 19;
                     q.rangeCountText = "16";
                 }),
                 kTextChecksumCoversItself}),
    [](const auto& testInfo) { return std::string(testInfo.param.name); });

class Overlap : public ::testing::Test {
protected:
    Overlap() { card.setChipSize(iSmallOnePage); }
    PlacementResult place(const PlacementRequest& q) { return ValidatePlacement(q, card, records, prompter, tr); }
    CIClass card;
    RecordArray records;
    RecordingPrompter prompter{Answer::Ok};
    const Translator tr;
};

TEST_F(Overlap, StartInsideEndInsideOrCoveringAreFound) {
    records.add(field("Old", 0, 20, 2, 4));  // bytes 162..165
    for (const auto& q : {fieldAt(20, 0, 3), fieldAt(20, 5, 3), fieldAt(20, 3, 1), fieldAt(20, 0, 8)}) {
        const auto v = placementViolations(q, card, records, tr);
        ASSERT_EQ(v.size(), 1u);
        EXPECT_EQ(v[0].overlappedIndex, 0);
    }
    EXPECT_TRUE(placementViolations(fieldAt(20, 0, 2), card, records, tr).empty());
    EXPECT_TRUE(placementViolations(fieldAt(20, 6, 2), card, records, tr).empty());
    EXPECT_TRUE(placementViolations(with(fieldAt(20, 0, 8), [](auto& q) { q.page = 0; }), card, records, tr).size() == 1);
}

TEST_F(Overlap, OtherPagesAndDatabaseUpdatesDoNotCount) {
    card.setChipSize(iBigEightPages);
    records.add(field("Old", 1, 20, 0, 4));
    records.add(dbUpdate("X", "Constant", "1"));
    EXPECT_EQ(place(fieldAt(20, 0, 4)).code, kPlacementAccepted);
}

TEST_F(Overlap, SameItemPlacedAgainIsReplacedWithoutAQuestion) {
    records.add(field("Name", 0, 20, 0, 4));
    EXPECT_EQ(place(fieldAt(20, 0, 4)).code, kPlacementReplaced);
    EXPECT_TRUE(prompter.messages.empty());
    EXPECT_TRUE(records.empty());
}

struct OverlapCase {
    const char* name;
    ItemRecord existing;
    int32_t textId;
    Answer answer;
    int32_t code;
};

class OverlapQuestion : public Overlap, public ::testing::WithParamInterface<OverlapCase> {};

TEST_P(OverlapQuestion, AsksAndReplacesOnOk) {
    const auto& c = GetParam();
    records.add(field("Keep", 0, 25, 0, 1));
    records.add(c.existing);
    prompter = RecordingPrompter(c.answer);
    EXPECT_EQ(place(fieldAt(20, 0, 4)).code, c.code);
    ASSERT_EQ(prompter.messages.size(), 1u);
    EXPECT_EQ(prompter.messages[0].buttons, Buttons::OkCancel);
    EXPECT_EQ(prompter.messages[0].text, tr.text(c.textId) + ": " + c.existing.name + ".");
    EXPECT_EQ(records.size(), c.code == kPlacementReplaced ? 1 : 2);
    EXPECT_EQ(records[0].name, "Keep");
}

INSTANTIATE_TEST_SUITE_P(Outcomes, OverlapQuestion,
                         ::testing::Values(OverlapCase{"SameNameElsewhere", field("Name", 0, 20, 1, 2), kTextOverlapSameName,
                                                       Answer::Ok, kPlacementReplaced},
                                           OverlapCase{"OtherName", field("Other", 0, 20, 0, 4), kTextOverlapOther,
                                                       Answer::Ok, kPlacementReplaced},
                                           OverlapCase{"SameNameOtherKind", bitField("Name", 0, 20, 0, 0, 8),
                                                       kTextOverlapOther, Answer::Ok, kPlacementReplaced},
                                           OverlapCase{"Cancelled", field("Other", 0, 20, 0, 4), kTextOverlapOther,
                                                       Answer::Cancel, kPlacementRejected}),
                         [](const auto& testInfo) { return std::string(testInfo.param.name); });

TEST_F(Overlap, ChecksumRangeRulesCompareWithinAPageOnly) {
    card.setChipSize(iBigEightPages);
    ItemRecord other = function("Checksum", "1", "", "", 3, 22, 0, 1);  // another page, block 22
    other.range = {1, 19, 0, 8, 0};  // page 1's range lies at page offset 0 when placed with its page
    records.add(other);
    PlacementRequest q = functionAt("Checksum", kModeFunction, kChecksumAdd, 1, 25);
    q.rangeRow = 22;
    q.rangeCountText = "1";
    auto v = placementViolations(q, card, records, tr);
    ASSERT_EQ(v.size(), 1u);
    EXPECT_EQ(v[0].textId, kTextRangeHoldsChecksum);  // page 3's checksum counts on page 0

    records.clear();
    other.block = 30;
    other.range = {1, 19, 0, 16, 0};  // bits 1216..1343 of the page-1-based range
    records.add(other);
    q = functionAt("Checksum", kModeFunction, kChecksumAdd, 1, 19);
    q.rangeRow = 25;
    q.rangeCountText = "1";
    v = placementViolations(q, card, records, tr);
    ASSERT_EQ(v.size(), 1u);
    EXPECT_EQ(v[0].textId, kTextInsideOtherRange);  // the new start bit 1216 is compared without a page term
}

TEST_F(Overlap, AuditCollectsEveryRule) {
    card.setChipSize(iBigEightPages);
    records.add(field("Old", 0, 18, 0, 16));
    const auto v = placementViolations(fieldAt(18, 0, 16), card, records, tr, false);
    ASSERT_EQ(v.size(), 3u);
    EXPECT_EQ(v[0].textId, kTextHeaderOrHid);
    EXPECT_EQ(v[1].textId, kTextBoundary);
    EXPECT_EQ(v[2].textId, kTextOverlapOther);
}

}  // namespace
