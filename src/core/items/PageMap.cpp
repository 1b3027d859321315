#include "PageMap.h"

#include <algorithm>
#include <array>
#include <string>

#include "ItemSpan.h"
#include "RecordArray.h"
#include "card/CIClass.h"
#include "card/CPage.h"
#include "card/CardGeometry.h"

namespace kestrin {

namespace {

constexpr int32_t kBytesInBlock = static_cast<int32_t>(PageAddress::BytesPerBlock);

// Every run of two or more equal, non-empty texts across a row's byte cells shows as one cell.
void mergeRuns(MapGrid& map) {
    for (int32_t row = 1; row < map.rows(); ++row) {
        int32_t start = 1;
        while (start < map.columns()) {
            const std::string& text = map.textAt(row, start);
            int32_t end = start + 1;
            while (end < map.columns() && map.textAt(row, end) == text) ++end;
            if (end - start > 1 && !text.empty()) map.merge(row, start, end - start);
            start = end;
        }
    }
}

}  // namespace

MapGrid pageMap(const CPage& page, const RecordArray& records, bool wholePage, const PlaceMark* mark) {
    const int32_t blocks = wholePage ? std::max(kGridBlocks, page.blockCount()) : kGridBlocks;
    const int32_t firstGridBlock = wholePage ? 0 : page.VirtualPage * kGridBlocks;
    MapGrid map(blocks + 1, kPageMapColumns);

    const CIClass* card = page.Parent;
    const bool showHid = card && card->UseHIDSection() && page.HasHIDSpace;
    const bool boundaryGreys = card && card->ChipSize() == iBigEightPages;
    // The first block after the fixed areas: the yellow block numbers start there.
    const int32_t firstFreeBlock = showHid ? kHidLastBlock + 1 : page.HasHeader ? kHeaderBlocks : 0;

    map.at(0, 0).background = kMapFrameColor;
    for (int32_t byte = 0; byte < kBytesInBlock; ++byte)
        map.at(0, byte + 1) = {map.addText(std::to_string(byte)), kMapFrameColor};

    std::array<int32_t, kHeaderBlocks> headerNames{};
    for (int32_t b = 0; b < kHeaderBlocks; ++b)
        headerNames[static_cast<size_t>(b)] = map.addText(std::string(headerBlockName(b)));
    const int32_t hidName = map.addText(std::string(kHidAreaName));

    // Fixed areas and free bytes, as each grid block is shown before any item.
    for (int32_t row = 1; row <= blocks; ++row) {
        const int32_t block = firstGridBlock + row - 1;  // block of the page's own numbering
        map.at(row, 0) = {map.addText(std::to_string(block)), block >= firstFreeBlock ? kMapBlockNumberColor : kMapFrameColor};
        MapCell area;
        if (page.HasHeader && block < kHeaderBlocks)
            area = {headerNames[static_cast<size_t>(block)], kHeaderColor};
        else if (showHid && block >= kHidFirstBlock && block <= kHidLastBlock)
            area = {hidName, kHidColor, kMapHidTextColor};
        else if (boundaryGreys && block >= page.BeginFreeSpace)
            area.background = block <= page.Boundary ? kInsideBoundaryColor : kBeyondBoundaryColor;
        for (int32_t column = 1; column < kPageMapColumns; ++column) map.at(row, column) = area;
    }

    // Every placed kind is painted (fields, functions, binary fields and all bit kinds); a bit
    // item fills each byte its bits touch. Database-update items have no place on the card.
    const int64_t gridStart = PageAddress::ofBlock(firstGridBlock).byte();
    const int64_t gridBytes = int64_t{blocks} * kBytesInBlock;
    auto cover = [&](const BitSpan& span, const std::string& name, int32_t color) {
        const int64_t first = std::max<int64_t>(span.first.byte() - gridStart, 0);
        const int64_t last = std::min<int64_t>(PageAddress::ofBit(span.lastBit()).byte() - gridStart, gridBytes - 1);
        if (span.length <= 0 || first > last) return;
        const MapCell cell{map.addText(name), color};
        for (int64_t byte = first; byte <= last; ++byte) {
            const PageAddress at = PageAddress::ofByte(byte);
            map.at(static_cast<int32_t>(at.block()) + 1, static_cast<int32_t>(at.byteInBlock()) + 1) = cell;
        }
    };
    for (const ItemRecord& r : records)
        if (!r.isDbUpdate && r.page == page.PageNumber) cover(itemSpan(r), r.name, r.color);
    if (mark) cover(mark->span, mark->name, kMapMarkColor);

    mergeRuns(map);
    return map;
}

}  // namespace kestrin
