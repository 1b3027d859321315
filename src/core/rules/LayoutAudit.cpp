#include "LayoutAudit.h"

#include "FunctionProperties.h"
#include "PlacementValidation.h"
#include "card/CIClass.h"
#include "rules/LayoutPropertiesRules.h"
#include "rules/MultiTrackValidation.h"
#include "items/RecordArray.h"

namespace kestrin {

namespace {

AuditViolation violationOf(int32_t index, const ItemRecord& r, int32_t textId, std::string text) {
    return {index, r.name, std::string(kindWord(r)), r.page, r.block, r.beginByte, textId, std::move(text)};
}

}  // namespace

PlacementRequest placementRequestOf(const ItemRecord& r) {
    PlacementRequest q;
    // A simple bit function (a bit checksum of mode 0 in the file) lies on the card by its
    // bits and has no byte count, so it is judged by the bit-function rules.
    q.mode = r.isSimpleBitFunction ? kModeBitFunction : kindCode(kindWord(r));
    q.selectedText = r.name;
    q.itemName = r.name;
    q.page = r.page;
    q.row = r.block;
    q.beginByte = r.beginByte;
    q.beginBit = r.beginBit;
    const bool bitMode = q.mode == kModeBitField || q.mode == kModeBitFunction;
    q.nrBytesText = std::to_string(bitMode ? r.numBits : r.numBytes);
    const auto kind = functionKindOf(r.name);
    if (!kind || (q.mode != kModeFunction && q.mode != kModeBitFunction)) return q;
    fillFunctionRequest(q, functionInputOf(r));
    return q;
}

std::vector<AuditViolation> auditLayout(const CIClass& card, const RecordArray& records, const Translator& translator) {
    std::vector<AuditViolation> out;
    for (int32_t i = 0; i < records.size(); ++i) {
        const ItemRecord& r = records[i];
        if (r.isDbUpdate) continue;
        if (r.isBinary) {
            const MultiTrackRequest q{r.name, r.page, r.block, r.beginByte, r.beginBit, std::to_string(r.numBytes)};
            if (auto v = multiTrackViolation(q, card, records, translator, i))
                out.push_back(violationOf(i, r, v->textId, v->message));
            continue;
        }
        for (const auto& v : placementViolations(placementRequestOf(r), card, records, translator, false, i))
            out.push_back(violationOf(i, r, v.textId, v.message));
    }
    const auto props = checkLayoutProperties(boundaryTextsOf(card), card.UseHIDSection(), records, translator);
    for (int32_t i : props.cutItems)
        out.push_back(violationOf(i, records[i], kTextBoundaryCuts, props.messages.front()));
    for (int32_t i : props.hidItems)
        out.push_back(violationOf(i, records[i], kTextHidCovers, props.messages.back()));
    return out;
}

}  // namespace kestrin
