// The item records' limit, the preview's views, and the memory map of a page as the preview,
// the item editor and the multi-track dialog show it: fixed areas, block numbers, free bytes,
// boundary greys and the bytes items touch, and the editor's bit map.
#include <gtest/gtest.h>

#include <algorithm>

#include "card/CIClass.h"
#include "items/BitMap.h"
#include "items/GridRows.h"
#include "items/ItemSpan.h"
#include "items/PageMap.h"
#include "items/PreviewViews.h"
#include "items/RecordArray.h"
#include "support/Records.h"
#include "text/Translator.h"

namespace kestrin::test {
namespace {

const Translator tr;

TEST(RecordArray, RefusesRecordsBeyondTheSixteenBitIndex) {
    RecordArray a;
    for (int i = 0; i < RecordArray::kMaxRecords; ++i) ASSERT_TRUE(a.add(ItemRecord{}));
    EXPECT_FALSE(a.add(ItemRecord{}));
    EXPECT_EQ(a.highestIndex(), 32766);
}

// Each kind as the item grid hands it to the editor (a kind without a code keeps code 0 there),
// and the editor's record finds its item again only by the same place, bits included.
TEST(RecordArray, EachKindReachesTheEditorAndIsFoundAgainByItsPlace) {
    ItemRecord simple = bitFunction("Checksum", "1", 0, 23, 0, 3, 8), binary = field("Photo", 0, 24, 0, 16);
    simple.isBitFunction = false, simple.isSimpleBitFunction = true, binary.isBinary = true;
    const std::pair<ItemRecord, int> kinds[] = {{field("F", 0, 20, 0, 2), 0}, {function("Count", "1", "0", "0", 0, 21, 0, 1), 1},
                                                {bitField("B", 0, 22, 0, 3, 4), 2}, {bitFunction("Constant", "5", 0, 22, 1, 2, 3), 3},
                                                {simple, 1}, {binary, -1}};
    RecordArray records;
    for (const auto& [r, code] : kinds) records.add(r);
    for (uint16_t i = 0; i < records.size(); ++i) {
        const auto& [r, code] = kinds[i];
        const EditorRecord e = editorRecordOf(itemRowOf(r));
        SCOPED_TRACE(e.kindWord);
        EXPECT_EQ(std::tuple(kindCode(kindWord(r)), e.kindCode, e.kindWord, e.editing, e.fieldsAndFunctions),
                  std::tuple(code, std::max(code, 0), kindWord(r), true, true));
        ItemPosition at{e.page, e.block, e.beginByte, e.numBytes, e.beginBit, e.numBits};
        EXPECT_EQ(records.findByPosition(at, e.name, e.kindWord), i);
        if (!kindShowsBits(e.kindWord)) continue;
        for (int16_t* other : {&at.beginBit, &at.numBits}) {  // the same start with another count, and the reverse
            ++*other;
            EXPECT_EQ(records.findByPosition(at, e.name, e.kindWord), RecordArray::kNone);
            --*other;
        }
    }
    // A database update has no place on the card: no place finds it.
    const ItemRecord u = dbUpdate("NAME", "Constant", "1");
    records.add(u);
    EXPECT_EQ(records.findByPosition({u.page, u.block, u.beginByte, u.numBytes, u.beginBit, u.numBits}, u.name, kindWord(u)),
              RecordArray::kNone);
}

// parts: each grid page's VirtualPage and whether it holds the HID area (the first part only)
struct ViewCase { IClassType chip; int view; std::vector<std::string> titles; std::string position;
                  std::vector<int32_t> pageNumbers; std::vector<std::pair<int32_t, bool>> parts; std::string pagesHeading; };

TEST(PreviewViews, TitlesPositionPagesAndHeading) {
    const ViewCase cases[] = {
        {iSmallOnePage, 0, {"<Card Layout>"}, "", {0}, {{0, true}}, ""},
        {iBigOnePage, 0, {"Blocks 0 - 31", "Blocks 32 - 63"}, "Blocks 0 - 63 of 255", {0}, {{0, true}, {1, false}}, ""},
        {iBigOnePage, 1, {"Blocks 64 - 95 ", "Blocks 96 - 127"}, "Blocks 64 - 127 of 255", {0}, {{2, false}, {3, false}}, ""},
        {iBigOnePage, 3, {"Blocks 192 - 223", "Blocks 224 - 255"}, "Blocks 192 - 255 of 255", {0}, {{6, false}, {7, false}}, ""},
        {iBigEightPages, 0, {"Page 0", "Page 1"}, "Pages 0/1 of 7", {0, 1}, {{0, true}, {0, false}}, "<PAGES> 0 <and> 1"},
        {iBigEightPages, 3, {"Page 6", "Page 7"}, "Pages 6/7 of 7", {6, 7}, {{0, false}, {0, false}}, "<PAGES> 6 <and> 7"}};
    for (const ViewCase& c : cases) {
        const CIClass card = chipOf(c.chip);
        const PreviewView v = previewView(card, c.view, tr);
        std::vector<std::pair<int32_t, bool>> parts;
        for (const auto& page : v.pages) parts.emplace_back(page.VirtualPage, page.HasHIDSpace);
        EXPECT_EQ(std::tuple(v.index, v.titles, v.position, v.pageNumbers, parts, v.hasPrevious, v.hasNext,
                             printPagesHeading(card, v, tr)),
                  std::tuple(c.view, c.titles, c.position, c.pageNumbers, c.parts, c.view > 0,
                             c.view < previewViewCount(c.chip) - 1, c.pagesHeading));
    }
}

constexpr int32_t kGreen = 0x00C000, kBlue = 0xFF0000, kYellow = 0x00FFFF, kWhite = 0xFFFFFF;
constexpr int32_t kInside = 0xEBEBEB, kBeyond = 0xD7D7D7, kItem = 0x3366CC;

// A page of the chip, HID section on unless told; part > 0 is a later 32-block part of the
// one-page 16 kbit card, taken as the preview takes it.
MapGrid mapOf(IClassType chip, int page, int part, bool wholePage, const RecordArray& records, bool hid = true,
              int boundary = -1) {
    CIClass card = chipOf(chip);
    card.setUseHIDSection(hid);
    if (boundary >= 0) card.SetBoundary(page, boundary);
    const CPage p = part == 0 ? *card.page(page) : previewView(card, part / 2, tr).pages[static_cast<size_t>(part % 2)];
    return pageMap(p, records, wholePage);
}

// greyRow 0: no grey
struct AreaCase { const char* name; IClassType chip; bool hid; int page, part, boundary; bool wholePage, header, hidRows;
                  int rows, firstBlock, yellowRow, greyRow, beyondRow; };

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
        for (int column = 1; column <= 8; ++column)
            EXPECT_EQ(std::tuple(map.textAt(row, column), map.at(row, column).background), std::tuple(text, color));
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
    AreaCase{"Eight3Boundary32", iBigEightPages, true, 3, 0, 32, false, true, false, 33, 0, 7, 7, 34},
    AreaCase{"Eight1Boundary6", iBigEightPages, true, 1, 0, 6, false, true, false, 33, 0, 7, 7, 8}),
    [](const auto& p) { return std::string(p.param.name); });

ItemRecord item(const char* name, int page, int block, int byte, int n) { return field(name, page, block, byte, n, 0, kItem); }

TEST(PageMap, PaintsExactlyTheBytesTouched) {
    using Cells = std::vector<std::pair<int, int>>;  // (row, column) showing the item, in reading order
    const std::tuple<const char*, IClassType, int, int, bool, ItemRecord, Cells> cases[] = {
        {"BitsOverTwoBytes", iSmallOnePage, 0, 0, false, bitField("B", 0, 20, 3, 5, 6, kItem), {{21, 4}, {21, 5}}},
        {"BitFunction", iSmallOnePage, 0, 0, false, bitFunction("Count", "1", 0, 22, 0, 0, 16, kItem), {{23, 1}, {23, 2}}},
        {"ClippedAtByte255", iSmallOnePage, 0, 0, false, item("F", 0, 31, 4, 10), {{32, 5}, {32, 6}, {32, 7}, {32, 8}}},
        {"OwnPage", iBigEightPages, 2, 0, false, item("F", 2, 10, 0, 2), {{11, 1}, {11, 2}}},
        {"OtherPage", iBigEightPages, 3, 0, false, item("F", 2, 10, 0, 2), {}},
        {"PartOffset", iBigOnePage, 0, 2, false, item("F", 0, 70, 6, 4), {{7, 7}, {7, 8}, {8, 1}, {8, 2}}},
        {"AcrossPartsTail", iBigOnePage, 0, 1, false, item("F", 0, 31, 6, 4), {{1, 1}, {1, 2}}},
        {"WholePageEnd", iBigOnePage, 0, 0, true, item("F", 0, 255, 7, 3), {{256, 8}}},
        {"DatabaseUpdate", iSmallOnePage, 0, 0, false,
         [] { ItemRecord r = item("F", 0, 20, 0, 2); r.isDbUpdate = true; return r; }(), {}},
        {"NoLength", iSmallOnePage, 0, 0, false, item("F", 0, 20, 0, 0), {}}};
    for (const auto& [name, chip, page, part, wholePage, record, cells] : cases) {
        const MapGrid map = mapOf(chip, page, part, wholePage, recordsOf({record}));
        Cells shown;
        for (int row = 1; row < map.rows(); ++row)
            for (int column = 1; column <= 8; ++column)
                if (map.textAt(row, column) == record.name) {
                    shown.emplace_back(row, column);
                    EXPECT_EQ(map.at(row, column).background, kItem) << name;
                }
        EXPECT_EQ(shown, cells) << name;
    }
    // Neighbours of different names stay apart; each run of one name is one cell.
    const MapGrid two = mapOf(iSmallOnePage, 0, 0, false, recordsOf({item("A", 0, 20, 0, 1), item("B", 0, 20, 1, 2)}));
    EXPECT_EQ(std::tuple(two.columnSpan(21, 1), two.columnSpan(21, 2), two.textAt(21, 2)), std::tuple(1, 2, "B"));
}

// The item editor's bit map of a 2 kbit page (HID area on: blocks 19 to 31 free): block numbers
// on yellow, byte numbers over their eight bits, every other byte shaded; an item's bits take its
// colour, name and "name (byte.bit)" tip, one named cell a block; a mark colours the bits chosen.
TEST(BitMap, ShowsBlocksBytesItemsAndTheMark) {
    CIClass card = chipOf(iSmallOnePage);
    card.setUseHIDSection(true);
    const CPage& page = *card.page(0);
    const PlaceMark mark{itemSpan(bitField("M", 0, 31, 7, 6, 2)), "M"};
    const MapGrid map = bitMap(page, recordsOf({bitField("B", 0, 19, 0, 6, 4, kItem), bitField("C", 0, 20, 1, 0, 2, kItem)}), &mark);
    ASSERT_EQ(std::tuple(map.rows(), map.columns(), bitMapRow(page, 19)), std::tuple(14, 65, 1));
    EXPECT_EQ(std::tuple(map.textAt(1, 0), map.textAt(13, 0), map.at(13, 0).background, map.textAt(0, 1), map.textAt(0, 57),
                         map.text(map.at(0, 64).tip), map.columnSpan(0, 1), map.at(13, 8).background, map.at(13, 9).background,
                         map.at(13, 17).background),
              std::tuple("19", "31", kMapBlockNumberColor, "0", "7", "7.7", 8, kMapFreeColor, kByteEdgeColor, kMapFreeColor));
    for (int column : {7, 8, 9, 10})
        EXPECT_EQ(std::tuple(map.at(1, column).background, map.text(map.at(1, column).owner)), std::tuple(kItem, "B")) << column;
    EXPECT_EQ(std::tuple(map.at(1, 6).owner, map.at(1, 11).owner, map.textAt(1, 7), map.columnSpan(1, 8), map.columnSpan(1, 11)),
              std::tuple(0, 0, "B", 4, 1));
    EXPECT_EQ(std::tuple(map.textAt(2, 9), map.columnSpan(2, 10), map.text(map.at(1, 10).tip), map.at(13, 63).background,
                         map.at(13, 64).background, map.at(13, 62).background),  // C: a run of two bits is one cell
              std::tuple("C", 2, "B (1.1)", kMapMarkColor, kMapMarkColor, kByteEdgeColor));
    CPage full = page;  // no free block left: the map has its heading and no bits
    full.BeginFreeSpace = full.blockCount();
    EXPECT_EQ(bitMap(full, RecordArray()).rows(), 1);
}

}  // namespace
}  // namespace kestrin::test
