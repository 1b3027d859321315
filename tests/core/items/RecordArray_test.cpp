// The item records: kind words, finding and removing by what a grid row shows, the record
// limit, grid rows and the editor's record, database update summaries, colours, preview views.
#include <gtest/gtest.h>

#include <set>

#include "card/CIClass.h"
#include "items/GridRows.h"
#include "items/ItemColor.h"
#include "items/PreviewViews.h"
#include "items/RecordArray.h"
#include "support/Records.h"
#include "text/Translator.h"

namespace kestrin::test {
namespace {

const Translator tr;

RecordArray recordsOf(const std::vector<ItemRecord>& list) {
    RecordArray records;
    for (const auto& r : list) records.add(r);
    return records;
}

ItemRecord flags(bool fn, bool bit, bool simple, bool bitFn, bool binary) {
    ItemRecord r;
    r.isFunction = fn, r.isBit = bit, r.isSimpleBitFunction = simple, r.isBitFunction = bitFn, r.isBinary = binary;
    return r;
}

TEST(RecordArray, KindWordsFollowTheFlagsInOrder) {
    const std::tuple<ItemRecord, std::string, int> cases[] = {
        {flags(false, false, false, false, false), "Field", 0}, {flags(true, false, false, false, false), "Function", 1},
        {flags(false, true, false, false, false), "Bit Field", 2}, {flags(false, false, false, true, false), "Bit Function", 3},
        {flags(true, false, true, false, false), "Bit Function (Simple)", 1}, {flags(true, true, true, true, true), "Binary Field", -1},
        {flags(false, false, true, true, false), "Bit Function (Simple)", 1}, {flags(true, true, false, false, false), "Function", 1}};
    for (const auto& [record, kind, code] : cases) EXPECT_EQ(std::tuple(kindWord(record), kindCode(kind)), std::tuple(kind, code)) << kind;
}

TEST(RecordArray, RemovingNeedsEveryShownValueAndMovesTheLastRecordIntoTheGap) {
    RecordArray a = recordsOf({field("A", 0, 19, 0, 2), bitField("F", 0, 20, 1, 3, 4), field("C", 0, 21, 0, 1)});
    EXPECT_EQ(a.findByPosition({0, 19, 0, 1, 0, 0}, "A", "Field"), RecordArray::kNone);      // size
    EXPECT_EQ(a.findByPosition({0, 19, 0, 2, 0, 0}, "A", "Function"), RecordArray::kNone);   // kind
    EXPECT_EQ(a.findByPosition({0, 19, 0, 2, 0, 0}, "a", "Field"), RecordArray::kNone);      // name
    EXPECT_EQ(a.findByPosition({0, 20, 1, 4, 3, 4}, "F", "Bit Field"), 1);                  // bytes not shown
    EXPECT_EQ(a.findByPosition({0, 20, 1, 0, 2, 4}, "F", "Bit Field"), RecordArray::kNone);  // begin bit
    EXPECT_FALSE(a.removeByPosition({1, 19, 0, 2, 0, 0}, "A", "Field"));
    EXPECT_TRUE(a.removeByPosition({0, 19, 0, 2, 0, 0}, "A", "Field"));
    ASSERT_EQ(a.size(), 2);
    EXPECT_EQ(std::tuple(a[0].name, a[1].name), std::tuple("C", "F"));
    EXPECT_TRUE(a.removeByPosition({0, 20, 1, 4, 3, 4}, "F", "Bit Field"));
    EXPECT_TRUE(a.removeByPosition({0, 21, 0, 1, 0, 0}, "C", "Field"));
    EXPECT_EQ(a.highestIndex(), -1);
}

TEST(RecordArray, FirstMatchIsFoundAndRowsMapToIndexes) {
    RecordArray a = recordsOf({dbUpdate("X", "Constant", "1"), field("A", 0, 19, 0, 1), field("A", 0, 19, 0, 1, 0, 5), dbUpdate("Y", "Count", "1", "1")});
    EXPECT_EQ(a.findByPosition({0, 19, 0, 1, 0, 0}, "A", "Field"), 1);
    EXPECT_EQ(std::tuple(a.indexOfItemRow(1), a.indexOfItemRow(2), a.indexOfItemRow(3), a.indexOfDbUpdateRow(2)), std::tuple(1, 2, -1, 3));
    a.removeAt(0);
    EXPECT_EQ(a[0].dbFieldName, "Y");
}

TEST(RecordArray, RefusesRecordsBeyondTheSixteenBitIndex) {
    RecordArray a;
    for (int i = 0; i < RecordArray::kMaxRecords; ++i) ASSERT_TRUE(a.add(ItemRecord{}));
    EXPECT_EQ(std::tuple(a.add(ItemRecord{}), a.highestIndex()), std::tuple(false, 32766));
}

ItemRecord binaryField(std::string name, int page, int block, int byte, int bytes) {
    ItemRecord r = field(std::move(name), page, block, byte, bytes);
    r.isBinary = true;
    return r;
}
ItemRecord simpleBitFunction(std::string word, int page, int block, int byte, int bytes, int bit, int bits) {
    ItemRecord r = bitFunction(std::move(word), "", page, block, byte, bit, bits);
    r.isBitFunction = false, r.isSimpleBitFunction = true, r.numBytes = static_cast<int16_t>(bytes);
    return r;
}

TEST(GridRows, EachKindShowsItsCellsAndReadsBackAsTheEditorsRecord) {
    using O = std::optional<int16_t>;
    // bytes, begin bit and bits as shown; the kind code the editor receives (0 where the kind leaves it)
    const std::tuple<ItemRecord, const char*, O, O, O, int> cases[] = {
        {field("Name [+] First", 1, 19, 3, 12), "Field", 12, {}, {}, 0}, {function("Constant", "ABC", "", "", 0, 255, 7, 3), "Function", 3, {}, {}, 1},
        {binaryField("Photo", 2, 30, 0, 100), "Binary Field", 100, {}, {}, 0}, {bitField("Flag", 0, 40, 5, 6, 2), "Bit Field", {}, 6, 2, 2},
        {bitFunction("Count", "1", 3, 41, 1, 0, 10), "Bit Function", {}, 0, 10, 3}, {simpleBitFunction("CardSnNr", 0, 42, 2, 4, 3, 5), "Bit Function (Simple)", 4, 3, 5, 1}};
    for (const auto& [record, kind, bytes, beginBit, bits, kindCode] : cases) {
        SCOPED_TRACE(kind);
        const ItemRow row = itemRowOf(record);
        EXPECT_EQ(std::tuple(row.name, row.kind, row.page, row.block, row.beginByte), std::tuple(record.name, kind, record.page, record.block, record.beginByte));
        EXPECT_EQ(std::tuple(row.bytes, row.beginBit, row.bits), std::tuple(bytes, beginBit, bits));
        const EditorRecord e = editorRecordOf(row);
        EXPECT_EQ(std::tuple(e.editing, e.fieldsAndFunctions, e.kindWord, e.kindCode), std::tuple(true, true, kind, kindCode));
        EXPECT_EQ(std::tuple(e.numBytes, e.beginBit, e.numBits), std::tuple(bytes.value_or(0), beginBit.value_or(0), bits.value_or(0)));
        EXPECT_EQ(recordsOf({dbUpdate("Before", "Constant", "x"), record}).findByPosition({e.page, e.block, e.beginByte, e.numBytes, e.beginBit, e.numBits}, e.name, e.kindWord), 1);
    }
}

TEST(GridRows, DatabaseUpdateSummaries) {
    for (const auto& [function, p1, p2, summary] : {std::tuple("Constant", "7", "", "<Value>: 7."), {"Count", "5", "2", "<Step>: 5. <Start value>: 2."}, {"CardSnNr", "0", "", "<Decimal>"}, {"CardSnNr", "", "", "<Decimal>"}, {"CardSnNr", "1", "", "<Hexadecimal>"}})
        EXPECT_EQ(dbUpdateSummary(function, p1, p2, tr), summary) << function << " " << p1;
}

TEST(ItemColor, EveryChannelIsLightAndTheColoursVary) {
    std::mt19937 rng(7);
    std::set<int32_t> seen;
    int lowest = 255, highest = 0;
    for (int i = 0; i < 2000; ++i) {
        const int32_t color = randomItemColor(rng);
        EXPECT_EQ(color & ~0xFFFFFF, 0);
        for (int shift : {0, 8, 16}) lowest = std::min(lowest, (color >> shift) & 0xFF), highest = std::max(highest, (color >> shift) & 0xFF);
        seen.insert(color);
    }
    EXPECT_EQ(std::tuple(lowest, highest), std::tuple(127, 227));
    EXPECT_GT(seen.size(), 1900u);
}

// parts: each grid page's VirtualPage
struct ViewCase { IClassType chip; int view; std::vector<std::string> titles; std::string position; std::vector<int32_t> pageNumbers, parts; std::string pagesHeading; };

class PreviewViews : public ::testing::TestWithParam<ViewCase> {};

TEST_P(PreviewViews, TitlesPositionPagesAndHeading) {
    const ViewCase& c = GetParam();
    CIClass card;
    card.setChipSize(c.chip);
    const PreviewView v = previewView(card, c.view, tr);
    EXPECT_EQ(std::tuple(v.index, v.titles, v.position, v.pageNumbers), std::tuple(c.view, c.titles, c.position, c.pageNumbers));
    std::vector<int32_t> parts;
    for (const auto& page : v.pages) parts.push_back(page.VirtualPage);
    EXPECT_EQ(parts, c.parts);
    EXPECT_EQ(std::tuple(v.hasPrevious, v.hasNext), std::tuple(c.view > 0, c.view < previewViewCount(c.chip) - 1));
    EXPECT_EQ(printPagesHeading(card, v, tr), c.pagesHeading);
}

INSTANTIATE_TEST_SUITE_P(Chips, PreviewViews, ::testing::Values(
    ViewCase{iSmallOnePage, 0, {"<Card Layout>"}, "", {0}, {0}, ""}, ViewCase{iBigOnePage, 0, {"Blocks 0 - 31", "Blocks 32 - 63"}, "Blocks 0 - 63 of 255", {0}, {0, 1}, ""},
    ViewCase{iBigOnePage, 1, {"Blocks 64 - 95 ", "Blocks 96 - 127"}, "Blocks 64 - 127 of 255", {0}, {2, 3}, ""},
    ViewCase{iBigOnePage, 3, {"Blocks 192 - 223", "Blocks 224 - 255"}, "Blocks 192 - 255 of 255", {0}, {6, 7}, ""},
    ViewCase{iBigEightPages, 0, {"Page 0", "Page 1"}, "Pages 0/1 of 7", {0, 1}, {0, 0}, "<PAGES> 0 <and> 1"},
    ViewCase{iBigEightPages, 3, {"Page 6", "Page 7"}, "Pages 6/7 of 7", {6, 7}, {0, 0}, "<PAGES> 6 <and> 7"}));

TEST(PreviewViews, HeaderLineNamesFileDateAndTime) {
    EXPECT_EQ(printHeaderLine(tr, "C:\\Cards\\Staff.IIF", "23.11.2026", "18:20"), "<Filename>: C:\\Cards\\Staff.IIF; <Date>: 23.11.2026; <Time>: 18:20");
}

}  // namespace
}  // namespace kestrin::test
