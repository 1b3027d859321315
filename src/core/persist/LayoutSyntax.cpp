#include "LayoutSyntax.h"

#include <algorithm>
#include <charconv>
#include <limits>

#include "ProfileDocument.h"
#include "base/NumberText.h"

namespace kestrin {

std::string functionValue(const ItemRecord& r, int checksumNumber) {
    std::string params;
    if (r.name == kFunctionCount)
        params = r.param1 + "." + r.param2 + "." + r.param3;
    else if (r.name == kFunctionChecksum)
        params = r.param1 + "." + std::to_string(checksumNumber);
    else
        params = r.param1;
    return r.name + "(" + params + ")";
}

std::optional<ParsedFunction> parseFunctionValue(std::string_view value) {
    const size_t open = value.find('(');
    const size_t close = value.rfind(')');
    if (open == std::string_view::npos || close == std::string_view::npos || close < open) return std::nullopt;
    ParsedFunction f;
    f.word = std::string(trimProfileSpace(value.substr(0, open)));
    const std::string_view params = value.substr(open + 1, close - open - 1);
    if (f.word == kFunctionCount) {
        const size_t first = params.find('.');
        const size_t last = params.rfind('.');
        if (first == std::string_view::npos) {
            f.param1 = std::string(params);
        } else if (first == last) {
            f.param1 = std::string(params.substr(0, first));
            f.param2 = std::string(params.substr(first + 1));
        } else {
            f.param1 = std::string(params.substr(0, first));
            f.param2 = std::string(params.substr(first + 1, last - first - 1));
            f.param3 = std::string(params.substr(last + 1));
        }
    } else if (f.word == kFunctionChecksum) {
        const size_t dot = params.find('.');
        f.param1 = std::string(params.substr(0, dot));
        if (dot != std::string_view::npos) f.param2 = std::string(params.substr(dot + 1));
    } else {
        f.param1 = std::string(params);
        // Tolerate a constant text that was stored with its own quote guard.
        if (f.param1.rfind("@#@#\"", 0) == 0) f.param1.erase(0, 4);
    }
    return f;
}

std::string joinNumbers(std::initializer_list<int64_t> numbers) {
    char buf[24 * 8];
    char* at = buf;
    char* const end = buf + sizeof buf;
    std::string out;
    for (int64_t n : numbers) {
        if (end - at < 22) {  // more numbers than the buffer holds: flush it
            out.append(buf, at);
            at = buf;
        }
        if (at != buf || !out.empty()) *at++ = ',';
        at = std::to_chars(at, end, n).ptr;
    }
    out.append(buf, at);
    return out;
}

namespace {

// Calls add(number) for each comma-separated part; false when a part is not a plain decimal
// integer (blanks around it allowed, a leading "+" too).
template <class Add>
bool forEachNumber(std::string_view text, Add&& add) {
    size_t start = 0;
    for (;;) {
        const size_t comma = text.find(',', start);
        std::string_view part = trimProfileSpace(text.substr(start, comma == std::string_view::npos ? text.npos : comma - start));
        if (!part.empty() && part.front() == '+') part.remove_prefix(1);
        int32_t v = 0;
        auto [ptr, ec] = std::from_chars(part.data(), part.data() + part.size(), v);
        if (part.empty() || ec != std::errc() || ptr != part.data() + part.size()) return false;
        if (!add(v)) return false;
        if (comma == std::string_view::npos) return true;
        start = comma + 1;
    }
}

}  // namespace

std::optional<std::vector<int32_t>> parseNumberList(std::string_view text) {
    std::vector<int32_t> out;
    if (!forEachNumber(text, [&out](int32_t v) { return out.push_back(v), true; })) return std::nullopt;
    return out;
}

bool fitsInt16(int64_t v) {
    return v >= std::numeric_limits<int16_t>::min() && v <= std::numeric_limits<int16_t>::max();
}

std::optional<std::vector<int16_t>> parseShortList(std::string_view text, size_t n) {
    std::vector<int16_t> out;
    out.reserve(std::max<size_t>(n, 6));
    const bool read = forEachNumber(text, [&out](int32_t v) {
        out.push_back(static_cast<int16_t>(v));
        return fitsInt16(v);
    });
    if (!read || out.size() < n) return std::nullopt;
    return out;
}

std::pair<std::string, int32_t> splitFieldKey(std::string_view key) {
    if (key.size() >= 3 && key.back() == ')') {
        const size_t open = key.rfind('(');
        if (open != std::string_view::npos && open + 1 < key.size() - 1) {
            std::string_view digits = key.substr(open + 1, key.size() - open - 2);
            int32_t n = 0;
            auto [ptr, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), n);
            if (ec == std::errc() && ptr == digits.data() + digits.size() && n >= 0)
                return {std::string(key.substr(0, open)), n};
        }
    }
    return {std::string(key), 0};
}

std::optional<int32_t> numberedKey(std::string_view key, std::string_view suffix) {
    if (key.size() <= suffix.size()) return std::nullopt;
    const std::string_view tail = key.substr(key.size() - suffix.size());
    if (!AsciiCaselessEqual{}(tail, suffix)) return std::nullopt;
    const std::string_view digits = key.substr(0, key.size() - suffix.size());
    int32_t n = 0;
    auto [ptr, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), n);
    if (ec != std::errc() || ptr != digits.data() + digits.size()) return std::nullopt;
    return n;
}

bool looksNumeric(std::string_view text) {
    return numericValue(text).has_value();
}

}  // namespace kestrin
