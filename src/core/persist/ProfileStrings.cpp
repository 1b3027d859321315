#include "ProfileStrings.h"

#include "InputLimits.h"
#include "Cp1252.h"
#include "ProfileDocument.h"

namespace kestrin {

namespace {
constexpr std::string_view kQuoteGuard = "@#@#";
constexpr size_t kReadBuffer = kMaxValueChars + 1;
}  // namespace

bool needsQuoteGuard(std::string_view value) { return !value.empty() && value.front() == '"'; }

std::string quoteLayoutValue(std::string_view value) {
    std::string out(kQuoteGuard);
    out += value;
    return out;
}

std::string layoutStringOf(std::optional<std::string_view> raw, std::string_view defaultText) {
    std::string_view value;
    if (raw) {
        value = stripProfileQuotes(*raw);
    } else {
        value = defaultText;
        while (!value.empty() && value.back() == ' ') value.remove_suffix(1);
    }
    value = utf8Prefix(value, kReadBuffer - 1);
    if (value.find('@') == std::string_view::npos) return std::string(value);  // neither "/@" nor the guard
    std::string out;
    out.reserve(value.size());
    for (size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '/' && i + 1 < value.size() && value[i + 1] == '@') {
            out += '"';
            ++i;
        } else {
            out += value[i];
        }
    }
    if (out.compare(0, kQuoteGuard.size(), kQuoteGuard) == 0) out.erase(0, kQuoteGuard.size());
    return out;
}

std::string readLayoutString(const ProfileDocument& doc, std::string_view section, std::string_view key,
                             std::string_view defaultText) {
    return layoutStringOf(doc.rawValue(section, key), defaultText);
}

}  // namespace kestrin
