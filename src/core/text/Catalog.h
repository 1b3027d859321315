#pragma once
#include <cstdint>
#include <optional>
#include <string>

namespace kestrin {

// One language library: a lookup from text number to UTF-8 text.
class Catalog {
public:
    virtual ~Catalog() = default;
    // The text of number id, or nothing when the library has none (an empty text counts as none).
    virtual std::optional<std::string> lookup(int32_t id) const = 0;
};

}  // namespace kestrin
