#pragma once
#include <cstdint>
#include <random>

namespace kestrin {

// A light random display colour for a new item: red, green and blue each 127 to 227,
// kept as the 0x00BBGGRR value the layout files store.
int32_t randomItemColor(std::mt19937& rng);
int32_t randomItemColor();

}  // namespace kestrin
