// Each kind of item fills its own cells of the item grid and reads back from them as the
// record an item editor receives.
#include "items/GridRows.h"

#include <gtest/gtest.h>

#include "items/RecordArray.h"
#include "support/Records.h"

namespace kestrin::test {
namespace {

ItemRecord binaryField(std::string name, int page, int block, int byte, int bytes) {
    ItemRecord r = field(std::move(name), page, block, byte, bytes);
    r.isBinary = true;
    return r;
}

ItemRecord simpleBitFunction(std::string word, int page, int block, int byte, int bytes, int bit, int bits) {
    ItemRecord r = bitFunction(std::move(word), "", page, block, byte, bit, bits);
    r.isBitFunction = false;
    r.isSimpleBitFunction = true;
    r.numBytes = static_cast<int16_t>(bytes);
    return r;
}

struct KindCase {
    ItemRecord record;
    const char* kind;
    std::optional<int16_t> bytes, beginBit, bits;
    int kindCode;  // as the editor receives it (0 where the kind leaves it)
};

TEST(GridRows, EachKindShowsItsCellsAndReadsBackAsTheEditorsRecord) {
    const KindCase cases[] = {
        {field("Name [+] First", 1, 19, 3, 12), "Field", 12, {}, {}, 0},
        {function("Constant", "ABC", "", "", 0, 255, 7, 3), "Function", 3, {}, {}, 1},
        {binaryField("Photo", 2, 30, 0, 100), "Binary Field", 100, {}, {}, 0},
        {bitField("Flag", 0, 40, 5, 6, 2), "Bit Field", {}, 6, 2, 2},
        {bitFunction("Count", "1", 3, 41, 1, 0, 10), "Bit Function", {}, 0, 10, 3},
        {simpleBitFunction("CardSnNr", 0, 42, 2, 4, 3, 5), "Bit Function (Simple)", 4, 3, 5, 1},
    };
    for (const KindCase& c : cases) {
        SCOPED_TRACE(c.kind);
        const ItemRow row = itemRowOf(c.record);
        EXPECT_EQ(row.name, c.record.name);
        EXPECT_EQ(row.kind, c.kind);
        EXPECT_EQ(std::vector<int>({row.page, row.block, row.beginByte}),
                  std::vector<int>({c.record.page, c.record.block, c.record.beginByte}));
        EXPECT_EQ(row.bytes, c.bytes);
        EXPECT_EQ(row.beginBit, c.beginBit);
        EXPECT_EQ(row.bits, c.bits);

        const EditorRecord e = editorRecordOf(row);
        EXPECT_TRUE(e.editing);
        EXPECT_TRUE(e.fieldsAndFunctions);
        EXPECT_EQ(e.kindWord, c.kind);
        EXPECT_EQ(e.kindCode, c.kindCode);
        EXPECT_EQ(e.numBytes, c.bytes.value_or(0));
        EXPECT_EQ(e.beginBit, c.beginBit.value_or(0));
        EXPECT_EQ(e.numBits, c.bits.value_or(0));
        // The row finds its record again.
        RecordArray records;
        records.add(dbUpdate("Before", "Constant", "x"));
        records.add(c.record);
        EXPECT_EQ(records.findByPosition({e.page, e.block, e.beginByte, e.numBytes, e.beginBit, e.numBits}, e.name,
                                         e.kindWord),
                  1);
    }
}

}  // namespace
}  // namespace kestrin::test
