#ifndef _WIN32
#include "text/ModuleStrings.h"

namespace kestrin {

// Without module handles a host reaches its libraries through the catalog registry only.
std::optional<std::string> moduleString(LanguageHandle, int32_t) { return std::nullopt; }

}  // namespace kestrin
#endif  // _WIN32
