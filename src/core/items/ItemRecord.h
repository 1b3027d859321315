#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

// Kind words, stored and compared literally in English.
inline constexpr std::string_view kKindField = "Field";
inline constexpr std::string_view kKindFunction = "Function";
inline constexpr std::string_view kKindBinaryField = "Binary Field";
inline constexpr std::string_view kKindBitField = "Bit Field";
inline constexpr std::string_view kKindBitFunction = "Bit Function";
inline constexpr std::string_view kKindSimpleBitFunction = "Bit Function (Simple)";

// Function words, which are also the names of function items.
inline constexpr std::string_view kFunctionConstant = "Constant";
inline constexpr std::string_view kFunctionCount = "Count";
inline constexpr std::string_view kFunctionCardSnNr = "CardSnNr";
inline constexpr std::string_view kFunctionChecksum = "Checksum";

// Several database fields combined into one item have their names joined by this.
inline constexpr std::string_view kCombinedFieldSeparator = " [+] ";

// Checksum methods, stored as parameter 1 of a checksum.
inline constexpr int kChecksumAdd = 1;
inline constexpr int kChecksumCrc = 2;
inline constexpr int kChecksumParity = 3;

// One layout item: a database field or a function placed on the card, or a database-update
// item (isDbUpdate) whose field the host writes back after encoding.
struct ItemRecord {
    bool isFunction = false;
    bool isDbUpdate = false;
    bool isBit = false;
    bool isSimpleBitFunction = false;
    bool isBitFunction = false;
    bool isBinary = false;  // a "Binary Field" spread over several tracks; a big item in the files

    std::string name;  // field name(s), function word, or the update function of a database-update item
    int16_t page = 0;
    int16_t block = 0;
    int16_t beginByte = 0;
    int16_t beginBit = 0;
    int16_t numBytes = 0;
    int16_t numBits = 0;

    int16_t encodingCode = 0;
    int32_t fieldType = 0;
    int32_t color = 0;  // 0x00BBGGRR
    int16_t bigItemNumber = 0;

    // Function parameters as text: Constant (value), Count (step, first value, order),
    // CardSnNr (representation), Checksum (method); database updates use 1 and 2.
    std::string param1;
    std::string param2;
    std::string param3;

    // Checksum settings: the polynomial pair, the init value, and the range
    // (page, block, begin byte, byte count) or, for bit checksums,
    // (page, block, begin byte, begin bit, bit count).
    std::array<int16_t, 2> polynomial{};
    int16_t initValue = 0;
    std::array<int16_t, 5> range{};

    // Database-update items: the host database field, and its column when known.
    std::string dbFieldName;
    int16_t dbColumn = -1;

    bool operator==(const ItemRecord&) const = default;
};

// The kind word that follows from a record's flags.
std::string_view kindWord(const ItemRecord& r);
// Whether a kind word shows bytes (column "No. of Bytes") and bits (begin bit, bit count).
bool kindShowsBytes(std::string_view kind);
bool kindShowsBits(std::string_view kind);
// Kind code handed to the item editor: 0 field, 1 function, 2 bit field, 3 bit function;
// -1 for a "Binary Field" (the editor's kind is left as it was) or an unknown word.
int kindCode(std::string_view kind);
// A plain field or function counts its length in bytes; every bit kind in bits.
bool isByteSized(const ItemRecord& r);
bool isChecksum(const ItemRecord& r);
bool isCombinedField(const ItemRecord& r);
// The field names a combined name joins with " [+] " (one part for a plain name).
std::vector<std::string> splitCombinedName(std::string_view name);

}  // namespace kestrin
