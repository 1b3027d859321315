#pragma once
#include <filesystem>
#include <string>
#include <string_view>

namespace kestrin {

// A path as UTF-8 text for messages and for comparing names (on Linux its bytes as they are).
// Unlike path::string(), it never depends on the Windows ANSI code page.
std::string pathText(const std::filesystem::path& path);

// The path named by UTF-8 text, such as a command-line argument or a name typed by the
// operator: on Windows every character reaches the file system, on Linux the bytes as they are.
std::filesystem::path pathFromText(std::string_view text);

}  // namespace kestrin
