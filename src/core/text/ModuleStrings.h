#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "text/LanguageHandle.h"

namespace kestrin {

// The text of number id in the string tables of a library the host loaded itself and handed
// over by its module handle (LoadLibrary, or LoadLibraryEx as a data file or image resource),
// read as LoadString reads it: only the low 16 bits of id count, a text is cut at 255 UTF-16
// units (never inside a surrogate pair), an empty text counts as none. Nothing when the handle
// is no loaded library, whatever number it is; on systems without module handles, never anything.
std::optional<std::string> moduleString(LanguageHandle handle, int32_t id);

}  // namespace kestrin
