#pragma once
#include <cstdint>
#include <random>

namespace kestrin {

// A light random display colour for a new item: red, green and blue each 127 to 227,
// kept as the 0x00BBGGRR value the layout files store.
int32_t randomItemColor(std::mt19937& rng);
// From this thread's generator, which starts from a random seed.
int32_t randomItemColor();
// Restarts this thread's generator from seed, so that a scripted session gives its new items the
// same colours on every run and every system.
void seedItemColors(uint32_t seed);

}  // namespace kestrin
