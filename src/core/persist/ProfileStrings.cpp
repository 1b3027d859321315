#include "ProfileStrings.h"

#include "InputLimits.h"
#include "ProfileDocument.h"

namespace kestrin {

namespace {
constexpr std::string_view kQuoteGuard = "@#@#";
constexpr size_t kReadBuffer = kMaxValueChars + 1;
}  // namespace

std::string quoteLayoutValue(std::string_view value) {
    std::string out;
    if (!value.empty() && value.front() == '"') out = kQuoteGuard;
    out += value;
    return out;
}

std::string readLayoutString(const ProfileDocument& doc, std::string_view section, std::string_view key,
                             std::string_view defaultText) {
    std::string text = doc.getString(section, key, defaultText, kReadBuffer);
    if (text.find('@') == std::string::npos) return text;  // neither "/@" nor the guard
    std::string out;
    out.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '/' && i + 1 < text.size() && text[i + 1] == '@') {
            out += '"';
            ++i;
        } else {
            out += text[i];
        }
    }
    if (out.compare(0, kQuoteGuard.size(), kQuoteGuard) == 0) out.erase(0, kQuoteGuard.size());
    return out;
}

}  // namespace kestrin
