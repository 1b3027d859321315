#include "text/UtfConvert.h"

namespace kestrin {
namespace {

bool isHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
bool isLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

// Length in bytes of the well-formed UTF-8 sequence at the start of text, or 0.
std::size_t utf8SequenceLength(std::string_view text)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const auto isTail = [&](std::size_t i) { return i < text.size() && (byte(i) & 0xC0) == 0x80; };
    const unsigned char lead = byte(0);
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return isTail(1) ? 2 : 0;
    if (lead >= 0xE0 && lead <= 0xEF) {
        if (!isTail(1) || !isTail(2))
            return 0;
        if (lead == 0xE0 && byte(1) < 0xA0)
            return 0;  // overlong
        if (lead == 0xED && byte(1) >= 0xA0)
            return 0;  // a surrogate encoded as UTF-8
        return 3;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        if (!isTail(1) || !isTail(2) || !isTail(3))
            return 0;
        if (lead == 0xF0 && byte(1) < 0x90)
            return 0;  // overlong
        if (lead == 0xF4 && byte(1) >= 0x90)
            return 0;  // above U+10FFFF
        return 4;
    }
    return 0;
}

}  // namespace

void appendUtf8(std::string& out, char32_t cp)
{
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}


std::u16string_view cutUtf16(std::u16string_view units, std::size_t maxUnits)
{
    if (units.size() <= maxUnits)
        return units;
    std::size_t length = maxUnits;
    if (length > 0 && isHighSurrogate(units[length - 1]) && isLowSurrogate(units[length]))
        --length;
    return units.substr(0, length);
}

std::string utf16ToUtf8(std::u16string_view units)
{
    std::string out;
    out.reserve(units.size() * 3);
    for (std::size_t i = 0; i < units.size(); ++i) {
        const char32_t unit = units[i];
        if (isHighSurrogate(unit) && i + 1 < units.size() && isLowSurrogate(units[i + 1])) {
            const char32_t low = units[i + 1];
            appendUtf8(out, 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00));
            ++i;
        } else if (isHighSurrogate(unit) || isLowSurrogate(unit)) {
            appendUtf8(out, 0xFFFD);
        } else {
            appendUtf8(out, unit);
        }
    }
    return out;
}

bool isValidUtf8(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t length = utf8SequenceLength(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::string_view cutUtf8(std::string_view text, std::size_t maxUnits)
{
    std::size_t bytes = 0;
    std::size_t units = 0;
    while (bytes < text.size()) {
        const std::size_t length = utf8SequenceLength(text.substr(bytes));
        const std::size_t needed = length == 4 ? 2 : 1;
        if (length == 0 || units + needed > maxUnits)
            break;
        units += needed;
        bytes += length;
    }
    return text.substr(0, bytes);
}

}  // namespace kestrin
