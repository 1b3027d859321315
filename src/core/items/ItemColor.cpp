#include "ItemColor.h"

#include <cmath>

namespace kestrin {

int32_t randomItemColor(std::mt19937& rng) {
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    auto channel = [&] { return static_cast<int32_t>(std::lround(unit(rng) * 100.0 + 127.0)); };
    const int32_t red = channel();
    const int32_t green = channel();
    const int32_t blue = channel();
    return red | (green << 8) | (blue << 16);
}

namespace {

std::mt19937& threadGenerator() {
    static thread_local std::mt19937 rng{std::random_device{}()};
    return rng;
}

}  // namespace

int32_t randomItemColor() {
    return randomItemColor(threadGenerator());
}

void seedItemColors(uint32_t seed) {
    threadGenerator().seed(seed);
}

}  // namespace kestrin
