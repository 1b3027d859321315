#include "Encodings.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "base/NumberText.h"
#include "items/ItemRecord.h"

namespace kestrin {

namespace {

constexpr EncodeOption kHidden{};

constexpr EncodeOption shown(int32_t textId, std::string_view caption, bool enabled) {
    return {textId, caption, true, enabled};
}

constexpr std::string_view kString121 = "<String (one-to-one)>";
constexpr std::string_view kMotorola = "<Motorola dec.(HiByte-LoByte)>";
constexpr std::string_view kIntel = "<Intel decimal (LoByte-HiByte)>";
constexpr std::string_view kBcd = "<Binary Coded Decimal (BCD)>";

// Number options, and date options (string, decimal, BCD), by index.
constexpr int kNumberBcd = 3;
constexpr int kDateString = 0;
constexpr int kDateDecimal = 1;
constexpr int kDateBcd = 2;

// A date code carries its family in its bits: the family's base plus the format index.
constexpr std::array<int16_t, 3> kDateBase{64, 32, 8};
constexpr std::array<int, 3> kDateFormats{4, 3, 3};
constexpr int16_t kNumberBcdPrefix0 = 3;
constexpr int kNumberBcdFormats = 2;

std::string_view trimmed(std::string_view t) {
    const size_t b = t.find_first_not_of(" \t");
    if (b == std::string_view::npos) return {};
    return t.substr(b, t.find_last_not_of(" \t") - b + 1);
}

bool allDigits(std::string_view t) {
    if (t.empty()) return false;
    for (char c : t)
        if (c < '0' || c > '9') return false;
    return true;
}

std::string withoutLeadingZeros(std::string_view digits) {
    const size_t first = digits.find_first_not_of('0');
    return first == std::string_view::npos ? std::string("0") : std::string(digits.substr(first));
}

std::string incremented(std::string digits) {
    size_t i = digits.size();
    while (i > 0 && digits[i - 1] == '9') digits[--i] = '0';
    if (i == 0)
        digits.insert(digits.begin(), '1');
    else
        ++digits[i - 1];
    return digits;
}

// digits has no leading zeros and is at least 1.
std::string decremented(std::string digits) {
    size_t i = digits.size();
    while (digits[i - 1] == '0') digits[--i] = '9';
    --digits[i - 1];
    return digits.size() > 1 && digits[0] == '0' ? digits.substr(1) : digits;
}

std::string formatNumber(double v) {
    if (v == std::trunc(v) && std::fabs(v) < 9007199254740992.0) return std::to_string(static_cast<int64_t>(v));
    char buf[32];
    const auto end = std::to_chars(buf, buf + sizeof buf, v).ptr;
    return std::string(buf, end);
}

// The largest size the box accepts while typing in a mode, if any.
std::optional<int64_t> sizeCeiling(int32_t mode, std::string_view functionName, bool parityChosen, int32_t pageSize) {
    switch (mode) {
    case 0:
    case 1: return pageSize;
    case 2: return kMaxBitFieldBits;
    case 3:
        if (functionName == kFunctionChecksum) return parityChosen ? 1 : 8;
        return std::nullopt;
    default: return std::nullopt;
    }
}

}  // namespace

EncodingOptions encodingOptions(int16_t fieldType, int32_t mode) {
    if (mode == 2) return {{shown(3168, kMotorola, false), kHidden, kHidden, kHidden}, 0};
    if (mode != 0) return {};
    switch (fieldType) {
    case kFieldTypeCharacter: return {{shown(3167, kString121, false), kHidden, kHidden, kHidden}, 0};
    case kFieldTypeNumber:
        return {{shown(3167, kString121, true), shown(3168, kMotorola, true), shown(3169, kIntel, true),
                 shown(3203, kBcd, true)},
                0};
    case kFieldTypeDate:
        return {{shown(3202, "<String>", true), shown(3108, "<Decimal>", true), shown(3203, kBcd, true), kHidden}, 0};
    case kFieldTypeBinary: return {{shown(3175, "<Encode 'as is>", false), kHidden, kHidden, kHidden}, 0};
    default: return {};
    }
}

std::vector<std::string_view> formatList(int16_t fieldType, int option) {
    if (fieldType == kFieldTypeNumber && option == kNumberBcd) return {"Prefix 0", "Postfix F"};
    if (fieldType != kFieldTypeDate) return {};
    if (option == kDateString) return {"DD/MM/CCYY", "DDMMCCYY", "MMDDCCYY", "CCYYMMDD"};
    if (option == kDateDecimal || option == kDateBcd) return {"DD MM CC YY", "MM DD CC YY", "CC YY MM DD"};
    return {};
}

int16_t EncodingCode(int16_t fieldType, int option, int formatIndex) {
    if (fieldType == kFieldTypeNumber) {
        if (option == kNumberBcd)
            return formatIndex >= 0 && formatIndex < kNumberBcdFormats
                       ? static_cast<int16_t>(kNumberBcdPrefix0 + formatIndex)
                       : int16_t{0};
        return option >= 0 && option < kNumberBcd ? static_cast<int16_t>(option) : int16_t{0};
    }
    if (fieldType == kFieldTypeDate && option >= 0 && option < static_cast<int>(kDateBase.size())) {
        const size_t family = static_cast<size_t>(option);
        const int f = formatIndex >= 0 && formatIndex < kDateFormats[family] ? formatIndex : 0;
        return static_cast<int16_t>(kDateBase[family] + f);
    }
    return 0;
}

EncodingChoice encodingChoiceOf(int16_t fieldType, int16_t code) {
    switch (fieldType) {
    case kFieldTypeCharacter:
    case kFieldTypeBinary: return {0, -1};
    case kFieldTypeNumber:
        if (code >= 0 && code < kNumberBcd) return {code, -1};
        if (code >= kNumberBcdPrefix0 && code < kNumberBcdPrefix0 + kNumberBcdFormats)
            return {kNumberBcd, code - kNumberBcdPrefix0};
        return {0, -1};
    case kFieldTypeDate:
        for (size_t family = 0; family < kDateBase.size(); ++family) {
            const int f = code - kDateBase[family];
            if (f >= 0 && f < kDateFormats[family]) return {static_cast<int>(family), f};
        }
        return {kDateString, 0};
    default: return {-1, -1};
    }
}

std::string limitSizeText(std::string_view text, int32_t mode, std::string_view functionName, bool parityChosen,
                          int32_t pageSize) {
    const auto ceiling = sizeCeiling(mode, functionName, parityChosen, pageSize);
    const auto value = numericValue(text);
    if (ceiling && value && *value > static_cast<double>(*ceiling)) return std::to_string(*ceiling);
    return std::string(text);
}

std::string spinUp(std::string_view text) {
    const std::string_view t = trimmed(text);
    if (allDigits(t)) return incremented(withoutLeadingZeros(t));
    const auto value = numericValue(t);
    if (!value) return "2";
    if (!std::isfinite(*value)) return std::string(text);
    return formatNumber(*value + 1);
}

std::string spinDown(std::string_view text) {
    const std::string_view t = trimmed(text);
    if (allDigits(t)) {
        const std::string digits = withoutLeadingZeros(t);
        return digits == "0" || digits == "1" ? std::string(text) : decremented(digits);
    }
    const auto value = numericValue(t);
    if (!value || !std::isfinite(*value) || !(*value > 1)) return std::string(text);
    return formatNumber(std::max(*value - 1, 1.0));
}

}  // namespace kestrin
