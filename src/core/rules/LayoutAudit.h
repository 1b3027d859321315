#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrin {

class CIClass;
class RecordArray;
class Translator;
struct ItemRecord;
struct PlacementRequest;

// One rule that a stored item breaks, or an entry of the file that could not be read (no
// record; its place only as far as it was read).
struct AuditViolation {
    int32_t recordIndex = -1;
    std::string name;
    std::string kind;
    std::optional<int16_t> page;
    std::optional<int16_t> block;
    std::optional<int16_t> beginByte;
    int32_t textId = 0;
    std::string text;
};

// The editor's request for a stored item, as if the operator had entered it again.
PlacementRequest placementRequestOf(const ItemRecord& record);

// Replays every item in table order through the placement rules against the items before
// it (multi-track items through their own rules), then runs the layout-properties checks
// on the card's boundaries and HID switch. Changes nothing.
std::vector<AuditViolation> auditLayout(const CIClass& card, const RecordArray& records, const Translator& translator);

}  // namespace kestrin
