#include "DroppedEntry.h"

#include "LayoutSyntax.h"
#include "card/CIClass.h"
#include "card/PageAddress.h"
#include "items/ItemRecord.h"
#include "rules/LayoutAudit.h"
#include "rules/PlacementValidation.h"

namespace kestrin {

DroppedEntry droppedItem(std::string_view section, std::string key, const ItemRecord& r) {
    DroppedEntry e{std::string(section), std::move(key), r.name, std::string(kindWord(r)), {}, {}, {}, 0, {}};
    if (r.isDbUpdate)
        e.kind = kKindDatabaseUpdate;
    else
        e.page = r.page, e.block = r.block, e.beginByte = r.beginByte;
    return e;
}

void placeAsFarAsRead(DroppedEntry& e, std::string_view numbers) {
    const auto read = parseNumberList(numbers);
    if (!read) return;
    std::optional<int16_t>* place[] = {&e.page, &e.block, &e.beginByte};
    for (size_t i = 0; i < 3 && i < read->size() && fitsInt16((*read)[i]); ++i)
        *place[i] = static_cast<int16_t>((*read)[i]);
}

std::optional<UnfitPlace> unfitPlace(const CIClass& card, const ItemRecord& r, bool bitPlace) {
    const CPage* page = card.page(r.page);
    if (page == nullptr) return UnfitPlace{kTextIncomplete, "page " + std::to_string(r.page) + " is not on this card"};
    if (r.block < 0 || r.block >= page->blockCount() || r.beginByte < 0 || r.beginByte > 7) {
        const int64_t first = PageAddress::at(r.block, r.beginByte).byte();
        const int32_t id = first < 0 ? kTextHeaderOrHid : first >= page->PageSize ? kTextPageFit : 0;
        return UnfitPlace{id, "block " + std::to_string(r.block) + ", byte " + std::to_string(r.beginByte) +
                                  " is outside the page"};
    }
    if (bitPlace) {
        const int64_t end =
            BitSpan::ofBits(PageAddress::at(r.block, r.beginByte, r.beginBit), r.numBits).end().bytesReached();
        if (r.beginBit >= 0 && r.beginBit <= 7 && r.numBits >= 1 && end <= page->PageSize) return std::nullopt;
        const int32_t id = r.numBits < 1 ? kTextIncomplete : end > page->PageSize ? kTextPageFit : 0;
        return UnfitPlace{id, "bits " + std::to_string(r.beginBit) + "+" + std::to_string(r.numBits) +
                                  " do not fit the page"};
    }
    if (r.numBytes >= 1 && PageAddress::at(r.block, r.beginByte).plusBytes(r.numBytes).byte() <= page->PageSize)
        return std::nullopt;
    return UnfitPlace{r.numBytes < 1 ? kTextIncomplete : kTextPageFit,
                      std::to_string(r.numBytes) + " bytes do not fit the page"};
}

AuditViolation violationOf(const DroppedEntry& e, const Translator& translator) {
    AuditViolation v;
    v.name = e.name.empty() && !e.section.empty() ? "[" + e.section + "] " + e.key : e.name;
    v.kind = e.kind;
    v.page = e.page, v.block = e.block, v.beginByte = e.beginByte;
    v.textId = e.textId;
    v.text = e.textId != 0 ? placementRuleText(e.textId, translator) : e.reason;
    return v;
}

}  // namespace kestrin
