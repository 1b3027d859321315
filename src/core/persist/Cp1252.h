#pragma once
#include <string>
#include <string_view>

namespace kestrin {

// Layout, encode and project files are Windows-1252 on disk and UTF-8 in memory.
// Every byte value round-trips: the five bytes that Windows-1252 leaves undefined map to
// the control characters of the same value, as Windows itself maps them.
std::string cp1252ToUtf8(std::string_view bytes);
bool isAscii(std::string_view bytes);
// Characters that Windows-1252 cannot hold, and malformed UTF-8, become '?'.
std::string utf8ToCp1252(std::string_view text);
// UTF-16LE (no byte-order mark) to UTF-8; unpaired surrogates become U+FFFD.
std::string utf16leToUtf8(std::string_view bytes);
// Number of code points in valid UTF-8 text (continuation bytes are not counted).
size_t utf8Length(std::string_view text);
// The first n code points of UTF-8 text.
std::string_view utf8Prefix(std::string_view text, size_t n);

}  // namespace kestrin
