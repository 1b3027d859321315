// Where an item may go: placement in the item editor, multi-track items and the audit of a
// whole layout, each as one table of first accepted, last accepted and first refused values.
#include <gtest/gtest.h>

#include <functional>

#include "card/CIClass.h"
#include "rules/LayoutAudit.h"
#include "rules/LayoutPropertiesRules.h"
#include "rules/MultiTrackValidation.h"
#include "rules/NumberChecks.h"
#include "rules/PlacementValidation.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

namespace kestrin::test {
namespace {

const Translator tr;

using Change = std::function<void(PlacementRequest&)>;

// An item of the mode at page 0 (or the change's page), size in bytes or bits.
PlacementRequest at(int row, int byte, int size, int mode = kModeField, const std::string& name = "Name", int option = -1,
                    const Change& change = {}) {
    PlacementRequest q;
    q.mode = mode, q.selectedText = q.itemName = name, q.page = 0, q.propertyOption = option;
    q.row = static_cast<int16_t>(row), q.beginByte = static_cast<int16_t>(byte), q.nrBytesText = std::to_string(size);
    if (change) change(q);
    return q;
}
PlacementRequest bits(int row, int byte, int bit, int count) {
    return at(row, byte, count, kModeBitField, "Flag", -1, [bit](auto& q) { q.beginBit = static_cast<int16_t>(bit); });
}
PlacementRequest fn(const std::string& word, int mode, int option, int size, const Change& change = {}) {
    return at(20, 0, size, mode, word, option, change);
}
PlacementRequest onPage(int page, int row, int byte, int size) {
    return at(row, byte, size, kModeField, "Name", -1, [page](auto& q) { q.page = static_cast<int16_t>(page); });
}
PlacementRequest sized(std::string t) { return at(19, 0, 1, kModeField, "Name", -1, [t](auto& q) { q.nrBytesText = t; }); }
PlacementRequest check(int mode, int option, int size, const char* polynom = "", const char* start = "") {
    return fn("Checksum", mode, option, size, [=](auto& q) { q.polynomText = polynom, q.startValueText = start; });
}
PlacementRequest constant(int mode, int size, const char* value, bool fromField = false) {
    return fn("Constant", mode, 0, size, [=](auto& q) { q.constantText = value, q.valueFromField = fromField; });
}
PlacementRequest snr(int option, int size) { return fn("CardSnNr", kModeFunction, option, size); }
template <class Violation>
std::vector<int32_t> idsOf(const std::vector<Violation>& found) {
    std::vector<int32_t> ids;
    for (const auto& v : found) ids.push_back(v.textId);
    return ids;
}
// textId 0: accepted
struct RuleCase { const char* name; PlacementRequest request; int32_t textId; EditorBox focus = EditorBox::None;
                  IClassType chip = iSmallOnePage; };

class Placement : public ::testing::TestWithParam<RuleCase> {};

TEST_P(Placement, FirstBrokenRuleIsReported) {
    const auto& c = GetParam();
    const CIClass card = chipOf(c.chip);
    RecordArray records;
    RecordingPrompter prompter;
    const PlacementResult result = ValidatePlacement(c.request, card, records, prompter, tr);
    ASSERT_EQ(std::tuple(result.code, result.focus, prompter.messages.size()),
              std::tuple(c.textId == 0 ? kPlacementAccepted : kPlacementRejected, c.focus, c.textId == 0 ? 0u : 1u));
    if (c.textId == 0) return;
    const auto v = placementViolations(c.request, card, records, tr);
    ASSERT_EQ(v.size(), 1u);
    EXPECT_EQ(std::tuple(v[0].textId, v[0].message, prompter.messages[0].icon),
              std::tuple(c.textId, prompter.messages[0].text, Icon::Exclamation));
}

using B = EditorBox;
constexpr int kF = kModeFunction, kBF = kModeBitFunction, kCrc = kChecksumCrc;
const std::vector<RuleCase> kRules{
    {"EndsAtPageEnd", at(30, 0, 16), 0}, {"OneBytePastPageEnd", at(30, 1, 16), kTextPageFit},
    {"BitsEndingAtTheEnd", bits(31, 7, 5, 3), 0}, {"BitsSpanningTwoBytesAtTheEnd", bits(31, 7, 6, 3), kTextPageFit},
    {"HidRow19", at(19, 0, 1), 0}, {"HidRow18", at(18, 0, 1), kTextHeaderOrHid},
    {"NothingChosen", at(19, 0, 1, kModeField, ""), kTextIncomplete}, {"NegativeRow", at(-1, 0, 1), kTextIncomplete},
    {"ZeroSize", at(19, 0, 0), kTextIncomplete}, {"SizeNotANumber", sized("x"), kTextIncomplete},
    {"AbsurdSize", sized(std::string(32, '9')), kTextPageFit}, {"PageNotOnCard", onPage(3, 19, 0, 1), kTextIncomplete},
    // Boundary 18: bytes 151 and 152 straddle block 19's start on the paged chip only.
    {"EndsBeforeBoundaryBlock19", onPage(1, 18, 6, 2), 0, B::None, iBigEightPages},
    {"AcrossBoundary", onPage(1, 18, 7, 2), kTextBoundary, B::None, iBigEightPages},
    {"NoBoundaryOnOnePageFreeRow", at(19, 7, 2), 0, B::None, iBigOnePage},
    {"CardSnNrDecimal10", snr(0, 10), 0}, {"CardSnNrDecimal9", snr(0, 9), kTextCardSnNrDecimal},
    {"CardSnNrHex", snr(1, 10), kTextCardSnNrHex}, {"CardSnNrMotorola", snr(2, 8), kTextCardSnNrMotorola},
    {"CardSnNrIntel4", snr(3, 4), 0}, {"CardSnNrIntel5", snr(3, 5), kTextCardSnNrIntel},
    {"CardSnNrNoRepresentationNoSizeRule", snr(4, 3), 0}, {"ChecksumTwoBytes", check(kF, kCrc, 2), kTextChecksumOneByte},
    {"ByteCrcOk", check(kF, kCrc, 1, "263", "0"), 0}, {"BitParity2", check(kBF, kChecksumParity, 2), kTextNotExactly, B::NrBytes},
    {"ByteCrcPolynomial256", check(kF, kCrc, 1, "256", "0"), kTextOutOfRange, B::Polynom},
    {"ByteCrcStart256", check(kF, kCrc, 1, "263", "256"), kTextOutOfRange, B::StartValue},
    {"ByteParityStart2", check(kF, kChecksumParity, 1, "", "2"), kTextOutOfRange, B::StartValue},
    {"BitAdd8", check(kBF, kChecksumAdd, 8), 0}, {"BitAdd7", check(kBF, kChecksumAdd, 7), kTextNotExactly, B::NrBytes},
    {"BitCrcOk", check(kBF, kCrc, 4, "17", "15"), 0}, {"BitCrcStartZero", check(kBF, kCrc, 4, "17", "0"), 0},
    {"BitCrcOneBit", check(kBF, kCrc, 1, "3", "1"), 0},
    {"BitCrc9Bits", check(kBF, kCrc, 9, "17", "15"), kTextOutOfRange, B::NrBytes},
    {"BitCrcPolynomialTooSmall", check(kBF, kCrc, 4, "16", "15"), kTextOutOfRange, B::Polynom},
    {"BitCrcStartTooBig", check(kBF, kCrc, 4, "17", "16"), kTextOutOfRange, B::StartValue},
    {"BitConstantFits9Bits", constant(kBF, 9, "511"), 0},
    {"BitConstantTooBig", constant(kBF, 9, "512"), kTextOutOfRange, B::ConstantValue},
    // 64 bits: a constant near the top of the 64-bit integers still fits.
    {"BitConstant64BitsNearTheTop", constant(kBF, 64, "4611686018427387902"), 0},
    {"ConstantFromFieldWithoutField", constant(kF, 1, "", true), kTextIncomplete},
    {"CountFromField", fn("Count", kF, 0, 4, [](auto& q) { q.valueFromField = true, q.fieldChosen = "Name"; }), 0},
    {"ChecksumCoversItself", at(19, 0, 1, kF, "Checksum", kCrc, [](auto& q) {
         q.polynomText = "263", q.startValueText = "0", q.rangeRow = 19, q.rangeCountText = "16";
     }), kTextChecksumCoversItself}};
INSTANTIATE_TEST_SUITE_P(Cases, Placement, ::testing::ValuesIn(kRules), [](const auto& p) { return std::string(p.param.name); });

class Overlap : public ::testing::Test {
protected:
    PlacementResult place(const PlacementRequest& q) { return ValidatePlacement(q, card, records, prompter, tr); }
    std::vector<PlacementViolation> violations(const PlacementRequest& q) { return placementViolations(q, card, records, tr); }
    CIClass card = chipOf(iSmallOnePage);
    RecordArray records;
    RecordingPrompter prompter{Answer::Ok};
};

// An overlap asks OK or Cancel, naming the item in the way: OK replaces it and names its slot,
// Cancel refuses with no box to go back to. An item placed again where it stands, in the mode of
// its own kind, replaces itself without a question; the same name of another kind there is asked about.
TEST_F(Overlap, AsksAndReplacesOnOkButTheSameItemPlacedAgainInItsOwnModeUnasked) {
    const std::tuple<ItemRecord, int32_t, Answer> cases[] = {
        {field("Name", 0, 20, 1, 2), kTextOverlapSameName, Answer::Ok}, {field("Other", 0, 20, 0, 4), kTextOverlapOther, Answer::Ok},
        {bitField("Name", 0, 20, 0, 0, 8), kTextOverlapOther, Answer::Ok},
        {field("Other", 0, 20, 0, 4), kTextOverlapOther, Answer::Cancel}};
    for (const auto& [existing, textId, answer] : cases) {
        records = recordsOf({field("Keep", 0, 25, 0, 1), existing});
        prompter = RecordingPrompter(answer);
        const int32_t found = violations(at(20, 0, 4)).at(0).textId;
        const PlacementResult result = place(at(20, 0, 4));
        const bool ok = answer == Answer::Ok;
        EXPECT_EQ(std::tuple(result.code, result.focus, result.removedIndex, found),
                  std::tuple(ok ? kPlacementReplaced : kPlacementRejected, B::None, ok ? 1 : -1, textId));
        ASSERT_EQ(prompter.messages.size(), 1u);
        EXPECT_EQ(std::tuple(prompter.messages[0].buttons, prompter.messages[0].text, records.size(), records[0].name),
                  std::tuple(Buttons::OkCancel, tr.text(textId) + ": " + existing.name + ".", ok ? 1 : 2, "Keep"));
    }
    const std::tuple<ItemRecord, PlacementRequest, bool> placedAgain[] = {
        {field("Name", 0, 20, 0, 4), at(20, 0, 4), false}, {bitField("Flag", 0, 20, 0, 0, 3), bits(20, 0, 0, 3), false},
        {function("Count", "1", "0", "0", 0, 20, 0, 4), fn("Count", kF, -1, 4), false},
        {bitFunction("Constant", "5", 0, 20, 0, 0, 3), constant(kBF, 3, "5"), false},
        {bitField("Name", 0, 20, 0, 0, 32), at(20, 0, 4), true}, {field("Count", 0, 20, 0, 4), fn("Count", kF, -1, 4), true}};
    for (const auto& [existing, request, asked] : placedAgain) {
        records = recordsOf({existing});
        prompter = RecordingPrompter(Answer::Ok);
        const std::vector<PlacementViolation> found = violations(request);  // what a check of the layout lists
        ASSERT_EQ(found.size(), 1u);
        EXPECT_EQ(found[0].message, tr.text(asked ? kTextOverlapOther : kTextOverlapSameName) + ": " + existing.name + ".");
        const int32_t code = place(request).code;
        EXPECT_EQ(std::tuple(code, prompter.messages.size(), records.size()),
                  std::tuple(kPlacementReplaced, asked ? 1u : 0u, 0))
            << existing.name << " mode " << request.mode;
    }
}

TEST_F(Overlap, ChecksumRangeRulesCompareWithinAPageOnlyAndTheAuditCollectsEveryRule) {
    card.setChipSize(iBigEightPages);
    const auto addSum = [](int row, int rangeRow) {
        return at(row, 0, 1, kF, "Checksum", kChecksumAdd,
                  [=](auto& q) { q.rangeRow = static_cast<int16_t>(rangeRow), q.rangeCountText = "1"; });
    };
    ItemRecord other = function("Checksum", "1", "", "", 3, 22, 0, 1);  // another page, block 22
    other.range = {1, 19, 0, 8, 0};  // page 1's range lies at page offset 0 when placed with its page
    records = recordsOf({other});
    // page 3's checksum counts on page 0
    EXPECT_EQ(idsOf(violations(addSum(25, 22))), std::vector<int32_t>{kTextRangeHoldsChecksum});
    other.block = 30, other.range = {1, 19, 0, 16, 0};  // bits 1216..1343 of the page-1-based range
    records = recordsOf({other});
    // the new start bit 1216 is compared without a page term
    EXPECT_EQ(idsOf(violations(addSum(19, 25))), std::vector<int32_t>{kTextInsideOtherRange});
    // The audit collects every rule one item breaks.
    records = recordsOf({field("Old", 0, 18, 0, 16)});
    EXPECT_EQ(idsOf(placementViolations(at(18, 0, 16), card, records, tr, false)),
              (std::vector<int32_t>{kTextHeaderOrHid, kTextBoundary, kTextOverlapOther}));
}

// textId 0: accepted
struct MultiTrackCase { const char* name; MultiTrackRequest request; int32_t textId; IClassType chip = iSmallOnePage; };

class MultiTrack : public ::testing::TestWithParam<MultiTrackCase> {};

TEST_P(MultiTrack, RefusesTheFirstBrokenRuleAndKeepsTheRecords) {
    const auto& c = GetParam();
    const CIClass card = chipOf(c.chip);
    RecordArray records = recordsOf({field("Other", 0, 28, 0, 8)});
    RecordingPrompter prompter;
    EXPECT_EQ(ValidateMultiTrack(c.request, card, records, prompter, tr), c.textId == 0);
    const auto v = multiTrackViolation(c.request, card, records, tr);
    EXPECT_EQ(std::tuple(v ? v->textId : 0, prompter.messages.size(), records.size()),
              std::tuple(c.textId, c.textId == 0 ? 0u : 1u, 1));
}

const std::vector<MultiTrackCase> kMultiTrack{
    {"EndsAtPageEnd", {"Photo", 0, 30, 0, 0, "16"}, 0}, {"OneBytePast", {"Photo", 0, 30, 1, 0, "16"}, kTextSegmentFit},
    {"BitPushesPast", {"Photo", 0, 30, 0, 1, "16"}, kTextSegmentFit}, {"NoField", {"", 0, 19, 0, 0, "4"}, kTextIncomplete},
    {"NoSize", {"Photo", 0, 19, 0, 0, ""}, kTextIncomplete}, {"FirstFreeBlock", {"Photo", 0, 19, 0, 0, "8"}, 0},
    {"InHid", {"Photo", 0, 18, 7, 0, "1"}, kTextStartInHeader},
    {"AcrossBoundary", {"Photo", 2, 17, 0, 0, "16"}, kTextBoundary, iBigEightPages},
    {"UpToBoundary", {"Photo", 2, 16, 0, 0, "16"}, 0, iBigEightPages},
    {"NoBoundaryOnOnePage", {"Photo", 0, 19, 0, 0, "16"}, 0, iBigOnePage},
    {"OverOtherItem", {"Photo", 0, 27, 0, 0, "9"}, kTextOverlapOther},
    {"OverSameName", {"Other", 0, 28, 7, 0, "1"}, kTextOverlapSameName}};
INSTANTIATE_TEST_SUITE_P(Cases, MultiTrack, ::testing::ValuesIn(kMultiTrack),
                         [](const auto& p) { return std::string(p.param.name); });

ItemRecord with(ItemRecord r, const std::function<void(ItemRecord&)>& change) { return change(r), r; }
ItemRecord sum(int page, int block, std::array<int16_t, 5> range) {
    return with(function("Checksum", "1", "", "", page, block, 0, 1), [&](auto& r) { r.range = range; });
}
// A bit checksum stored with mode 0 reads back as a simple bit function: it has its bits and no
// byte count, and is judged by the bit-function rules rather than found incomplete.
ItemRecord simpleSum(const char* method, int bits, std::array<int16_t, 2> polynomial) {
    return with(bitFunction("Checksum", method, 0, 20, 0, 0, bits), [&](auto& r) {
        r.isBitFunction = false, r.isSimpleBitFunction = true, r.polynomial = polynomial, r.range = {0, 25, 0, 0, 16};
    });
}
ItemRecord binary(ItemRecord r) { return with(std::move(r), [](auto& x) { x.isBinary = true; }); }

struct AuditCase { const char* name; IClassType chip; std::vector<ItemRecord> records; std::vector<int32_t> ids; };

class Audit : public ::testing::TestWithParam<AuditCase> {};

TEST_P(Audit, EachItemIsReplayedAgainstTheItemsBeforeIt) {
    EXPECT_EQ(idsOf(auditLayout(chipOf(GetParam().chip), recordsOf(GetParam().records), tr)), GetParam().ids);
}

const std::vector<AuditCase> kLayouts{
    {"Clean", iBigEightPages,
     {field("Name", 0, 19, 0, 16), with(sum(1, 20, {1, 6, 0, 16, 0}), [](auto& r) { r.param1 = "2", r.polynomial = {263, 0}; }),
      bitFunction("Constant", "7", 1, 21, 0, 0, 3), binary(field("Photo", 2, 6, 0, 64)), dbUpdate("X", "Count", "1", "1")}, {}},
    {"EveryRule", iBigEightPages,
     {field("First", 1, 17, 0, 24), field("Second", 1, 18, 4, 2), field("Hid", 0, 10, 0, 1),
      function("CardSnNr", "0", "", "", 1, 22, 0, 9), bitFunction("Constant", "8", 1, 26, 0, 0, 3),
      binary(field("Photo", 1, 30, 0, 24))},
     {kTextBoundary, kTextOverlapOther, kTextHeaderOrHid, kTextCardSnNrDecimal, kTextOutOfRange, kTextSegmentFit,
      kTextBoundaryCuts, kTextHidCovers}},
    // The first range covers block 21 of page 0 once placed with its page; the second covers itself;
    // the third holds the first checksum; the fourth lies in the first's range.
    {"ChecksumRangesAndPageEnd", iSmallOnePage,
     {sum(0, 20, {1, 21, 0, 8, 0}), sum(0, 22, {0, 22, 0, 8, 0}), sum(0, 23, {0, 20, 0, 4, 0}), sum(0, 21, {0, 24, 0, 1, 0}),
      field("Tail", 0, 31, 4, 5)},
     {kTextChecksumCoversItself, kTextRangeHoldsChecksum, kTextInsideOtherRange, kTextPageFit}},
    {"SimpleAdd8", iSmallOnePage, {simpleSum("1", 8, {0, 0})}, {}},
    {"SimpleParity1", iSmallOnePage, {simpleSum("3", 1, {0, 0})}, {}},
    {"SimpleCrc", iSmallOnePage, {simpleSum("2", 4, {19, 3})}, {}},
    {"SimpleParity2", iSmallOnePage, {simpleSum("3", 2, {0, 0})}, {kTextNotExactly}},
    {"SimpleCrcPolynomialTooBig", iSmallOnePage, {simpleSum("2", 4, {40, 3})}, {kTextOutOfRange}}};
INSTANTIATE_TEST_SUITE_P(Layouts, Audit, ::testing::ValuesIn(kLayouts), [](const auto& p) { return std::string(p.param.name); });

}  // namespace
}  // namespace kestrin::test
