#include "Cp1252.h"

#include <array>
#include <unordered_map>

#include "text/UtfConvert.h"

namespace kestrin {

namespace {

// 0x80 to 0x9F; the undefined bytes 0x81, 0x8D, 0x8F, 0x90 and 0x9D keep their value.
constexpr std::array<char16_t, 32> kHigh = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178,
};

char32_t decodeByte(unsigned char b) {
    if (b >= 0x80 && b < 0xA0) return kHigh[b - 0x80];
    return b;
}

const std::unordered_map<char32_t, char>& reverseHigh() {
    static const std::unordered_map<char32_t, char> map = [] {
        std::unordered_map<char32_t, char> m;
        for (size_t i = 0; i < kHigh.size(); ++i) m[kHigh[i]] = static_cast<char>(0x80 + i);
        return m;
    }();
    return map;
}

// Decodes one code point at text[i]; returns 0xFFFFFFFF for malformed input (advancing one byte).
char32_t nextCodePoint(std::string_view text, size_t& i) {
    const auto b0 = static_cast<unsigned char>(text[i]);
    if (b0 < 0x80) {
        ++i;
        return b0;
    }
    int len = b0 >= 0xF0 && b0 < 0xF5 ? 4 : b0 >= 0xE0 ? 3 : b0 >= 0xC2 && b0 < 0xE0 ? 2 : 0;
    if (len == 0 || i + static_cast<size_t>(len) > text.size()) {
        ++i;
        return 0xFFFFFFFF;
    }
    char32_t cp = b0 & (0x7F >> len);
    for (int k = 1; k < len; ++k) {
        const auto b = static_cast<unsigned char>(text[i + static_cast<size_t>(k)]);
        if ((b & 0xC0) != 0x80) {
            ++i;
            return 0xFFFFFFFF;
        }
        cp = (cp << 6) | (b & 0x3F);
    }
    const bool overlong = (len == 3 && cp < 0x800) || (len == 4 && cp < 0x10000);
    if (overlong || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF)) {
        ++i;
        return 0xFFFFFFFF;
    }
    i += static_cast<size_t>(len);
    return cp;
}

}  // namespace

bool isAscii(std::string_view bytes) {
    // Whole text at once: the compiler turns the OR of every byte into wide loads.
    unsigned char any = 0;
    for (char c : bytes) any |= static_cast<unsigned char>(c);
    return any < 0x80;
}

std::string cp1252ToUtf8(std::string_view bytes) {
    std::string out;
    out.reserve(bytes.size() + bytes.size() / 8);
    for (char c : bytes) {
        const auto b = static_cast<unsigned char>(c);
        if (b < 0x80)
            out += c;
        else
            appendUtf8(out, decodeByte(b));
    }
    return out;
}

std::string utf8ToCp1252(std::string_view text) {
    if (isAscii(text)) return std::string(text);
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size();) {
        const char32_t cp = nextCodePoint(text, i);
        if (cp < 0x80 || (cp >= 0xA0 && cp <= 0xFF)) {
            out += static_cast<char>(cp);
        } else if (cp == 0x81 || cp == 0x8D || cp == 0x8F || cp == 0x90 || cp == 0x9D) {
            out += static_cast<char>(cp);
        } else {
            auto it = reverseHigh().find(cp);
            out += it != reverseHigh().end() ? it->second : '?';
        }
    }
    return out;
}

std::string utf16leToUtf8(std::string_view bytes) {
    std::u16string units(bytes.size() / 2, u'\0');
    for (size_t k = 0; k < units.size(); ++k)
        units[k] = static_cast<char16_t>(static_cast<unsigned char>(bytes[2 * k]) |
                                         (static_cast<unsigned char>(bytes[2 * k + 1]) << 8));
    return utf16ToUtf8(units);
}

size_t utf8Length(std::string_view text) {
    size_t n = 0;
    for (char c : text)
        if ((static_cast<unsigned char>(c) & 0xC0) != 0x80) ++n;
    return n;
}

std::string_view utf8Prefix(std::string_view text, size_t n) {
    if (text.size() <= n) return text;  // no more characters than bytes
    size_t count = 0;
    for (size_t i = 0; i < text.size(); ++i) {
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
            if (count == n) return text.substr(0, i);
            ++count;
        }
    }
    return text;
}

}  // namespace kestrin
