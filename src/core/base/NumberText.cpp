#include "NumberText.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>

namespace kestrin {

std::optional<double> numericValue(std::string_view text) {
    size_t b = 0, e = text.size();
    while (b < e && (text[b] == ' ' || text[b] == '\t')) ++b;
    while (e > b && (text[e - 1] == ' ' || text[e - 1] == '\t')) --e;
    const std::string_view t = text.substr(b, e - b);
    size_t i = 0;
    if (i < t.size() && (t[i] == '+' || t[i] == '-')) ++i;
    bool digits = false;
    while (i < t.size() && t[i] >= '0' && t[i] <= '9') ++i, digits = true;
    if (i < t.size() && t[i] == '.') {
        ++i;
        while (i < t.size() && t[i] >= '0' && t[i] <= '9') ++i, digits = true;
    }
    if (!digits) return std::nullopt;
    if (i < t.size() && (t[i] == 'e' || t[i] == 'E')) {
        ++i;
        if (i < t.size() && (t[i] == '+' || t[i] == '-')) ++i;
        bool exponent = false;
        while (i < t.size() && t[i] >= '0' && t[i] <= '9') ++i, exponent = true;
        if (!exponent) return std::nullopt;
    }
    if (i != t.size()) return std::nullopt;
    return std::strtod(std::string(t).c_str(), nullptr);  // inf for absurd exponents: still a number
}

int64_t wholeNumberOf(std::string_view text) {
    const auto v = numericValue(text);
    if (!v || std::isnan(*v)) return 0;
    return static_cast<int64_t>(std::nearbyint(std::clamp(*v, -1e12, 1e12)));
}

}  // namespace kestrin
