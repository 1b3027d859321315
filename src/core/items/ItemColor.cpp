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

int32_t randomItemColor() {
    static thread_local std::mt19937 rng{std::random_device{}()};
    return randomItemColor(rng);
}

}  // namespace kestrin
