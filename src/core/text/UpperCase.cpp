#include "UpperCase.h"

namespace kestrin {

std::string upperCase(std::string_view text) {
    std::string out(text);
    for (size_t i = 0; i < out.size(); ++i) {
        unsigned char& c = reinterpret_cast<unsigned char&>(out[i]);
        if (c >= 'a' && c <= 'z') {
            c = static_cast<unsigned char>(c - 'a' + 'A');
        } else if ((c == 0xC3 || c == 0xC5) && i + 1 < out.size()) {
            unsigned char& next = reinterpret_cast<unsigned char&>(out[++i]);
            if (c == 0xC3 && next >= 0xA0 && next <= 0xBE && next != 0xB7) {
                next = static_cast<unsigned char>(next - 0x20);  // U+00E0..U+00FE but the division sign
            } else if (c == 0xC3 && next == 0xBF) {
                c = 0xC5, next = 0xB8;  // ÿ has its capital in Latin Extended-A
            } else if (c == 0xC5 && (next == 0x93 || next == 0xA1 || next == 0xBE)) {
                next = static_cast<unsigned char>(next - 1);  // œ, š, ž
            }
        }
    }
    return out;
}

}  // namespace kestrin
