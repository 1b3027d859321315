#pragma once
#include <cstdint>

namespace kestrin {

// What a host puts into LanguageDLL / CustomLanguageDLL: a handle of the catalog registry
// (a small positive number) or, on Windows, the module handle LoadLibrary gave it. As wide
// as a pointer, so that a module handle is kept whole in 32- and 64-bit builds alike.
using LanguageHandle = std::intptr_t;

}  // namespace kestrin
