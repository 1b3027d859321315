#pragma once
#include <string>
#include <string_view>

namespace kestrin {

// A UTF-8 text in capitals: the ASCII letters and the other letters of the Western Windows
// code page the language libraries are written in (é to É, ÿ to Ÿ, š to Š, œ to Œ, ž to Ž).
// Every other character stays as it is.
std::string upperCase(std::string_view text);

}  // namespace kestrin
