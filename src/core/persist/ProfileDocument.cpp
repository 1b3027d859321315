#include "ProfileDocument.h"

#include <algorithm>
#include <fstream>
#include <system_error>

#include "Cp1252.h"

namespace kestrin {

bool isProfileSpace(char c) {
    return (c >= 0x09 && c <= 0x0D) || c == 0x1A || c == ' ';
}

std::string_view trimProfileSpace(std::string_view text) {
    size_t b = 0, e = text.size();
    while (b < e && isProfileSpace(text[b])) ++b;
    while (e > b && isProfileSpace(text[e - 1])) --e;
    return text.substr(b, e - b);
}

std::string asciiLower(std::string_view text) {
    std::string out(text);
    for (char& c : out)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return out;
}

std::string_view stripProfileQuotes(std::string_view value) {
    if (value.size() >= 2 && (value.front() == '"' || value.front() == '\'') && value.back() == value.front())
        return value.substr(1, value.size() - 2);
    return value;
}

std::optional<int32_t> parseProfileInt(std::string_view value) {
    value = utf8Prefix(value, 29);
    if (value.empty()) return std::nullopt;
    size_t i = 0;
    while (i < value.size() && static_cast<unsigned char>(value[i]) <= 0x20) ++i;
    bool negative = false;
    if (i < value.size() && (value[i] == '+' || value[i] == '-')) negative = value[i++] == '-';
    uint32_t base = 10;
    if (i + 1 < value.size() && value[i] == '0') {
        const char p = value[i + 1];
        if (p == 'x') base = 16;
        else if (p == 'o') base = 8;
        else if (p == 'b') base = 2;
        if (base != 10) i += 2;
    }
    uint32_t result = 0;
    for (; i < value.size(); ++i) {
        const char c = value[i];
        uint32_t digit;
        if (c >= '0' && c <= '9') digit = static_cast<uint32_t>(c - '0');
        else if (c >= 'a' && c <= 'f') digit = static_cast<uint32_t>(c - 'a' + 10);
        else if (c >= 'A' && c <= 'F') digit = static_cast<uint32_t>(c - 'A' + 10);
        else break;
        if (digit >= base) break;
        result = result * base + digit;
    }
    if (negative) result = 0u - result;
    return static_cast<int32_t>(result);
}

ProfileDocument ProfileDocument::parse(std::string_view bytes) {
    std::string converted;
    std::string_view text = bytes;
    if (bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
        static_cast<unsigned char>(bytes[1]) == 0xFE) {
        converted = utf16leToUtf8(bytes.substr(2));
        text = converted;
    } else if (!isAscii(bytes)) {
        converted = cp1252ToUtf8(bytes);
        text = converted;
    }

    ProfileDocument doc;
    Section* current = nullptr;  // lines before the first header belong to no listed section
    std::string_view rest(text);
    while (!rest.empty()) {
        size_t end = rest.find_first_of("\r\n");
        std::string_view line = rest.substr(0, end);
        rest = end == std::string_view::npos ? std::string_view{} : rest.substr(end);
        while (!rest.empty() && (rest.front() == '\r' || rest.front() == '\n')) rest.remove_prefix(1);

        line = trimProfileSpace(line);
        if (line.empty()) continue;
        if (line.front() == '[') {
            const size_t close = line.rfind(']');
            if (close != std::string_view::npos) {
                Section s;
                s.name = std::string(trimProfileSpace(line.substr(1, close - 1)));
                doc.sections_.push_back(std::move(s));
                current = &doc.sections_.back();
                continue;
            }
        }
        if (current == nullptr) continue;
        Entry e;
        const size_t eq = line.find('=');
        if (eq == std::string_view::npos) {
            e.name = std::string(line);
        } else {
            e.hasEquals = true;
            e.name = std::string(trimProfileSpace(line.substr(0, eq)));
            e.value = std::string(trimProfileSpace(line.substr(eq + 1)));
            doc.longestValue_ = std::max(doc.longestValue_, e.value.size());
        }
        current->entries.push_back(std::move(e));
    }
    // Index once every string has its final place.
    for (size_t i = 0; i < doc.sections_.size(); ++i) {
        Section& s = doc.sections_[i];
        doc.firstSection_.try_emplace(s.name, i);
        s.firstEntry.reserve(s.entries.size());
        for (size_t k = 0; k < s.entries.size(); ++k) s.firstEntry.try_emplace(s.entries[k].name, k);
    }
    return doc;
}

std::optional<ProfileDocument> ProfileDocument::load(const std::filesystem::path& file, std::string* error,
                                                     uintmax_t maxBytes) {
    auto fail = [&](const std::string& why) -> std::optional<ProfileDocument> {
        if (error) *error = why;
        return std::nullopt;
    };
    std::error_code ec;
    if (!std::filesystem::is_regular_file(file, ec)) return fail("not a readable file: " + file.string());
    const uintmax_t size = std::filesystem::file_size(file, ec);
    if (ec) return fail("cannot read " + file.string() + ": " + ec.message());
    if (size > maxBytes) return fail("file too large (" + std::to_string(size) + " bytes): " + file.string());
    std::ifstream in(file, std::ios::binary);
    if (!in) return fail("cannot open " + file.string());
    std::string bytes(static_cast<size_t>(size), '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(size));
    bytes.resize(static_cast<size_t>(in.gcount()));
    return parse(bytes);
}

const ProfileDocument::Section* ProfileDocument::findSection(std::string_view name) const {
    auto it = firstSection_.find(trimProfileSpace(name));
    return it == firstSection_.end() ? nullptr : &sections_[it->second];
}

const ProfileDocument::Entry* ProfileDocument::findEntry(std::string_view section, std::string_view key) const {
    const Section* s = findSection(section);
    if (!s) return nullptr;
    auto it = s->firstEntry.find(trimProfileSpace(key));
    return it == s->firstEntry.end() ? nullptr : &s->entries[it->second];
}

std::optional<std::string_view> ProfileDocument::rawValue(std::string_view section, std::string_view key) const {
    const Entry* e = findEntry(section, key);
    if (!e || !e->hasEquals) return std::nullopt;
    return std::string_view(e->value);
}

std::string ProfileDocument::getString(std::string_view section, std::string_view key,
                                       std::string_view defaultText, size_t bufferSize) const {
    if (bufferSize == 0) return {};
    std::string_view result;
    if (auto raw = rawValue(section, key)) {
        result = stripProfileQuotes(*raw);
    } else {
        result = defaultText;
        while (!result.empty() && result.back() == ' ') result.remove_suffix(1);
    }
    return std::string(utf8Prefix(result, bufferSize - 1));
}

int32_t ProfileDocument::getInt(std::string_view section, std::string_view key, int32_t defaultValue) const {
    auto raw = rawValue(section, key);
    if (!raw) return defaultValue;
    return parseProfileInt(stripProfileQuotes(*raw)).value_or(defaultValue);
}

std::vector<std::string> ProfileDocument::keys(std::string_view section) const {
    std::vector<std::string> out;
    if (const Section* s = findSection(section))
        for (const auto& e : s->entries)
            if (e.hasEquals && (e.name.empty() || e.name.front() != ';')) out.push_back(e.name);
    return out;
}

std::vector<std::string> ProfileDocument::sections() const {
    std::vector<std::string> out;
    out.reserve(sections_.size());
    for (const auto& s : sections_) out.push_back(s.name);
    return out;
}

bool ProfileDocument::hasSection(std::string_view section) const {
    return findSection(section) != nullptr;
}

}  // namespace kestrin
