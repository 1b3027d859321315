#include "FunctionProperties.h"

#include <algorithm>
#include <cmath>

#include "base/NumberText.h"
#include "card/PageAddress.h"

namespace kestrin {

namespace {

constexpr std::array<std::string_view, 4> kWords{kFunctionConstant, kFunctionCount, kFunctionCardSnNr,
                                                 kFunctionChecksum};

constexpr PropertyOption kHidden{};

constexpr PropertyOption caption(std::string_view text, int32_t textId = 0) {
    return {textId, text, true};
}

constexpr int64_t kMaxBitConstant = 4294967295;
constexpr int64_t kByteMax = 255;

bool isChecksumMethod(int option) {
    return option == kChecksumAdd || option == kChecksumCrc || option == kChecksumParity;
}

// A number stored in a 16-bit slot of the record: rounded, and held at the ends of the range
// instead of wrapping into a different value.
int16_t stored16(std::string_view text) {
    const auto value = numericValue(text);
    if (!value || std::isnan(*value)) return 0;
    return static_cast<int16_t>(std::clamp(std::round(*value), -32768.0, 32767.0));
}

// A stored option index, when it is a whole number from lo to hi.
std::optional<int> optionIn(std::string_view text, int lo, int hi) {
    const auto value = numericValue(text);
    if (!value || *value != std::trunc(*value) || *value < lo || *value > hi) return std::nullopt;
    return static_cast<int>(*value);
}

// A stored first value that is not a number names the database field it comes from.
bool namesField(std::string_view text) {
    return text.find_first_not_of(" \t") != std::string_view::npos && !numericValue(text);
}

}  // namespace

std::string_view functionWord(FunctionKind kind) {
    return kWords[static_cast<size_t>(kind)];
}

std::optional<FunctionKind> functionKindOf(std::string_view word) {
    for (size_t i = 0; i < kWords.size(); ++i)
        if (kWords[i] == word) return static_cast<FunctionKind>(i);
    return std::nullopt;
}

std::array<PropertyOption, 4> propertyOptions(FunctionKind kind) {
    switch (kind) {
    case FunctionKind::Constant: return {caption("<Value>", 3106), caption("<Field>", 3111), kHidden, kHidden};
    case FunctionKind::Count:
        return {caption("<Write before increment>"), caption("<Increment before Write>"), kHidden, kHidden};
    case FunctionKind::CardSnNr:
        return {caption("<String decimal>"), caption("<String hexadecimal>"),
                caption("<Motorola dec.(HiByte-LoByte)>", 3168), caption("<Intel dec.(LoByte-HiByte)>")};
    case FunctionKind::Checksum:
        return {kHidden, caption("<ADD>"), caption("<Polynomial CRC>"), caption("<Parity (0: Even, 1: Odd)>")};
    }
    return {};
}

PropertyBoxes propertyBoxes(FunctionKind kind, int option, bool countFirstValueFromField, int32_t mode) {
    PropertyBoxes b;
    switch (kind) {
    case FunctionKind::Constant:
        b.fieldList = option == kConstantField;
        b.constantValue = !b.fieldList;
        break;
    case FunctionKind::Count:
        b.countFirstValue = b.countStep = true;
        b.fieldList = countFirstValueFromField;
        b.countNumber = !countFirstValueFromField;
        break;
    case FunctionKind::CardSnNr: break;
    case FunctionKind::Checksum:
        b.range = b.startValue = true;
        b.polynom = option == kChecksumCrc || !isChecksumMethod(option);
        break;
    }
    b.sizeEnabled = !fixedSize(kind, option, mode);
    return b;
}

std::optional<int64_t> fixedSize(FunctionKind kind, int option, int32_t mode) {
    if (mode == 1) {
        if (kind == FunctionKind::CardSnNr) return requiredCardSnNrBytes(option);
        if (kind == FunctionKind::Checksum) return 1;
    } else if (mode == 3 && kind == FunctionKind::Checksum) {
        if (option == kChecksumAdd) return 8;
        if (option == kChecksumParity) return 1;
    }
    return std::nullopt;
}

std::optional<int64_t> requiredCardSnNrBytes(int option) {
    switch (option) {
    case kCardSnNrDecimal: return 10;
    case kCardSnNrHexadecimal: return 8;
    case kCardSnNrMotorola:
    case kCardSnNrIntel: return 4;
    default: return std::nullopt;
    }
}

Limits boxLimits(ValueBox box, int32_t mode, FunctionKind kind, int option, int64_t numBits) {
    const bool bits = mode == 3;
    const int64_t n = std::clamp<int64_t>(numBits, 1, 62);
    switch (box) {
    case ValueBox::ConstantValue: return {0, bits ? kMaxBitConstant : kByteMax};
    case ValueBox::CountNumber:
    case ValueBox::CountStep: return {0, kByteMax};
    case ValueBox::Polynom: {
        if (!bits) return {257, 511};
        const int64_t belowTop = (int64_t{1} << n) - 1;  // 2^(n+1) - 1 built without passing INT64_MAX
        return {belowTop + 2, belowTop * 2 + 1};
    }
    case ValueBox::StartValue:
        if (kind == FunctionKind::Checksum && option == kChecksumParity) return {0, 1};
        if (kind == FunctionKind::Checksum && option == kChecksumCrc && bits) return {0, (int64_t{1} << n) - 1};
        return {0, kByteMax};
    }
    return {};
}

Limits sizeBoxLimits(int32_t mode, int32_t pageSize, int16_t block, int16_t beginByte, int16_t beginBit) {
    const int64_t roomBytes = int64_t{pageSize} - PageAddress::at(block, beginByte).byte();
    if (mode == 2 || mode == 3) return {1, PageAddress::ofByte(roomBytes).plusBits(beginBit).bit()};
    return {1, roomBytes};
}

bool acceptsNumberKey(char32_t key) {
    return (key >= U'0' && key <= U'9') || key == 8;
}

std::string filterNumberText(std::string_view typed) {
    std::string kept;
    for (char c : typed)
        if (c >= '0' && c <= '9') kept += c;
    return kept;
}

void applyFunctionValues(const FunctionInput& in, int32_t mode, ItemRecord& record) {
    record.name = std::string(functionWord(in.kind));
    record.param1.clear(), record.param2.clear(), record.param3.clear();
    record.polynomial = {};
    record.initValue = 0;
    record.range = {};
    switch (in.kind) {
    case FunctionKind::Constant: record.param1 = in.option == kConstantField ? in.fieldName : in.constantText; break;
    case FunctionKind::Count:
        record.param1 = in.countStepText;
        record.param2 = in.valueFromField ? in.fieldName : in.countNumberText;
        record.param3 = in.option == kCountIncrementBeforeWrite ? "1" : "0";
        break;
    case FunctionKind::CardSnNr: record.param1 = std::to_string(in.option); break;
    case FunctionKind::Checksum: {
        record.param1 = std::to_string(in.option);
        const int16_t start = stored16(in.startValueText);
        if (in.option == kChecksumCrc)
            record.polynomial = {stored16(in.polynomText), start};
        else if (isChecksumMethod(in.option))
            record.initValue = start;
        const int16_t count = stored16(in.rangeCountText);
        // A bit checksum keeps its range in bits; the editor enters whole bytes.
        if (mode == 3)
            record.range = {in.rangePage, in.rangeRow, in.rangeBeginByte, in.rangeBeginBit,
                            static_cast<int16_t>(std::clamp<int64_t>(PageAddress::ofByte(count).bit(), -32768, 32767))};
        else
            record.range = {in.rangePage, in.rangeRow, in.rangeBeginByte, count, 0};
        break;
    }
    }
}

FunctionInput functionInputOf(const ItemRecord& r) {
    FunctionInput in;
    in.kind = functionKindOf(r.name).value_or(FunctionKind::Constant);
    switch (in.kind) {
    case FunctionKind::Constant:
        in.valueFromField = namesField(r.param1);
        in.option = in.valueFromField ? kConstantField : kConstantValue;
        if (in.valueFromField)
            in.fieldName = r.param1;
        else
            in.constantText = r.param1;
        break;
    case FunctionKind::Count:
        in.countStepText = r.param1;
        in.valueFromField = namesField(r.param2);
        if (in.valueFromField)
            in.fieldName = r.param2;
        else
            in.countNumberText = r.param2;
        in.option = optionIn(r.param3, kCountWriteBeforeIncrement, kCountIncrementBeforeWrite).value_or(0);
        break;
    case FunctionKind::CardSnNr: in.option = optionIn(r.param1, kCardSnNrDecimal, kCardSnNrIntel).value_or(0); break;
    case FunctionKind::Checksum: {
        in.option = optionIn(r.param1, kChecksumAdd, kChecksumParity).value_or(0);
        if (in.option == kChecksumCrc) {
            in.polynomText = std::to_string(r.polynomial[0]);
            in.startValueText = std::to_string(r.polynomial[1]);
        } else if (isChecksumMethod(in.option)) {
            in.startValueText = std::to_string(r.initValue);
        }
        const auto& g = r.range;
        in.rangePage = g[0], in.rangeRow = g[1], in.rangeBeginByte = g[2];
        if (r.isFunction) {
            in.rangeCountText = std::to_string(g[3]);
        } else {
            in.rangeBeginBit = g[3];
            in.rangeCountText = std::to_string(PageAddress::ofBit(g[4]).bytesReached());
        }
        break;
    }
    }
    return in;
}

void fillFunctionRequest(PlacementRequest& request, const FunctionInput& input) {
    request.propertyOption = input.option;
    request.valueFromField =
        input.kind == FunctionKind::Constant ? input.option == kConstantField : input.valueFromField;
    request.fieldChosen = input.fieldName;
    request.constantText = input.constantText;
    request.polynomText = input.polynomText;
    request.startValueText = input.startValueText;
    request.rangeRow = input.rangeRow;
    request.rangeBeginByte = input.rangeBeginByte;
    request.rangeCountText = input.rangeCountText;
}

}  // namespace kestrin
