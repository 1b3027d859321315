#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestrin {

class CIClass;
class RecordArray;
class Prompter;
class Translator;

// Editor modes: what the item editor places.
inline constexpr int32_t kModeField = 0;
inline constexpr int32_t kModeFunction = 1;
inline constexpr int32_t kModeBitField = 2;
inline constexpr int32_t kModeBitFunction = 3;

// The box that takes the focus after a failed value check.
enum class EditorBox { None, NrBytes, ConstantValue, Polynom, StartValue };

// Everything the item editor holds for the item being placed, as the operator entered it.
struct PlacementRequest {
    int32_t mode = kModeField;
    std::string selectedText;  // the chosen field(s) or function, as txtSelectedField shows it
    std::string itemName;
    int16_t page = -1;
    int16_t row = -1;  // block
    int16_t beginByte = -1;
    int16_t beginBit = 0;      // bit items only
    std::string nrBytesText;   // bytes in the byte modes, bits in the bit modes
    int propertyOption = -1;   // CardSnNr 0-3; Checksum 1 ADD, 2 CRC, 3 parity
    bool valueFromField = false;  // Constant or Count take their value from a host field
    std::string fieldChosen;
    std::string constantText;
    std::string polynomText;
    std::string startValueText;
    int16_t rangeRow = 0;
    int16_t rangeBeginByte = 0;
    std::string rangeCountText;
};

// One broken rule: the message the operator sees and where the focus goes.
struct PlacementViolation {
    int32_t textId = 0;
    std::string message;
    EditorBox focus = EditorBox::None;
    int32_t overlappedIndex = -1;  // the overlapped record, for an overlap
    bool asksToReplace = false;    // an overlap question (OK replaces the old item)
};

// Result codes of a placement.
inline constexpr int32_t kPlacementRejected = 0;
inline constexpr int32_t kPlacementAccepted = 1;
inline constexpr int32_t kPlacementReplaced = 2;

struct PlacementResult {
    int32_t code = kPlacementRejected;
    EditorBox focus = EditorBox::None;
    int32_t removedIndex = -1;  // result 2: the slot the overlapped record was removed from
};

// Runs the placement rules in order against the card and the first recordCount records
// (all when negative), leaving out the record at index skip (an item being edited does not
// stand in its own way): completeness, page fit, header and HID, application boundary,
// function rules, checksum range, overlap. With stopAtFirst only the first broken rule
// is returned; otherwise the first failure of every rule (an audit).
std::vector<PlacementViolation> placementViolations(const PlacementRequest& request, const CIClass& card,
                                                    const RecordArray& records, const Translator& translator,
                                                    bool stopAtFirst = true, int32_t recordCount = -1,
                                                    int32_t skip = -1);

// Decides whether the item may stand where the operator put it. Shows the first failure
// through the prompter; an overlap is asked with OK/Cancel (or replaced silently when the
// same item is placed again), and OK removes the overlapped record (result 2): the last
// record takes its slot. The record at index skip does not count.
PlacementResult ValidatePlacement(const PlacementRequest& request, const CIClass& card, RecordArray& records,
                                  Prompter& prompter, const Translator& translator, const std::string& title = {},
                                  int32_t skip = -1);

// The translated text of a placement rule's number, with the rule's English default where it has one.
std::string placementRuleText(int32_t textId, const Translator& translator);

// Text numbers of the placement rules.
inline constexpr int32_t kTextIncomplete = 3158;
inline constexpr int32_t kTextCardSnNrDecimal = 3160;
inline constexpr int32_t kTextCardSnNrHex = 3161;
inline constexpr int32_t kTextChecksumOneByte = 3162;
inline constexpr int32_t kTextChecksumCoversItself = 3163;
inline constexpr int32_t kTextRangeHoldsChecksum = 3164;
inline constexpr int32_t kTextOverlapSameName = 3165;
inline constexpr int32_t kTextOverlapOther = 3166;
inline constexpr int32_t kTextInsideOtherRange = 3194;
inline constexpr int32_t kTextCardSnNrMotorola = 3283;
inline constexpr int32_t kTextCardSnNrIntel = 3284;
inline constexpr int32_t kTextPageFit = 4600;
inline constexpr int32_t kTextHeaderOrHid = 4601;
inline constexpr int32_t kTextBoundary = 4602;

}  // namespace kestrin
