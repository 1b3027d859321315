#include <gtest/gtest.h>

#include "items/GridRows.h"
#include "items/RecordArray.h"
#include "support/Records.h"
#include "text/Translator.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

struct KindCase {
    ItemRecord record;
    std::string kind;
    int code;
};

class KindWords : public ::testing::TestWithParam<KindCase> {};

TEST_P(KindWords, FollowTheFlagsInOrder) {
    EXPECT_EQ(kindWord(GetParam().record), GetParam().kind);
    EXPECT_EQ(kindCode(GetParam().kind), GetParam().code);
}

ItemRecord flags(bool fn, bool bit, bool simple, bool bitFn, bool binary) {
    ItemRecord r;
    r.isFunction = fn, r.isBit = bit, r.isSimpleBitFunction = simple, r.isBitFunction = bitFn, r.isBinary = binary;
    return r;
}

INSTANTIATE_TEST_SUITE_P(Flags, KindWords,
                         ::testing::Values(KindCase{flags(false, false, false, false, false), "Field", 0},
                                           KindCase{flags(true, false, false, false, false), "Function", 1},
                                           KindCase{flags(false, true, false, false, false), "Bit Field", 2},
                                           KindCase{flags(false, false, false, true, false), "Bit Function", 3},
                                           KindCase{flags(true, false, true, false, false), "Bit Function (Simple)", 1},
                                           KindCase{flags(true, true, true, true, true), "Binary Field", -1},
                                           KindCase{flags(false, false, true, true, false), "Bit Function (Simple)", 1},
                                           KindCase{flags(true, true, false, false, false), "Function", 1}));

TEST(RecordArray, RemovingMovesTheLastRecordIntoTheGap) {
    RecordArray a;
    a.add(field("A", 0, 19, 0, 1));
    a.add(field("B", 0, 20, 0, 1));
    a.add(field("C", 0, 21, 0, 1));
    EXPECT_TRUE(a.removeByPosition({0, 19, 0, 1, 0, 0}, "A", "Field"));
    ASSERT_EQ(a.size(), 2);
    EXPECT_EQ(a[0].name, "C");
    EXPECT_EQ(a[1].name, "B");
    EXPECT_TRUE(a.removeByPosition({0, 20, 0, 1, 0, 0}, "B", "Field"));
    EXPECT_TRUE(a.removeByPosition({0, 21, 0, 1, 0, 0}, "C", "Field"));
    EXPECT_EQ(a.highestIndex(), -1);
}

TEST(RecordArray, RemoveNeedsEveryShownValueToMatch) {
    RecordArray a;
    a.add(field("A", 0, 19, 0, 2));
    a.add(bitField("F", 0, 20, 1, 3, 4));
    EXPECT_EQ(a.findByPosition({0, 19, 0, 1, 0, 0}, "A", "Field"), RecordArray::kNone);      // size
    EXPECT_EQ(a.findByPosition({0, 19, 0, 2, 0, 0}, "A", "Function"), RecordArray::kNone);   // kind
    EXPECT_EQ(a.findByPosition({0, 19, 0, 2, 0, 0}, "a", "Field"), RecordArray::kNone);      // name
    EXPECT_EQ(a.findByPosition({0, 20, 1, 4, 3, 4}, "F", "Bit Field"), 1);                  // bytes not shown
    EXPECT_EQ(a.findByPosition({0, 20, 1, 0, 2, 4}, "F", "Bit Field"), RecordArray::kNone);  // begin bit
    EXPECT_FALSE(a.removeByPosition({1, 19, 0, 2, 0, 0}, "A", "Field"));
    EXPECT_EQ(a.size(), 2);
}

TEST(RecordArray, FirstMatchIsRemovedAndRowsMapToIndexes) {
    RecordArray a;
    a.add(dbUpdate("X", "Constant", "1"));
    a.add(field("A", 0, 19, 0, 1));
    a.add(field("A", 0, 19, 0, 1, 0, 5));
    a.add(dbUpdate("Y", "Count", "1", "1"));
    EXPECT_EQ(a.findByPosition({0, 19, 0, 1, 0, 0}, "A", "Field"), 1);
    EXPECT_EQ(a.indexOfItemRow(1), 1);
    EXPECT_EQ(a.indexOfItemRow(2), 2);
    EXPECT_EQ(a.indexOfItemRow(3), -1);
    EXPECT_EQ(a.indexOfDbUpdateRow(2), 3);
    a.removeAt(0);
    EXPECT_EQ(a[0].dbFieldName, "Y");
}

TEST(RecordArray, RefusesRecordsBeyondTheSixteenBitIndex) {
    RecordArray a;
    for (int i = 0; i < RecordArray::kMaxRecords; ++i) ASSERT_TRUE(a.add(ItemRecord{}));
    EXPECT_FALSE(a.add(ItemRecord{}));
    EXPECT_EQ(a.highestIndex(), 32766);
}

TEST(GridRows, DatabaseUpdateSummaries) {
    Translator t;
    EXPECT_EQ(dbUpdateSummary("Constant", "7", "", t), "<Value>: 7.");
    EXPECT_EQ(dbUpdateSummary("Count", "5", "2", t), "<Step>: 5. <Start value>: 2.");
    EXPECT_EQ(dbUpdateSummary("CardSnNr", "0", "", t), "<Decimal>");
    EXPECT_EQ(dbUpdateSummary("CardSnNr", "", "", t), "<Decimal>");
    EXPECT_EQ(dbUpdateSummary("CardSnNr", "1", "", t), "<Hexadecimal>");
}

}  // namespace
