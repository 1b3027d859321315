#include "ProfileDocument.h"

#include <algorithm>
#include <fstream>
#include <system_error>

#include "Cp1252.h"
#include "base/PathText.h"

namespace kestrin {

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

void ProfileDocument::NameIndex::build(const std::vector<Entry>& entries, size_t first, size_t count,
                                      bool markDistinct, std::vector<Entry>& marked) {
    size_t capacity = 8;
    while (capacity < count * 2) capacity *= 2;
    slots_.assign(capacity, Slot{});
    mask_ = capacity - 1;
    // Beside each name's first entry: whether a listed key of that name has been seen yet.
    std::vector<bool> keyListed(markDistinct ? capacity : 0);
    for (size_t i = first; i < first + count; ++i) {
        const Entry& e = entries[i];
        const auto high = static_cast<uint32_t>(e.hash >> 32);
        size_t slot = e.hash & mask_;
        while (slots_[slot].entry != 0) {
            if (slots_[slot].hash == high && AsciiCaselessEqual{}(entries[slots_[slot].entry - 1].name, e.name)) break;
            slot = (slot + 1) & mask_;
        }
        if (slots_[slot].entry == 0) {
            slots_[slot] = Slot{static_cast<uint32_t>(i + 1), high};
            marked[i].firstOfName = true;
        }
        const bool listed = e.hasEquals && (e.name.empty() || e.name.front() != ';');
        if (markDistinct && listed && !keyListed[slot]) {
            keyListed[slot] = true;
            marked[i].distinctKey = true;
        }
    }
}

const ProfileDocument::Entry* ProfileDocument::NameIndex::find(const std::vector<Entry>& entries,
                                                               std::string_view name, uint64_t hash) const {
    if (slots_.empty()) return nullptr;
    const auto high = static_cast<uint32_t>(hash >> 32);
    for (size_t slot = hash & mask_; slots_[slot].entry != 0; slot = (slot + 1) & mask_) {
        if (slots_[slot].hash != high) continue;
        const Entry& e = entries[slots_[slot].entry - 1];
        if (AsciiCaselessEqual{}(e.name, name)) return &e;
    }
    return nullptr;
}

ProfileDocument ProfileDocument::parse(std::string_view bytes) {
    ProfileDocument doc;
    std::string converted;
    if (bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
        static_cast<unsigned char>(bytes[1]) == 0xFE) {
        converted = utf16leToUtf8(bytes.substr(2));
        bytes = converted;
    } else if (!isAscii(bytes)) {
        converted = cp1252ToUtf8(bytes);
        bytes = converted;
    }
    doc.text_.assign(bytes.begin(), bytes.end());
    doc.entries_.reserve(bytes.size() / 24);  // a layout's lines are about this long

    // Lines end at any run of CR and LF; lines before the first header belong to no listed section.
    const char* at = doc.text_.data();
    const char* const end = at + doc.text_.size();
    while (at < end) {
        const char* lineEnd = at;
        while (lineEnd < end && *lineEnd != '\r' && *lineEnd != '\n') ++lineEnd;
        std::string_view line(at, static_cast<size_t>(lineEnd - at));
        at = lineEnd;
        while (at < end && (*at == '\r' || *at == '\n')) ++at;

        line = trimProfileSpace(line);
        if (line.empty()) continue;
        if (line.front() == '[') {
            const size_t close = line.rfind(']');
            if (close != std::string_view::npos) {
                Section s;
                s.name = trimProfileSpace(line.substr(1, close - 1));
                s.hash = AsciiCaselessHash{}(s.name);
                s.firstEntry = doc.entries_.size();
                doc.sections_.push_back(std::move(s));
                continue;
            }
        }
        if (doc.sections_.empty()) continue;
        Entry e;
        const size_t eq = line.find('=');
        if (eq == std::string_view::npos) {
            e.name = line;
        } else {
            e.hasEquals = true;
            e.name = trimProfileSpace(line.substr(0, eq));
            e.value = trimProfileSpace(line.substr(eq + 1));
            doc.longestValue_ = std::max(doc.longestValue_, e.value.size());
        }
        e.hash = AsciiCaselessHash{}(e.name);
        doc.entries_.push_back(e);
        ++doc.sections_.back().entryCount;
    }
    // Index once every entry has its place.
    doc.sectionNames_.reserve(doc.sections_.size());
    for (const Section& s : doc.sections_) doc.sectionNames_.push_back(Entry{s.name, {}, s.hash, true, false});
    doc.sectionIndex_.build(doc.sectionNames_, 0, doc.sectionNames_.size(), false, doc.sectionNames_);
    for (Section& s : doc.sections_) s.index.build(doc.entries_, s.firstEntry, s.entryCount, true, doc.entries_);
    return doc;
}

std::optional<ProfileDocument> ProfileDocument::load(const std::filesystem::path& file, std::string* error,
                                                     uintmax_t maxBytes) {
    auto fail = [&](const std::string& why) -> std::optional<ProfileDocument> {
        if (error) *error = why;
        return std::nullopt;
    };
    std::error_code ec;
    if (!std::filesystem::is_regular_file(file, ec)) return fail("not a readable file: " + pathText(file));
    const uintmax_t size = std::filesystem::file_size(file, ec);
    if (ec) return fail("cannot read " + pathText(file) + ": " + ec.message());
    if (size > maxBytes) return fail("file too large (" + std::to_string(size) + " bytes): " + pathText(file));
    std::ifstream in(file, std::ios::binary);
    if (!in) return fail("cannot open " + pathText(file));
    std::string bytes(static_cast<size_t>(size), '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(size));
    bytes.resize(static_cast<size_t>(in.gcount()));
    return parse(bytes);
}

const ProfileDocument::Section* ProfileDocument::section(std::string_view name) const {
    name = trimProfileSpace(name);
    const Entry* e = sectionIndex_.find(sectionNames_, name, AsciiCaselessHash{}(name));
    return e ? &sections_[static_cast<size_t>(e - sectionNames_.data())] : nullptr;
}

const ProfileDocument::Entry* ProfileDocument::findEntry(const Section* s, std::string_view key) const {
    if (!s) return nullptr;
    key = trimProfileSpace(key);
    return s->index.find(entries_, key, AsciiCaselessHash{}(key));
}

const ProfileDocument::Entry* ProfileDocument::findEntry(Cursor& c, std::string_view key) const {
    if (!c.section) return nullptr;
    key = trimProfileSpace(key);
    const uint64_t hash = AsciiCaselessHash{}(key);
    const Section& s = *c.section;
    if (c.next < s.entryCount) {
        const Entry& e = entries_[s.firstEntry + c.next];
        if (e.firstOfName && e.hash == hash && AsciiCaselessEqual{}(e.name, key)) {
            ++c.next;
            return &e;
        }
    }
    const Entry* e = s.index.find(entries_, key, hash);
    if (e) c.next = static_cast<size_t>(e - entries_.data()) - s.firstEntry + 1;
    return e;
}

std::optional<std::string_view> ProfileDocument::rawValue(Cursor& c, std::string_view key) const {
    const Entry* e = findEntry(c, key);
    if (!e || !e->hasEquals) return std::nullopt;
    return e->value;
}

int32_t ProfileDocument::getInt(Cursor& c, std::string_view key, int32_t defaultValue) const {
    auto raw = rawValue(c, key);
    if (!raw) return defaultValue;
    return parseProfileInt(stripProfileQuotes(*raw)).value_or(defaultValue);
}

std::optional<std::string_view> ProfileDocument::rawValue(const Section* s, std::string_view key) const {
    const Entry* e = findEntry(s, key);
    if (!e || !e->hasEquals) return std::nullopt;
    return e->value;
}

std::optional<std::string_view> ProfileDocument::rawValue(std::string_view section, std::string_view key) const {
    return rawValue(this->section(section), key);
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

int32_t ProfileDocument::getInt(const Section* section, std::string_view key, int32_t defaultValue) const {
    auto raw = rawValue(section, key);
    if (!raw) return defaultValue;
    return parseProfileInt(stripProfileQuotes(*raw)).value_or(defaultValue);
}

int32_t ProfileDocument::getInt(std::string_view section, std::string_view key, int32_t defaultValue) const {
    return getInt(this->section(section), key, defaultValue);
}

std::vector<std::string> ProfileDocument::keys(std::string_view section) const {
    std::vector<std::string> out;
    if (const Section* s = this->section(section))
        for (size_t i = s->firstEntry; i < s->firstEntry + s->entryCount; ++i) {
            const Entry& e = entries_[i];
            if (e.hasEquals && (e.name.empty() || e.name.front() != ';')) out.emplace_back(e.name);
        }
    return out;
}

std::vector<std::string> ProfileDocument::sections() const {
    std::vector<std::string> out;
    out.reserve(sections_.size());
    for (const auto& s : sections_) out.emplace_back(s.name);
    return out;
}

bool ProfileDocument::hasSection(std::string_view section) const {
    return this->section(section) != nullptr;
}

}  // namespace kestrin
