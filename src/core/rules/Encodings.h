#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

// Field type codes, as fieldTypeCode() gives them for the host's type texts.
inline constexpr int16_t kFieldTypeCharacter = 0;
inline constexpr int16_t kFieldTypeNumber = 1;
inline constexpr int16_t kFieldTypeDate = 2;
inline constexpr int16_t kFieldTypeBinary = 3;

// Largest bit field the size box lets through while typing.
inline constexpr int32_t kMaxBitFieldBits = 384;

// One "Encode As" option button: its language text and default caption, and its state.
struct EncodeOption {
    int32_t textId = 0;
    std::string_view defaultCaption;
    bool visible = false;
    bool enabled = false;
};

// The four option buttons and the one selected (-1: none shown).
struct EncodingOptions {
    std::array<EncodeOption, 4> options{};
    int selected = -1;
};

// The encoding choices offered for a field type in an editor mode. Field mode (0) offers
// the options of the field's type; bit-field mode (2) offers only the fixed high-byte-first
// binary number; the function modes (1, 3), unknown modes and unknown field types offer none.
EncodingOptions encodingOptions(int16_t fieldType, int32_t mode);

// The format entries for a field type and option; empty when the format list and its label
// are hidden. The first entry is the one selected when the list is filled.
std::vector<std::string_view> formatList(int16_t fieldType, int option);

// The encoding code stored with a field item. formatIndex -1 means no format chosen: a BCD
// number then gives 0. A date with no or an unknown format gets its family's first format,
// so that its code always names a real date layout. Unknown types and options give 0.
int16_t EncodingCode(int16_t fieldType, int option, int formatIndex);

// The option and format to select when an existing item is edited (formatIndex -1: the
// choice has no format list).
struct EncodingChoice {
    int option = 0;
    int formatIndex = -1;
    bool operator==(const EncodingChoice&) const = default;
};
// Unknown codes fall back to option 0 with its own default: format -1 for a number, the
// first format (0) for a date, whose option 0 fills its list. An unknown field type gives
// {-1, -1}, as no option is shown for it.
EncodingChoice encodingChoiceOf(int16_t fieldType, int16_t code);

// The text the size box must show after the operator typed `text`: byte items (modes 0, 1)
// are cut to the page size, a bit checksum (mode 3, "Checksum") to 1 bit with parity or to
// 8 bits otherwise, a bit field (mode 2) to 384 bits. Other bit functions are not limited
// here; their fit is checked when the item is applied. Empty text, text that is not a
// number and values within the limit are returned as typed. Values are compared as numbers
// of any length, so a 40-digit entry counts as too large.
std::string limitSizeText(std::string_view text, int32_t mode, std::string_view functionName, bool parityChosen,
                          int32_t pageSize);

// The spin buttons beside the size and range count boxes. Up: empty or non-numeric text is
// first taken as 1, then raised by 1. Down: a value greater than 1 is lowered by 1 and never
// below 1; anything else is left as it is. Upper limits are left to limitSizeText.
// Digit strings of any length are counted exactly.
std::string spinUp(std::string_view text);
std::string spinDown(std::string_view text);

}  // namespace kestrin
