#include "FuzzSupport.h"

#include <cstdio>
#include <cstdlib>

namespace kestrin::fuzz {

void fail(const char* what, std::string_view first, std::string_view second) {
    std::fprintf(stderr, "property failed: %s\n--- first (%zu bytes)\n%.*s\n--- second (%zu bytes)\n%.*s\n", what,
                 first.size(), static_cast<int>(first.size()), first.data(), second.size(),
                 static_cast<int>(second.size()), second.data());
    std::abort();
}

}  // namespace kestrin::fuzz
