#include "ProfileWriter.h"

#include <charconv>

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
    const std::string_view sectionName = trimProfileSpace(section);
    const std::string_view keyName = trimProfileSpace(key);
    if (sectionName.empty() || keyName.empty()) return;  // never write nameless sections or keys

    auto sit = index_.find(sectionName);
    if (sit == index_.end()) {
        sections_.push_back(Section{std::string(sectionName), {}, {}});
        sit = index_.emplace(std::string(sectionName), sections_.size() - 1).first;
    }
    Section& s = sections_[sit->second];

    auto kit = s.index.find(keyName);
    if (kit == s.index.end()) {
        s.entries.emplace_back(std::string(keyName), profileSafeValue(value));
        s.index.emplace(std::string(keyName), s.entries.size() - 1);
    } else {
        s.entries[kit->second].second = profileSafeValue(value);
    }
}

void ProfileWriter::writeInt(std::string_view section, std::string_view key, int64_t value) {
    char buf[24];
    const auto end = std::to_chars(buf, buf + sizeof buf, value).ptr;
    write(section, key, std::string_view(buf, static_cast<size_t>(end - buf)));
}

std::string ProfileWriter::bytes() const {
    size_t size = 0;
    for (const auto& s : sections_) {
        size += s.name.size() + 4;
        for (const auto& [k, v] : s.entries) size += k.size() + v.size() + 3;
    }
    std::string out;
    out.reserve(size);
    auto append = [&out](const std::string& text) {
        if (isAscii(text))
            out += text;
        else
            out += utf8ToCp1252(text);
    };
    for (const auto& s : sections_) {
        out += '[';
        append(s.name);
        out += "]\r\n";
        for (const auto& [k, v] : s.entries) {
            append(k);
            out += '=';
            append(v);
            out += "\r\n";
        }
    }
    return out;
}

}  // namespace kestrin
