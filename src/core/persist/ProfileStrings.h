#pragma once
#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

class ProfileDocument;

// The layout files' quoting rule: a value that begins with a double quote is written
// with "@#@#" in front, so that the profile reader does not strip its quotes.
bool needsQuoteGuard(std::string_view value);
// The value with "@#@#" in front (for a value that needs it).
std::string quoteLayoutValue(std::string_view value);

// The shared string-reading rule of layout and project files: read with a buffer of
// 1024 characters, turn every "/@" into a double quote, then drop a leading "@#@#".
std::string readLayoutString(const ProfileDocument& doc, std::string_view section, std::string_view key,
                             std::string_view defaultText = {});
// The same rule on a raw value already looked up (nothing: the entry is missing).
std::string layoutStringOf(std::optional<std::string_view> raw, std::string_view defaultText = {});

}  // namespace kestrin
