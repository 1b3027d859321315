#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "card/CIClass.h"
#include "rules/LayoutPropertiesRules.h"
#include "rules/LayoutAudit.h"
#include "rules/NumberChecks.h"
#include "rules/PlacementValidation.h"
#include "rules/MultiTrackValidation.h"
#include "items/RecordArray.h"
#include "support/Records.h"
#include "text/Translator.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

std::vector<int32_t> idsOf(const std::vector<AuditViolation>& v) {
    std::vector<int32_t> ids;
    for (const auto& x : v) ids.push_back(x.textId);
    return ids;
}

TEST(LayoutAudit, CleanLayoutHasNoViolations) {
    CIClass card;
    card.setChipSize(iBigEightPages);
    RecordArray records;
    records.add(field("Name", 0, 19, 0, 16));
    ItemRecord crc = function("Checksum", "2", "", "", 1, 20, 0, 1);
    crc.polynomial = {263, 0};
    crc.range = {1, 6, 0, 16, 0};
    records.add(crc);
    records.add(bitFunction("Constant", "7", 1, 21, 0, 0, 3));
    ItemRecord photo = field("Photo", 2, 6, 0, 64);
    photo.isBinary = true;
    records.add(photo);
    records.add(dbUpdate("X", "Count", "1", "1"));
    EXPECT_TRUE(auditLayout(card, records, Translator{}).empty());
}

TEST(LayoutAudit, EachItemIsReplayedAgainstTheItemsBeforeIt) {
    CIClass card;
    card.setChipSize(iBigEightPages);
    RecordArray records;
    records.add(field("First", 1, 17, 0, 24));           // crosses page 1's boundary (both checks)
    records.add(field("Second", 1, 18, 4, 2));           // overlaps First
    records.add(field("Hid", 0, 10, 0, 1));              // inside the HID area
    records.add(function("CardSnNr", "0", "", "", 1, 22, 0, 9));
    records.add(bitFunction("Constant", "8", 1, 26, 0, 0, 3));
    ItemRecord photo = field("Photo", 1, 30, 0, 24);
    photo.isBinary = true;
    records.add(photo);
    const auto v = auditLayout(card, records, Translator{});
    EXPECT_EQ(idsOf(v), (std::vector<int32_t>{kTextBoundary, kTextOverlapOther, kTextHeaderOrHid,
                                              kTextCardSnNrDecimal, kTextOutOfRange, kTextSegmentFit,
                                              kTextBoundaryCuts, kTextHidCovers}));
    EXPECT_EQ(v[1].name, "Second");
    EXPECT_EQ(v[1].kind, "Field");
    EXPECT_EQ(v[1].block, 18);
    EXPECT_EQ(v[1].beginByte, 4);
    EXPECT_EQ(v[6].name, "First");
}

TEST(LayoutAudit, ChecksumRangesAndPageEndsAreReplayed) {
    CIClass card;
    RecordArray records;
    ItemRecord first = function("Checksum", "1", "", "", 0, 20, 0, 1);
    first.range = {1, 21, 0, 8, 0};  // covers block 21 of page 0 once placed with its page
    records.add(first);
    ItemRecord self = function("Checksum", "1", "", "", 0, 22, 0, 1);
    self.range = {0, 22, 0, 8, 0};  // covers itself
    records.add(self);
    ItemRecord holds = function("Checksum", "1", "", "", 0, 23, 0, 1);
    holds.range = {0, 20, 0, 4, 0};  // its range holds the first checksum
    records.add(holds);
    ItemRecord inside = function("Checksum", "1", "", "", 0, 21, 0, 1);  // inside the first one's range
    inside.range = {0, 24, 0, 1, 0};
    records.add(inside);
    records.add(field("Tail", 0, 31, 4, 5));  // one byte past the page
    EXPECT_EQ(idsOf(auditLayout(card, records, Translator{})),
              (std::vector<int32_t>{kTextChecksumCoversItself, kTextRangeHoldsChecksum, kTextInsideOtherRange,
                                    kTextPageFit}));
}

// A bit checksum stored with mode 0 reads back as a simple bit function: it has its bits and
// no byte count, and is judged by the bit-function rules rather than found incomplete.
TEST(LayoutAudit, SimpleBitChecksumsAreJudgedByTheirBits) {
    struct Case {
        const char* method;
        int bits;
        std::array<int16_t, 2> polynomial;
        std::vector<int32_t> ids;
    };
    const Case cases[] = {
        {"1", 8, {0, 0}, {}},
        {"3", 1, {0, 0}, {}},
        {"2", 4, {19, 3}, {}},
        {"3", 2, {0, 0}, {kTextNotExactly}},
        {"2", 4, {40, 3}, {kTextOutOfRange}},
    };
    for (const Case& c : cases) {
        ItemRecord sum = bitFunction("Checksum", c.method, 0, 20, 0, 0, c.bits);
        sum.isBitFunction = false;
        sum.isSimpleBitFunction = true;
        sum.polynomial = c.polynomial;
        sum.range = {0, 25, 0, 0, 16};
        RecordArray records;
        records.add(sum);
        EXPECT_EQ(idsOf(auditLayout(CIClass{}, records, Translator{})), c.ids) << c.method << ", " << c.bits << " bits";
    }
}

}  // namespace
