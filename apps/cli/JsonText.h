#pragma once
#include <optional>
#include <string>
#include <string_view>

namespace kestrin::cli {

// A JSON string literal, quotes included.
std::string jsonString(std::string_view text);
// A number, or null for a cell the grid leaves empty.
template <class T>
std::string jsonNumber(const std::optional<T>& v) {
    return v ? std::to_string(*v) : "null";
}

}  // namespace kestrin::cli
