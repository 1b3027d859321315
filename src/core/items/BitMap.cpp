#include "BitMap.h"

#include <algorithm>
#include <string>

#include "ItemSpan.h"
#include "RecordArray.h"
#include "card/CPage.h"

namespace kestrin {

namespace {

constexpr int32_t kBytes = static_cast<int32_t>(PageAddress::BytesPerBlock);
constexpr int32_t kBits = static_cast<int32_t>(PageAddress::BitsPerByte);

std::string bitPlace(int64_t byte, int64_t bit) {
    return std::to_string(byte) + '.' + std::to_string(bit);
}

}  // namespace

int32_t bitMapRow(const CPage& page, int32_t block) {
    return 1 + block - page.BeginFreeSpace;
}

MapGrid bitMap(const CPage& page, const RecordArray& records, const PlaceMark* mark) {
    const int32_t firstBlock = page.BeginFreeSpace;
    const int32_t blocks = std::max(0, page.blockCount() - firstBlock);
    MapGrid map(blocks + 1, kBitMapColumns);

    map.at(0, 0).background = kBitHeaderColor;
    for (int32_t byte = 0; byte < kBytes; ++byte) {
        const int32_t number = map.addText(std::to_string(byte));
        for (int32_t bit = 0; bit < kBits; ++bit)
            map.at(0, bitMapColumn(byte, bit)) = {bit == 0 ? number : 0, kBitHeaderColor, kMapTextColor, 0,
                                                  map.addText(bitPlace(byte, bit))};
        map.merge(0, bitMapColumn(byte, 0), kBits);
    }
    for (int32_t row = 1; row <= blocks; ++row) {
        map.at(row, 0) = {map.addText(std::to_string(firstBlock + row - 1)), kMapBlockNumberColor};
        for (int32_t column = 1; column < kBitMapColumns; ++column)
            map.at(row, column).background = ((column - 1) / kBits) % 2 == 1 ? kByteEdgeColor : kMapFreeColor;
    }

    // Items of this page, bit by bit; each block's run of one item becomes one named cell.
    for (const ItemRecord& r : records) {
        if (r.isDbUpdate || r.page != page.PageNumber) continue;
        const BitSpan span = itemSpan(r);
        const int32_t name = map.addText(r.name);
        int32_t runRow = -1, runColumn = 0, runLength = 0;
        auto closeRun = [&] {
            if (runRow < 0) return;
            map.at(runRow, runColumn).text = name;
            if (runLength > 1) map.merge(runRow, runColumn, runLength);
            runRow = -1;
        };
        for (int64_t bit = std::max(span.first, PageAddress::ofBlock(firstBlock)).bit(); bit <= span.lastBit(); ++bit) {
            const PageAddress at = PageAddress::ofBit(bit);
            const int32_t row = static_cast<int32_t>(at.block()) - firstBlock + 1;
            if (row >= map.rows()) break;
            const int32_t column = bitMapColumn(static_cast<int32_t>(at.byteInBlock()), static_cast<int32_t>(at.bitInByte()));
            MapCell& owned = map.at(row, column);
            owned.background = r.color;
            owned.owner = name;
            owned.tip = map.addText(r.name + " (" + bitPlace(at.byteInBlock(), at.bitInByte()) + ')');
            if (row != runRow) {
                closeRun();
                runRow = row, runColumn = column, runLength = 0;
            }
            ++runLength;
        }
        closeRun();
    }
    if (mark)
        for (int64_t bit = std::max(mark->span.first, PageAddress::ofBlock(firstBlock)).bit();
             bit <= mark->span.lastBit(); ++bit) {
            const PageAddress at = PageAddress::ofBit(bit);
            const int32_t row = static_cast<int32_t>(at.block()) - firstBlock + 1;
            if (row >= map.rows()) break;
            map.at(row, bitMapColumn(static_cast<int32_t>(at.byteInBlock()), static_cast<int32_t>(at.bitInByte())))
                .background = kMapMarkColor;
        }
    return map;
}

}  // namespace kestrin
