#include "ProfileWriter.h"

#include <charconv>
#include <iterator>

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

size_t ProfileWriter::Index::findOrAdd(const ProfileWriter& w, std::vector<Name>& names, std::string_view name,
                                       uint64_t hash, bool& added) {
    if ((size_ + 1) * 2 > slots_.size()) grow(names);
    const size_t mask = slots_.size() - 1;
    size_t slot = hash & mask;
    for (; slots_[slot] != 0; slot = (slot + 1) & mask) {
        const Name& n = names[slots_[slot] - 1];
        if (n.hash == hash && AsciiCaselessEqual{}(w.view(n.text), name)) {
            added = false;
            return slots_[slot] - 1;
        }
    }
    added = true;
    slots_[slot] = static_cast<uint32_t>(names.size() + 1);
    ++size_;
    return names.size();
}

void ProfileWriter::Index::addDistinct(const ProfileWriter& w, std::vector<Name>& names, size_t first) {
    for (size_t i = first; i < names.size(); ++i) {
        names[i].hash = AsciiCaselessHash{}(w.view(names[i].text));
        if ((size_ + 1) * 2 > slots_.size()) grow(names);
        insert(names, i);
        ++size_;
    }
}

void ProfileWriter::Index::insert(const std::vector<Name>& names, size_t number) {
    const size_t mask = slots_.size() - 1;
    size_t slot = names[number].hash & mask;
    while (slots_[slot] != 0) slot = (slot + 1) & mask;
    slots_[slot] = static_cast<uint32_t>(number + 1);
}

void ProfileWriter::Index::grow(const std::vector<Name>& names) {
    slots_.assign(slots_.empty() ? 16 : slots_.size() * 2, 0);
    for (size_t i = 0; i < size_; ++i) insert(names, i);
}

ProfileWriter::Text ProfileWriter::keep(std::string_view piece) {
    const Text t{static_cast<uint32_t>(text_.size()), static_cast<uint32_t>(piece.size())};
    text_.append(piece);
    if (ascii_) ascii_ = isAscii(piece);
    return t;
}

ProfileWriter::Text ProfileWriter::keepValue(std::string_view value) {
    value = trimProfileSpace(value);
    const Text t{static_cast<uint32_t>(text_.size()), static_cast<uint32_t>(value.size())};
    text_.append(value);
    unsigned char high = 0;
    for (size_t i = t.at; i < t.at + t.size; ++i) {
        char& c = text_[i];
        high |= static_cast<unsigned char>(c);
        if (c == '\r' || c == '\n') c = ' ';
    }
    if (high & 0x80) ascii_ = false;
    return t;
}

ProfileWriter::Section& ProfileWriter::sectionNamed(std::string_view name) {
    for (const Recent& r : recent_)
        if (r.at == name.data() && r.size == name.size() && view(sections_[r.section].name.text) == name)
            return sections_[r.section];
    const uint64_t hash = AsciiCaselessHash{}(name);
    bool added = false;
    const size_t i = sectionIndex_.findOrAdd(*this, sectionNames_, name, hash, added);
    if (added) {
        sectionNames_.push_back(Name{keep(name), hash, {}});
        sections_.push_back(Section{sectionNames_.back(), {}, {}});
    }
    recent_[nextRecent_++ % std::size(recent_)] = Recent{name.data(), name.size(), i};
    return sections_[i];
}

void ProfileWriter::write(std::string_view section, std::string_view key, std::string_view value) {
    const std::string_view sectionName = trimProfileSpace(section);
    const std::string_view keyName = trimProfileSpace(key);
    if (sectionName.empty() || keyName.empty()) return;  // never write nameless sections or keys

    Section& s = sectionNamed(sectionName);
    if (s.indexed < s.keys.size()) {  // keys written as new are searched from now on
        s.index.addDistinct(*this, s.keys, s.indexed);
        s.indexed = s.keys.size();
    }
    const uint64_t hash = AsciiCaselessHash{}(keyName);
    bool added = false;
    const size_t i = s.index.findOrAdd(*this, s.keys, keyName, hash, added);
    if (added) {
        s.keys.push_back(Name{keep(keyName), hash, keepValue(value)});
        s.indexed = s.keys.size();
    } else {
        s.keys[i].value = keepValue(value);
    }
}

void ProfileWriter::writeNew(std::string_view section, std::string_view key, std::string_view value) {
    const std::string_view sectionName = trimProfileSpace(section);
    if (sectionName.empty() || key.empty() || trimProfileSpace(key).size() != key.size())
        return write(section, key, value);
    Section& s = sectionNamed(sectionName);
    s.keys.push_back(Name{keep(key), 0, keepValue(value)});
}

void ProfileWriter::writeInt(std::string_view section, std::string_view key, int64_t value) {
    char buf[24];
    const auto end = std::to_chars(buf, buf + sizeof buf, value).ptr;
    write(section, key, std::string_view(buf, static_cast<size_t>(end - buf)));
}

std::string ProfileWriter::bytes() const {
    size_t size = 0;
    for (const auto& s : sections_) {
        size += s.name.text.size + 4;
        for (const Name& k : s.keys) size += k.text.size + k.value.size + 3;
    }
    std::string out;
    out.reserve(size);
    auto append = [this, &out](Text t) {
        const std::string_view piece = view(t);
        if (ascii_ || isAscii(piece))
            out += piece;
        else
            out += utf8ToCp1252(piece);
    };
    for (const auto& s : sections_) {
        out += '[';
        append(s.name.text);
        out += "]\r\n";
        for (const Name& k : s.keys) {
            append(k.text);
            out += '=';
            append(k.value);
            out += "\r\n";
        }
    }
    return out;
}

}  // namespace kestrin
