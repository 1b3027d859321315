#pragma once
#include <cstdint>
#include <optional>
#include <string_view>

namespace kestrin {

// The value of a text that reads as a number the way the operator's boxes are checked:
// blanks around it, an optional sign, digits with an optional decimal point, an optional
// exponent. Nothing for empty text or anything else. Very long digit strings give a
// correspondingly large value rather than overflowing.
std::optional<double> numericValue(std::string_view text);

// The text as a whole number for arithmetic on places and sizes: rounded, held within
// +-10^12 so no sum overflows; 0 for empty text or text that is no number.
int64_t wholeNumberOf(std::string_view text);

}  // namespace kestrin
