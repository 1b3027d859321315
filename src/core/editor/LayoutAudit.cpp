#include "LayoutAudit.h"

#include "NumberText.h"
#include "PlacementValidation.h"
#include "card/CIClass.h"
#include "card/LayoutPropertiesRules.h"
#include "items/MultiTrackValidation.h"
#include "items/RecordArray.h"

namespace kestrin {

namespace {

int optionOf(const std::string& param) {
    const auto v = numericValue(param);
    return v && *v >= 0 && *v <= 3 ? static_cast<int>(*v) : -1;
}

AuditViolation violationOf(int32_t index, const ItemRecord& r, int32_t textId, std::string text) {
    return {index, r.name, std::string(kindWord(r)), r.page, r.block, r.beginByte, textId, std::move(text)};
}

}  // namespace

PlacementRequest placementRequestOf(const ItemRecord& r) {
    PlacementRequest q;
    q.mode = kindCode(kindWord(r));
    q.selectedText = r.name;
    q.itemName = r.name;
    q.page = r.page;
    q.row = r.block;
    q.beginByte = r.beginByte;
    q.beginBit = r.beginBit;
    const bool bitMode = q.mode == kModeBitField || q.mode == kModeBitFunction;
    q.nrBytesText = std::to_string(bitMode ? r.numBits : r.numBytes);
    if (r.name == kFunctionConstant) {
        q.valueFromField = !numericValue(r.param1);
        q.fieldChosen = q.valueFromField ? r.param1 : std::string();
        q.constantText = r.param1;
    } else if (r.name == kFunctionCount) {
        q.valueFromField = !numericValue(r.param2);
        q.fieldChosen = q.valueFromField ? r.param2 : std::string();
    } else if (r.name == kFunctionCardSnNr || r.name == kFunctionChecksum) {
        q.propertyOption = optionOf(r.param1);
    }
    if (r.name == kFunctionChecksum) {
        const bool crc = q.propertyOption == kChecksumCrc;
        q.polynomText = std::to_string(r.polynomial[0]);
        q.startValueText = std::to_string(crc ? r.polynomial[1] : r.initValue);
        q.rangeRow = r.range[1];
        q.rangeBeginByte = r.range[2];
        // A bit checksum keeps its range in bits; the editor enters whole bytes.
        const int32_t bytes = isByteSized(r) ? r.range[3] : (r.range[4] + 7) / 8;
        q.rangeCountText = std::to_string(bytes);
    }
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
