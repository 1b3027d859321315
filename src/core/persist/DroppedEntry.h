#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

class CIClass;
class Translator;
struct AuditViolation;
struct ItemRecord;

// An entry of a layout file that the reader could not keep, as its warning tells it. textId is
// the placement rule the entry breaks, 0 when it breaks none (text that is not numbers, an update
// that cannot be stored, an item beyond the limit). The last entry of a long list has no section
// and counts the entries beyond the list's limit.
struct DroppedEntry {
    std::string section;
    std::string key;
    std::string name;  // the item's name, when it was read
    std::string kind;  // its kind word
    std::optional<int16_t> page, block, beginByte;  // its place, as far as it was read
    int32_t textId = 0;
    std::string reason;
};

// What a dropped database update is called; the item kinds do not name it.
inline constexpr std::string_view kKindDatabaseUpdate = "Database Update";

// A dropped entry of an item as far as it was read: its name, kind word and place.
DroppedEntry droppedItem(std::string_view section, std::string key, const ItemRecord& r);
// Fills the place of a dropped entry from the page, block and begin byte that lead a list of
// numbers that did not read whole.
void placeAsFarAsRead(DroppedEntry& entry, std::string_view numbers);

// Why an item cannot stand where the file put it: a page the card lacks or no size leaves it
// incomplete (3158), a place before the page's start lies in the header (4601), an end past the
// page's end does not fit (4600); a begin byte or bit outside its block or byte breaks no rule.
struct UnfitPlace {
    int32_t textId = 0;
    std::string reason;
};
std::optional<UnfitPlace> unfitPlace(const CIClass& card, const ItemRecord& r, bool bitPlace);

// A dropped entry as a check reports it: with the rule's translated text, or the reason when it
// breaks no rule. An entry without a name is named by its section and key.
AuditViolation violationOf(const DroppedEntry& entry, const Translator& translator);

}  // namespace kestrin
