#pragma once

namespace kestrin {

// Sizes are kept in twips, 1440 an inch. A size in device pixels drops the fraction, so 400
// twips are 26 pixels at 96 DPI (15 twips a pixel) and every caller agrees on the same width.
inline constexpr int kTwipsPerInch = 1440;

constexpr int twipsToPixels(int twips, int dpi) {
    return static_cast<int>(static_cast<long long>(twips) * dpi / kTwipsPerInch);
}

}  // namespace kestrin
