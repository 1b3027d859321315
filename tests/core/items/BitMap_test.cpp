// The item editor's bit map: rows from the first free block, bits owned by items, runs merged.
#include "items/BitMap.h"

#include <gtest/gtest.h>

#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "support/Records.h"

namespace kestrin::test {
namespace {

TEST(BitMap, ShowsFreeBlocksAndEachItemsBitsMergedWithinABlock) {
    CIClass card;  // 2 kbit, HID section on: blocks 19 to 31 are free
    RecordArray records;
    records.add(bitField("Flag", 0, 20, 7, 6, 12, 0x3366CC));  // byte 7 bit 6 of block 20 to byte 1 bit 1 of block 21
    records.add(bitField("Early", 0, 5, 0, 0, 8, 0x123456));   // inside the header: not shown
    const CPage& page = *card.page(0);
    const MapGrid map = bitMap(page, records);
    ASSERT_EQ(map.rows(), 1 + 13);
    ASSERT_EQ(map.columns(), 65);
    EXPECT_EQ(map.textAt(0, bitMapColumn(3, 0)), "3");
    EXPECT_EQ(map.columnSpan(0, bitMapColumn(3, 5)), 8);
    EXPECT_EQ(map.text(map.at(0, bitMapColumn(3, 5)).tip), "3.5");
    EXPECT_EQ(bitMapRow(page, 20), 2);
    EXPECT_EQ(map.textAt(2, 0), "20");
    EXPECT_EQ(map.at(2, 0).background, kMapBlockNumberColor);

    const std::pair<int, int> owned[] = {{2, bitMapColumn(7, 6)}, {2, bitMapColumn(7, 7)}, {3, bitMapColumn(0, 0)},
                                         {3, bitMapColumn(1, 1)}};
    for (auto [row, column] : owned) {
        EXPECT_EQ(map.text(map.at(row, column).owner), "Flag") << row << "," << column;
        EXPECT_EQ(map.at(row, column).background, 0x3366CC);
    }
    EXPECT_EQ(map.text(map.at(3, bitMapColumn(1, 1)).tip), "Flag (1.1)");
    EXPECT_EQ(map.textAt(2, bitMapColumn(7, 6)), "Flag");
    EXPECT_EQ(map.columnSpan(2, bitMapColumn(7, 6)), 2);
    EXPECT_EQ(map.columnSpan(3, bitMapColumn(0, 0)), 10);
    EXPECT_EQ(map.at(3, bitMapColumn(1, 2)).owner, 0);
    EXPECT_EQ(map.at(3, bitMapColumn(1, 2)).background, kByteEdgeColor);  // byte 1 is shaded
    EXPECT_EQ(map.at(3, bitMapColumn(2, 0)).background, kMapFreeColor);
    for (int row = 1; row < map.rows(); ++row) EXPECT_NE(map.textAt(row, 1), "Early");
}

}  // namespace
}  // namespace kestrin::test
