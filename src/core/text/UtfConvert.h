#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace kestrin {

// A library text is at most this many UTF-16 units long, as a host reading it
// into a 256-character buffer receives it.
inline constexpr std::size_t MaxCatalogTextUnits = 255;

// The longest prefix of units with at most maxUnits units that does not end
// between the two halves of a surrogate pair.
std::u16string_view cutUtf16(std::u16string_view units, std::size_t maxUnits = MaxCatalogTextUnits);

// Appends the UTF-8 form of a code point.
void appendUtf8(std::string& out, char32_t cp);

// UTF-16 to UTF-8; a surrogate without its partner becomes U+FFFD.
std::string utf16ToUtf8(std::u16string_view units);

// True when text is well-formed UTF-8 (no overlong forms, no surrogates, nothing above U+10FFFF).
bool isValidUtf8(std::string_view text);

// The longest prefix of text that counts at most maxUnits UTF-16 units (a character
// above U+FFFF counts two) and never splits a character; it ends early at malformed UTF-8.
std::string_view cutUtf8(std::string_view text, std::size_t maxUnits = MaxCatalogTextUnits);

}  // namespace kestrin
