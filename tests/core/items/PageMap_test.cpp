// The memory map of a page as the preview, the item editor and the multi-track dialog show it:
// fixed areas, block numbers, free bytes and boundary greys, items clipped to the grid, merges.
#include "items/PageMap.h"

#include <gtest/gtest.h>

#include "card/CIClass.h"
#include "items/PreviewViews.h"
#include "items/RecordArray.h"
#include "support/Records.h"
#include "text/Translator.h"

namespace kestrin::test {
namespace {

constexpr int32_t kGreen = 0x00C000, kBlue = 0xFF0000, kYellow = 0x00FFFF, kWhite = 0xFFFFFF;
constexpr int32_t kInside = 0xEBEBEB, kBeyond = 0xD7D7D7, kItem = 0x3366CC;

// A page of the chip, HID section on unless told; part > 0 is a later 32-block part of the
// one-page 16 kbit card, taken as the preview takes it.
MapGrid mapOf(IClassType chip, int page, int part, bool wholePage, const RecordArray& records, bool hid = true, int boundary = -1) {
    CIClass card;
    card.setChipSize(chip);
    card.setUseHIDSection(hid);
    if (boundary >= 0) card.SetBoundary(page, boundary);
    const CPage p = part == 0 ? *card.page(page) : previewView(card, part / 2, Translator()).pages[static_cast<size_t>(part % 2)];
    return pageMap(p, records, wholePage);
}

// greyRow 0: no grey
struct AreaCase { const char* name; IClassType chip; bool hid; int page, part, boundary; bool wholePage, header, hidRows; int rows, firstBlock, yellowRow, greyRow, beyondRow; };

class PageAreas : public ::testing::TestWithParam<AreaCase> {};

TEST_P(PageAreas, FixedAreasBlockNumbersAndFreeBytes) {
    const AreaCase& c = GetParam();
    const char* names[] = {"Card Serial Number", "Configuration Data", "Not Used", "Key 1", "Key 2", "Application Issuer Data"};
    const MapGrid map = mapOf(c.chip, c.page, c.part, c.wholePage, RecordArray(), c.hid, c.boundary);
    ASSERT_EQ(std::tuple(map.rows(), map.columns()), std::tuple(c.rows, 9));
    for (int column = 1; column <= 8; ++column) EXPECT_EQ(map.textAt(0, column), std::to_string(column - 1));
    for (int row = 1; row < c.rows; ++row) {
        SCOPED_TRACE(row);
        EXPECT_EQ(map.textAt(row, 0), std::to_string(c.firstBlock + row - 1));
        EXPECT_EQ(map.at(row, 0).background == kYellow, row >= c.yellowRow);
        std::string text;
        int32_t color = c.greyRow == 0 || row < c.greyRow ? kWhite : row < c.beyondRow ? kInside : kBeyond;
        if (c.header && row <= 6) text = names[row - 1], color = kGreen;
        if (c.hidRows && row >= 7 && row <= 19) text = "HID Access Control Application", color = kBlue;
        for (int column = 1; column <= 8; ++column) EXPECT_EQ(std::tuple(map.textAt(row, column), map.at(row, column).background), std::tuple(text, color));
        EXPECT_EQ(map.columnSpan(row, 1), text.empty() ? 1 : 8);
    }
}

INSTANTIATE_TEST_SUITE_P(Chips, PageAreas, ::testing::Values(
    AreaCase{"SmallHid", iSmallOnePage, true, 0, 0, -1, false, true, true, 33, 0, 20, 0, 0},
    AreaCase{"SmallNoHid", iSmallOnePage, false, 0, 0, -1, false, true, false, 33, 0, 7, 0, 0},
    AreaCase{"BigWholeHid", iBigOnePage, true, 0, 0, -1, true, true, true, 257, 0, 20, 0, 0},
    AreaCase{"BigPart0Hid", iBigOnePage, true, 0, 0, -1, false, true, true, 33, 0, 20, 0, 0},
    AreaCase{"BigPart1", iBigOnePage, true, 0, 1, -1, false, false, false, 33, 32, 1, 0, 0},
    AreaCase{"Eight0Hid", iBigEightPages, true, 0, 0, -1, false, true, true, 33, 0, 20, 20, 20},
    AreaCase{"Eight0NoHid", iBigEightPages, false, 0, 0, -1, false, true, false, 33, 0, 7, 7, 20},
    AreaCase{"Eight5Boundary10", iBigEightPages, true, 5, 0, 10, false, true, false, 33, 0, 7, 7, 12},
    AreaCase{"Eight3Boundary32", iBigEightPages, true, 3, 0, 32, false, true, false, 33, 0, 7, 7, 34},
    AreaCase{"Eight1Boundary6", iBigEightPages, true, 1, 0, 6, false, true, false, 33, 0, 7, 7, 8}),
    [](const auto& p) { return std::string(p.param.name); });

ItemRecord item(const char* name, int page, int block, int byte, int bytes) { return field(name, page, block, byte, bytes, 0, kItem); }
ItemRecord dbUpdateItem() {
    ItemRecord r = item("F", 0, 20, 0, 2);
    r.isDbUpdate = true;
    return r;
}

TEST(PageMap, PaintsExactlyTheBytesTouched) {
    using Cells = std::vector<std::pair<int, int>>;  // (row, column) showing the item, in reading order
    const std::tuple<const char*, IClassType, int, int, bool, ItemRecord, Cells> cases[] = {
        {"BitsOverTwoBytes", iSmallOnePage, 0, 0, false, bitField("B", 0, 20, 3, 5, 6, kItem), {{21, 4}, {21, 5}}},
        {"BitFunction", iSmallOnePage, 0, 0, false, bitFunction("Count", "1", 0, 22, 0, 0, 16, kItem), {{23, 1}, {23, 2}}},
        {"ClippedAtByte255", iSmallOnePage, 0, 0, false, item("F", 0, 31, 4, 10), {{32, 5}, {32, 6}, {32, 7}, {32, 8}}},
        {"OwnPage", iBigEightPages, 2, 0, false, item("F", 2, 10, 0, 2), {{11, 1}, {11, 2}}}, {"OtherPage", iBigEightPages, 3, 0, false, item("F", 2, 10, 0, 2), {}},
        {"PartOffset", iBigOnePage, 0, 2, false, item("F", 0, 70, 6, 4), {{7, 7}, {7, 8}, {8, 1}, {8, 2}}},
        {"AcrossPartsTail", iBigOnePage, 0, 1, false, item("F", 0, 31, 6, 4), {{1, 1}, {1, 2}}},
        {"WholePageEnd", iBigOnePage, 0, 0, true, item("F", 0, 255, 7, 3), {{256, 8}}}, {"DatabaseUpdate", iSmallOnePage, 0, 0, false, dbUpdateItem(), {}},
        {"NoLength", iSmallOnePage, 0, 0, false, item("F", 0, 20, 0, 0), {}}};
    for (const auto& [name, chip, page, part, wholePage, record, cells] : cases) {
        RecordArray records;
        records.add(record);
        const MapGrid map = mapOf(chip, page, part, wholePage, records);
        Cells shown;
        for (int row = 1; row < map.rows(); ++row)
            for (int column = 1; column <= 8; ++column)
                if (map.textAt(row, column) == record.name) {
                    shown.emplace_back(row, column);
                    EXPECT_EQ(map.at(row, column).background, kItem) << name;
                }
        EXPECT_EQ(shown, cells) << name;
    }
}

TEST(PageMap, MergesRunsOfEqualText) {
    RecordArray records;
    for (const ItemRecord& r : {item("A", 1, 10, 0, 3), item("B", 1, 10, 3, 2), item("A", 1, 10, 5, 3), item("C", 1, 11, 0, 8), item("D", 1, 12, 0, 1), item("E", 1, 12, 1, 1)})
        records.add(r);
    const MapGrid map = mapOf(iBigEightPages, 1, 0, false, records);
    for (auto [row, column, span] : {std::tuple{11, 1, 3}, {11, 4, 2}, {11, 6, 3}, {12, 1, 8}, {13, 1, 1}, {13, 2, 1}})
        EXPECT_EQ(map.columnSpan(row, column), span) << row << "," << column;
}

}  // namespace
}  // namespace kestrin::test
