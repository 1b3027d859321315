#pragma once
#include <cstddef>
#include <string>
#include <string_view>

namespace kestrin {

// Hashing and comparison of names that ignore ASCII letter case, usable with string_view
// lookups in unordered containers without building a lower-cased copy.
inline char asciiFold(char c) {
    return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
}

struct AsciiCaselessHash {
    using is_transparent = void;
    size_t operator()(std::string_view s) const noexcept {
        size_t h = 1469598103934665603ull;  // FNV-1a
        for (char c : s) h = (h ^ static_cast<unsigned char>(asciiFold(c))) * 1099511628211ull;
        return h;
    }
};

struct AsciiCaselessEqual {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const noexcept {
        if (a.size() != b.size()) return false;
        for (size_t i = 0; i < a.size(); ++i)
            if (asciiFold(a[i]) != asciiFold(b[i])) return false;
        return true;
    }
};

}  // namespace kestrin
