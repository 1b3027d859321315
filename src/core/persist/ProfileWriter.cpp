#include "ProfileWriter.h"

#include <charconv>

#include "AsciiCaseless.h"
#include "Cp1252.h"
#include "ProfileDocument.h"

namespace kestrin {

std::string profileSafeValue(std::string_view value) {
    std::string out(trimProfileSpace(value));
    for (char& c : out)
        if (c == '\r' || c == '\n') c = ' ';
    return out;
}

void ProfileWriter::Section::growIndex() {
    slots.assign(slots.empty() ? 16 : slots.size() * 2, 0);
    const size_t mask = slots.size() - 1;
    for (size_t i = 0; i < indexed; ++i) {
        size_t slot = keys[i].hash & mask;
        while (slots[slot] != 0) slot = (slot + 1) & mask;
        slots[slot] = static_cast<uint32_t>(i + 1);
    }
}

// Keys written as new join the index only when a search needs it.
void ProfileWriter::Section::indexTo(size_t count) {
    for (; indexed < count; ++indexed) {
        Key& k = keys[indexed];
        k.hash = AsciiCaselessHash{}(keyText(k));
        if ((indexed + 1) * 2 > slots.size()) growIndex();
        const size_t mask = slots.size() - 1;
        size_t slot = k.hash & mask;
        while (slots[slot] != 0) slot = (slot + 1) & mask;
        slots[slot] = static_cast<uint32_t>(indexed + 1);
    }
}

size_t ProfileWriter::Section::find(std::string_view key, uint64_t hash) const {
    if (slots.empty()) return keys.size();
    const size_t mask = slots.size() - 1;
    for (size_t slot = hash & mask; slots[slot] != 0; slot = (slot + 1) & mask) {
        const Key& k = keys[slots[slot] - 1];
        if (k.hash == hash && AsciiCaselessEqual{}(keyText(k), key)) return slots[slot] - 1;
    }
    return keys.size();
}

ProfileWriter::Section& ProfileWriter::sectionNamed(std::string_view name) {
    const auto found = sectionIndex_.find(name);
    const size_t i = found != sectionIndex_.end() ? found->second : sections_.size();
    if (i == sections_.size()) {
        Section& s = sections_.emplace_back();
        sectionIndex_.emplace(s.name.assign(name), i);
        if (!isAscii(name)) ascii_ = false;
        for (const Expected& e : expected_)
            if (AsciiCaselessEqual{}(e.section, name)) {
                s.keys.reserve(e.keys);
                s.lines.reserve(e.lineBytes);
            }
    }
    return sections_[i];
}

// Adds "key=value" CRLF to the section's lines, the value trimmed and without line breaks.
void ProfileWriter::append(Section& s, std::string_view key, std::string_view value) {
    value = trimProfileSpace(value);
    Key k;
    k.at = static_cast<uint32_t>(s.lines.size());
    k.size = static_cast<uint32_t>(key.size());
    k.valueAt = k.at + k.size + 1;
    k.valueSize = static_cast<uint32_t>(value.size());
    s.lines.resize(s.lines.size() + key.size() + value.size() + 3);
    char* at = s.lines.data() + k.at;
    unsigned char high = 0;
    for (char c : key) {
        high |= static_cast<unsigned char>(c);
        *at++ = c;
    }
    *at++ = '=';
    for (char c : value) {
        high |= static_cast<unsigned char>(c);
        *at++ = c == '\r' || c == '\n' ? ' ' : c;
    }
    *at++ = '\r';
    *at = '\n';
    if (high & 0x80) ascii_ = false;
    s.keys.push_back(k);
}

void ProfileWriter::write(std::string_view section, std::string_view key, std::string_view value) {
    const std::string_view sectionName = trimProfileSpace(section);
    const std::string_view keyName = trimProfileSpace(key);
    if (sectionName.empty() || keyName.empty()) return;  // never write nameless sections or keys

    Section& s = sectionNamed(sectionName);
    s.indexTo(s.keys.size());
    const uint64_t hash = AsciiCaselessHash{}(keyName);
    const size_t i = s.find(keyName, hash);
    if (i == s.keys.size()) {
        append(s, keyName, value);
        s.indexTo(s.keys.size());
        return;
    }
    // The key keeps its place; its new value is kept aside and put in when the file is built.
    const std::string safe = profileSafeValue(value);
    if (!isAscii(safe)) ascii_ = false;
    Key& k = s.keys[i];
    k.replaced = true;
    k.valueAt = static_cast<uint32_t>(s.replacedValues.size());
    k.valueSize = static_cast<uint32_t>(safe.size());
    s.replacedValues += safe;
    s.anyReplaced = true;
}

size_t ProfileWriter::writeNew(std::string_view section, std::string_view key, std::string_view value) {
    const std::string_view sectionName = trimProfileSpace(section);
    if (sectionName.empty() || key.empty() || trimProfileSpace(key).size() != key.size()) {
        write(section, key, value);
        return kNoSection;
    }
    Section& s = sectionNamed(sectionName);
    append(s, key, value);
    return static_cast<size_t>(&s - sections_.data());
}

void ProfileWriter::writeNew(size_t section, std::string_view key, std::string_view value) {
    if (key.empty() || trimProfileSpace(key).size() != key.size())
        return write(sections_[section].name, key, value);
    append(sections_[section], key, value);
}

void ProfileWriter::expect(std::string_view section, size_t keys, size_t lineBytes) {
    expected_.push_back(Expected{std::string(trimProfileSpace(section)), keys, lineBytes});
}

void ProfileWriter::writeInt(std::string_view section, std::string_view key, int64_t value) {
    char buf[24];
    const auto end = std::to_chars(buf, buf + sizeof buf, value).ptr;
    write(section, key, std::string_view(buf, static_cast<size_t>(end - buf)));
}

std::string ProfileWriter::bytes() const {
    size_t size = 0;
    for (const auto& s : sections_) size += s.name.size() + 4 + s.lines.size() + s.replacedValues.size();
    std::string out;
    out.reserve(size);
    auto append = [this, &out](std::string_view piece) {
        if (ascii_ || isAscii(piece))
            out += piece;
        else
            out += utf8ToCp1252(piece);
    };
    for (const auto& s : sections_) {
        out += '[';
        append(s.name);
        out += "]\r\n";
        if (ascii_ && !s.anyReplaced) {
            out += s.lines;  // the lines as they stand
            continue;
        }
        for (const Key& k : s.keys) {
            append(s.keyText(k));
            out += '=';
            append(s.valueText(k));
            out += "\r\n";
        }
    }
    return out;
}

}  // namespace kestrin
