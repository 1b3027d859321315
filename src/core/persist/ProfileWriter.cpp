#include "ProfileWriter.h"

#include "Cp1252.h"
#include "ProfileDocument.h"

namespace kestrin {

std::string profileSafeValue(std::string_view value) {
    std::string out(trimProfileSpace(value));
    for (char& c : out)
        if (c == '\r' || c == '\n') c = ' ';
    return out;
}

void ProfileWriter::write(std::string_view section, std::string_view key, std::string_view value) {
    const std::string sectionName(trimProfileSpace(section));
    const std::string keyName(trimProfileSpace(key));
    if (sectionName.empty() || keyName.empty()) return;  // never write nameless sections or keys

    auto [sit, newSection] = index_.try_emplace(asciiLower(sectionName), sections_.size());
    if (newSection) sections_.push_back(Section{sectionName, {}, {}});
    Section& s = sections_[sit->second];

    auto [kit, newKey] = s.index.try_emplace(asciiLower(keyName), s.entries.size());
    if (newKey)
        s.entries.emplace_back(keyName, profileSafeValue(value));
    else
        s.entries[kit->second].second = profileSafeValue(value);
}

void ProfileWriter::writeInt(std::string_view section, std::string_view key, int64_t value) {
    write(section, key, std::to_string(value));
}

std::string ProfileWriter::bytes() const {
    std::string text;
    for (const auto& s : sections_) {
        text += '[';
        text += s.name;
        text += "]\r\n";
        for (const auto& [k, v] : s.entries) {
            text += k;
            text += '=';
            text += v;
            text += "\r\n";
        }
    }
    return utf8ToCp1252(text);
}

}  // namespace kestrin
