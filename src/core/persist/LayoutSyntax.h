#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "items/ItemRecord.h"

namespace kestrin {

// Section names of the layout file, in the order a save first writes them.
namespace layout_sections {
inline constexpr std::string_view General = "GENERAL";
inline constexpr std::string_view CardDesign = "CARDDESIGN";
inline constexpr std::string_view InitCard = "INITCARD";
inline constexpr std::string_view BitInitCard = "BITINITCARD";
inline constexpr std::string_view Checksum = "CHECKSUM";
inline constexpr std::string_view Encode = "ENCODE";
inline constexpr std::string_view ItemColor = "ITEMCOLOR";
inline constexpr std::string_view FieldType = "FIELDTYPE";
inline constexpr std::string_view BitEncode = "BITENCODE";
inline constexpr std::string_view BitItemColor = "BITITEMCOLOR";
inline constexpr std::string_view CombinedFields = "COMBINEDFIELDS";
inline constexpr std::string_view BigItem = "BIGITEM";
inline constexpr std::string_view DatabaseUpdate = "DATABASEUPDATE";
inline constexpr std::string_view FieldsMultiTrack = "FieldsMultiTrack";
inline constexpr std::string_view Settings = "SETTINGS";
}  // namespace layout_sections

// "Count(1.1.0)", "Constant(7)", "CardSnNr(0)"; a checksum's value names its CHECKSUM keys.
std::string functionValue(const ItemRecord& r, int checksumNumber = 0);

struct ParsedFunction {
    std::string word;
    std::string param1, param2, param3;
};
// Splits "Word(params)". Constant and CardSnNr keep the whole parameter text; Count splits
// at the first and last "."; Checksum at the first ".". Nothing when there are no brackets.
std::optional<ParsedFunction> parseFunctionValue(std::string_view value);

std::string joinNumbers(std::initializer_list<int64_t> numbers);
// Comma-separated integers; nothing when a part is not a plain decimal integer.
std::optional<std::vector<int32_t>> parseNumberList(std::string_view text);
bool fitsInt16(int64_t v);
// At least n comma-separated 16-bit numbers, or nothing.
std::optional<std::vector<int16_t>> parseShortList(std::string_view text, size_t n);

// "Name(3)" -> "Name" and 3; a key without a trailing "(n)" is all name and number 0.
std::pair<std::string, int32_t> splitFieldKey(std::string_view key);
// "12Value" -> 12 when the key is digits followed by suffix (any letter case); else nothing.
std::optional<int32_t> numberedKey(std::string_view key, std::string_view suffix);

// Whether text reads as a number the way an automation IsNumeric test reads it.
bool looksNumeric(std::string_view text);

}  // namespace kestrin
