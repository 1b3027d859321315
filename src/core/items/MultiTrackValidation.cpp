#include "MultiTrackValidation.h"

#include <algorithm>

#include "RecordArray.h"
#include "base/ProductInfo.h"
#include "card/CIClass.h"
#include "editor/ItemBits.h"
#include "editor/NumberText.h"
#include "text/Prompter.h"
#include "text/Translator.h"

namespace kestrin {

std::optional<PlacementViolation> multiTrackViolation(const MultiTrackRequest& q, const CIClass& card,
                                                      const RecordArray& records, const Translator& tr,
                                                      int32_t recordCount) {
    auto text = [&](int32_t id, std::string_view def = {}) {
        return PlacementViolation{id, tr.text(id, def), EditorBox::None, -1, false};
    };
    const int64_t bytes = wholeNumberOf(q.nrBytesText);
    const CPage* page = card.page(q.page);
    if (q.fieldName.empty() || bytes < 1 || page == nullptr || q.row < 0 || q.beginByte < 0 || q.beginBit < 0)
        return text(kTextIncomplete, "<Please choose a field, its place and its size.>");

    const int64_t start = bitAddress(q.row, q.beginByte, q.beginBit);
    const int64_t last = start + bytes * 8 - 1;
    if (last + 1 > int64_t{page->PageSize} * 8) return text(kTextSegmentFit, "<Your data does not fit into this segment!>");
    if (start < int64_t{page->BeginFreeSpace} * kBitsPerBlock)
        return text(kTextStartInHeader, "Item cannot start in Header or HID section.");
    if (card.ChipSize() == iBigEightPages) {
        const int64_t b = int64_t{page->Boundary} * kBitsPerBlock;
        if (start < b && last >= b) return text(kTextBoundary, "<Your item should not overlap an application boundary!>");
    }
    const int32_t count = recordCount < 0 ? records.size() : std::min(recordCount, records.size());
    for (int32_t i = 0; i < count; ++i) {
        const ItemRecord& r = records[i];
        if (r.isDbUpdate || r.page != q.page || !bitRangesOverlap(start, last, startBitOf(r), lastBitOf(r))) continue;
        PlacementViolation v = text(r.name == q.fieldName ? kTextOverlapSameName : kTextOverlapOther);
        v.message += ": " + r.name + ".";
        v.overlappedIndex = i;
        return v;
    }
    return std::nullopt;
}

bool ValidateMultiTrack(const MultiTrackRequest& request, const CIClass& card, const RecordArray& records,
                        Prompter& prompter, const Translator& translator) {
    const auto v = multiTrackViolation(request, card, records, translator);
    if (v) prompter.tell(Icon::Exclamation, v->message, kProductTitle);
    return !v;
}

}  // namespace kestrin
