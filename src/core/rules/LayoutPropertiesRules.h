#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "card/IClassType.h"

namespace kestrin {

class CIClass;
class RecordArray;
class Prompter;
class Translator;
struct NumberCheck;

inline constexpr int32_t kTextBoundaryCuts = 4610;
inline constexpr int32_t kTextBoundaryCutsHint = 4611;
inline constexpr int32_t kTextHidCovers = 4643;
inline constexpr int32_t kTextHidCoversHint = 4644;

// Colours of a boundary box whose boundary cuts an item: the system's information
// background behind red text; a changed text goes back to white behind black.
inline constexpr int32_t kCutBoxTextColor = 255;
inline constexpr int32_t kNormalBoxBackColor = 0xFFFFFF;
inline constexpr int32_t kNormalBoxTextColor = 0;

// The eight boundary boxes of the properties dialog, pages 0 to 7.
using BoundaryTexts = std::array<std::string, 8>;

struct LayoutPropertiesCheck {
    std::array<bool, 8> cutBoxes{};      // boxes to colour: their boundary cuts an item
    bool boundaryFailed = false;
    bool hidFailed = false;
    std::vector<int32_t> cutItems;       // record indexes
    std::vector<int32_t> hidItems;
    std::vector<std::string> messages;   // in the order they are shown
};

// The OK checks: box n - 1 against the items of page n (n = 1 to 7, so page 0's items and
// box 7 are never compared), then, with the HID box checked, page 0's items below block 19.
LayoutPropertiesCheck checkLayoutProperties(const BoundaryTexts& boundaries, bool hidChecked,
                                            const RecordArray& records, const Translator& translator);
// Shows the messages of the check in turn; true when OK may close the dialog.
bool acceptLayoutProperties(const LayoutPropertiesCheck& check, Prompter& prompter);

// A boundary box on leaving: trimmed, a number from 5 to 31.
NumberCheck checkBoundaryBox(const std::string& text, const Translator& translator);
std::string trimBlanks(const std::string& text);

// The chip type the chip-type options and the memory-type list stand for.
IClassType chipTypeOf(bool smallChip, int memoryTypeIndex);
// The boundary tab is open exactly for the paged 16 kbit chip.
bool boundaryTabEnabled(bool bigChipSelected, int memoryTypeIndex);
// The boxes' texts from a card: "18" everywhere, the card's boundaries on an eight-page card.
BoundaryTexts boundaryTextsOf(const CIClass& card);
// Writes the dialog's choices into the card: chip type, switches, then the boundaries
// joined by "|" for an eight-page card (an empty text otherwise). False when a box held no
// number, in which case the pages keep the boundaries they were built with.
bool writeLayoutProperties(CIClass& card, bool smallChip, int memoryTypeIndex, bool bitwise, bool hid,
                           const BoundaryTexts& boundaries);

}  // namespace kestrin
