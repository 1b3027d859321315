#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "rules/PlacementValidation.h"
#include "items/ItemRecord.h"

namespace kestrin {

// The four functions, in the order of their option buttons.
enum class FunctionKind { Constant = 0, Count = 1, CardSnNr = 2, Checksum = 3 };

// The function word, which is also the item's name.
std::string_view functionWord(FunctionKind kind);
// The function named by a word, compared literally.
std::optional<FunctionKind> functionKindOf(std::string_view word);

// Property option indexes. A checksum's options are its methods: kChecksumAdd (1),
// kChecksumCrc (2), kChecksumParity (3); its option 0 is not offered.
inline constexpr int kConstantValue = 0;
inline constexpr int kConstantField = 1;
inline constexpr int kCountWriteBeforeIncrement = 0;
inline constexpr int kCountIncrementBeforeWrite = 1;
inline constexpr int kCardSnNrDecimal = 0;
inline constexpr int kCardSnNrHexadecimal = 1;
inline constexpr int kCardSnNrMotorola = 2;
inline constexpr int kCardSnNrIntel = 3;

// One property option button. textId 0 means the language library has no text for the
// caption: the default caption is shown as it is.
struct PropertyOption {
    int32_t textId = 0;
    std::string_view defaultCaption;
    bool visible = false;
};

// The captions and visibility of the four property options of a function.
std::array<PropertyOption, 4> propertyOptions(FunctionKind kind);

// Which property boxes are shown, and whether the size box and its spin button are enabled.
struct PropertyBoxes {
    bool constantValue = false;
    bool fieldList = false;
    bool countFirstValue = false;  // the "Start value" frame with its Number/Field switch
    bool countNumber = false;
    bool countStep = false;
    bool polynom = false;
    bool startValue = false;
    bool range = false;
    bool sizeEnabled = true;
    bool operator==(const PropertyBoxes&) const = default;
};

// The boxes for a function and its chosen option. An option the function does not offer
// (such as none chosen yet) shows what choosing the function shows: for a checksum both
// the polynomial and the start value box. The size box is disabled exactly where
// fixedSize() gives a size, which the dialog then puts into it; this is our choice, as
// the operator could not enter anything else there that would be accepted. The mode
// decides the fixed sizes; it is the function mode (1) unless told.
PropertyBoxes propertyBoxes(FunctionKind kind, int option, bool countFirstValueFromField, int32_t mode = 1);

// The only size a function item may have with this option in this mode, if there is one:
// a CardSnNr's representation size and a byte checksum's 1 byte in function mode (1); 8 bits
// for an ADD and 1 bit for a parity checksum in bit-function mode (3).
std::optional<int64_t> fixedSize(FunctionKind kind, int option, int32_t mode);

// The bytes a CardSnNr needs in each representation (option 0 to 3), checked at apply time.
std::optional<int64_t> requiredCardSnNrBytes(int option);

enum class ValueBox { ConstantValue, CountNumber, CountStep, Polynom, StartValue };

struct Limits {
    int64_t min = 0;
    int64_t max = 0;
    bool operator==(const Limits&) const = default;
};

// The limits checked when a value box is left. Bit-function mode (3) widens the constant to
// 32 bits and sizes the polynomial and CRC start value by the item's bits n; every other mode
// uses the byte limits. n is clamped to 1..62 so that 2^(n+1) - 1 always fits; the exact
// n (1 to 8) is enforced at apply time. An ADD start value is one byte in every mode.
Limits boxLimits(ValueBox box, int32_t mode, FunctionKind kind, int option, int64_t numBits);

// The size box's limits when it is left: 1 up to the room left in the page from the chosen
// position, in bytes for modes 0 and 1 and in bits for modes 2 and 3. The begin bit is added
// to the bit room, a deliberately generous bound; the exact fit is checked at apply time.
// With no room left, max is below min and every size fails.
Limits sizeBoxLimits(int32_t mode, int32_t pageSize, int16_t block, int16_t beginByte, int16_t beginBit);

// The key filter of every number box: digits and backspace pass, every other key is dropped.
bool acceptsNumberKey(char32_t key);
// What remains of typed or pasted text under that filter.
std::string filterNumberText(std::string_view typed);

// The properties of a function item as the dialog holds them.
struct FunctionInput {
    FunctionKind kind = FunctionKind::Constant;
    int option = 0;
    // The value comes from a database field: for a Constant this follows its "Field" option,
    // for a Count it is the first-value switch.
    bool valueFromField = false;
    std::string fieldName{};
    std::string constantText{}, countNumberText{}, countStepText{}, polynomText{}, startValueText{};
    int16_t rangePage = 0, rangeRow = 0, rangeBeginByte = 0, rangeBeginBit = 0;
    std::string rangeCountText{};
    bool operator==(const FunctionInput&) const = default;
};

// Writes the function word as the item's name and the function's values into the record,
// clearing the parameters and checksum settings of any function it held before; position,
// size and kind flags are left to the caller. Texts are stored as typed. Numbers stored as
// 16-bit integers (CRC polynomial and start value, ADD and parity start value, range count)
// are rounded to the nearest integer and saturate at -32768 and 32767 rather than wrap;
// empty or non-numeric text gives 0. The caller validates the values before this. Mode 3
// stores the bit range {page, row, begin byte, begin bit, bit count}, any other mode the byte
// range {page, row, begin byte, byte count}.
void applyFunctionValues(const FunctionInput& input, int32_t mode, ItemRecord& record);

// The dialog's properties for a stored function item. A Constant or Count first value that is
// not a number came from a field; an empty one is an empty number box. A record flagged
// isFunction holds the byte range, any other the bit range. A representation or method that
// is not valid gives option 0 (for a checksum: no method chosen); a name that is no function
// word reads as a Constant.
FunctionInput functionInputOf(const ItemRecord& record);

// Copies a function's entries into a placement request: the chosen option, where the value
// comes from (a Constant's "<Field>" option or a counter's field switch), and the values.
void fillFunctionRequest(PlacementRequest& request, const FunctionInput& input);

}  // namespace kestrin
