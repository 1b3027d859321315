// The record the item editor's Apply writes in each mode: its kind, its place and size.
#include "rules/EditorEntries.h"

#include <gtest/gtest.h>

#include "items/GridRows.h"

namespace kestrin {
namespace {

TEST(EditorEntries, TheRecordHasTheKindPlaceAndSizeOfItsMode) {
    const std::pair<int32_t, const char*> modes[] = {{kModeField, "Field"}, {kModeFunction, "Function"},
                                                     {kModeBitField, "Bit Field"}, {kModeBitFunction, "Bit Function"}};
    for (const auto& [mode, kind] : modes) {
        EditorEntries e;
        e.mode = mode;
        e.itemName = "NAME";
        e.fieldType = 0;
        e.page = 0, e.row = 20, e.beginByte = 3, e.beginBit = 2;
        e.sizeText = "4";
        e.encodeOption = 0;
        e.function.kind = FunctionKind::Count;
        e.function.countNumberText = e.function.countStepText = "1";
        const ItemRecord r = itemRecordOf(e, 0x123456);
        EXPECT_EQ(kindWord(r), kind);
        EXPECT_EQ(r.name, isFunctionMode(mode) ? "Count" : "NAME");
        EXPECT_EQ(std::tuple(r.page, r.block, r.beginByte, r.color), std::tuple(0, 20, 3, 0x123456)) << kind;
        const int16_t size = isBitMode(mode) ? r.numBits : r.numBytes;
        EXPECT_EQ(size, 4) << kind;
        EXPECT_EQ(r.beginBit, isBitMode(mode) ? 2 : 0) << kind;
    }
}

}  // namespace
}  // namespace kestrin
