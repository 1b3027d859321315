#include "MultiTrackValidation.h"

#include <algorithm>

#include "items/RecordArray.h"
#include "base/ProductInfo.h"
#include "card/CIClass.h"
#include "items/ItemSpan.h"
#include "base/NumberText.h"
#include "base/Prompter.h"
#include "text/Translator.h"

namespace kestrin {

std::optional<PlacementViolation> multiTrackViolation(const MultiTrackRequest& q, const CIClass& card,
                                                      const RecordArray& records, const Translator& tr,
                                                      int32_t recordCount, int32_t skip) {
    auto text = [&](int32_t id, std::string_view def = {}) {
        return PlacementViolation{id, tr.text(id, def), EditorBox::None, -1, false};
    };
    const int64_t bytes = wholeNumberOf(q.nrBytesText);
    const CPage* page = card.page(q.page);
    if (q.fieldName.empty() || bytes < 1 || page == nullptr || q.row < 0 || q.beginByte < 0 || q.beginBit < 0)
        return text(kTextIncomplete, "<Please choose a field, its place and its size.>");

    const BitSpan item = BitSpan::ofBytes(PageAddress::at(q.row, q.beginByte, q.beginBit), bytes);
    if (item.end() > PageAddress::ofByte(page->PageSize)) return text(kTextSegmentFit, "<Your data does not fit into this segment!>");
    if (item.first < PageAddress::ofBlock(page->BeginFreeSpace))
        return text(kTextStartInHeader, "Item cannot start in Header or HID section.");
    if (card.ChipSize() == iBigEightPages) {
        if (item.crosses(PageAddress::ofBlock(page->Boundary))) return text(kTextBoundary, "<Your item should not overlap an application boundary!>");
    }
    const int32_t count = recordCount < 0 ? records.size() : std::min(recordCount, records.size());
    for (int32_t i = 0; i < count; ++i) {
        const ItemRecord& r = records[i];
        if (i == skip || r.isDbUpdate || r.page != q.page || !item.overlaps(itemSpan(r))) continue;
        PlacementViolation v = text(r.name == q.fieldName ? kTextOverlapSameName : kTextOverlapOther);
        v.message += ": " + r.name + ".";
        v.overlappedIndex = i;
        return v;
    }
    return std::nullopt;
}

bool ValidateMultiTrack(const MultiTrackRequest& request, const CIClass& card, const RecordArray& records,
                        Prompter& prompter, const Translator& translator, int32_t skip) {
    const auto v = multiTrackViolation(request, card, records, translator, -1, skip);
    if (v) prompter.tell(Icon::Exclamation, v->message, kProductTitle);
    return !v;
}

}  // namespace kestrin
