#pragma once
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "AsciiCaseless.h"

namespace kestrin {

// A profile (INI) file as the Windows profile functions read it: CR/LF runs end lines,
// lines are trimmed, names match case-insensitively, the first of duplicate sections and
// keys wins. It is parsed in one pass over one copy of the text, with no allocation per
// entry, because hosts and the command-line tool open layouts by the thousand. Text is UTF-8 in memory; the file is Windows-1252 unless it starts with a
// UTF-16LE byte-order mark.
class ProfileDocument {
public:
    ProfileDocument() = default;
    ProfileDocument(ProfileDocument&&) noexcept = default;
    ProfileDocument& operator=(ProfileDocument&&) noexcept = default;
    // Names and values are views into the document's own text, so it is moved, never copied.
    ProfileDocument(const ProfileDocument&) = delete;
    ProfileDocument& operator=(const ProfileDocument&) = delete;

    static ProfileDocument parse(std::string_view bytes);
    // Reads a file of at most maxBytes; nothing (and an error text) when it cannot be read.
    static std::optional<ProfileDocument> load(const std::filesystem::path& file, std::string* error,
                                               uintmax_t maxBytes = kDefaultMaxBytes);

    // The first section of a name, found once for many lookups; null when there is none.
    struct Section;
    const Section* section(std::string_view name) const;

    // Lookups in one section of keys that mostly come in the section's own order (a layout's
    // colour and type sections follow its encode sections): each first tries the entry after
    // the one found last, and only then the section's index. Same answers as by name.
    struct Cursor {
        const Section* section = nullptr;
        size_t next = 0;  // entry number within the section
    };
    Cursor cursor(std::string_view section) const { return Cursor{this->section(section)}; }
    int32_t getInt(Cursor& cursor, std::string_view key, int32_t defaultValue) const;
    std::optional<std::string_view> rawValue(Cursor& cursor, std::string_view key) const;

    // GetPrivateProfileStringA with a buffer of bufferSize characters.
    std::string getString(std::string_view section, std::string_view key, std::string_view defaultText,
                          size_t bufferSize = 1024) const;
    // GetPrivateProfileIntA.
    int32_t getInt(std::string_view section, std::string_view key, int32_t defaultValue) const;
    int32_t getInt(const Section* section, std::string_view key, int32_t defaultValue) const;
    // The entry's raw value (quotes kept), or nothing when there is no entry with "=".
    std::optional<std::string_view> rawValue(std::string_view section, std::string_view key) const;
    std::optional<std::string_view> rawValue(const Section* section, std::string_view key) const;
    // Key names of the first matching section that have "=" and do not start with ";".
    std::vector<std::string> keys(std::string_view section) const;
    // The same keys, each once (as its first entry with "="), in file order, with the value a
    // lookup of the key gives: visit(name, rawValue or nothing).
    template <class Visit>
    void forEachDistinctKey(const Section* section, Visit&& visit) const;
    // Every section name in file order, duplicates included.
    std::vector<std::string> sections() const;
    bool hasSection(std::string_view section) const;
    // The longest value in UTF-8 bytes, quotes included (at least its length in characters).
    size_t longestValueBytes() const { return longestValue_; }

    static constexpr uintmax_t kDefaultMaxBytes = 64u * 1024u * 1024u;

    struct Entry {
        std::string_view name, value;
        uint64_t hash = 0;           // of the name, letter case ignored
        bool hasEquals = false;
        bool distinctKey = false;    // the first entry of its name among the listed keys
        bool firstOfName = false;    // the entry a lookup of its name finds
    };
    // An open-addressing table of entry numbers by name: the first entry of a name wins.
    class NameIndex {
    public:
        void build(const std::vector<Entry>& entries, size_t first, size_t count, bool markDistinct,
                   std::vector<Entry>& marked);
        const Entry* find(const std::vector<Entry>& entries, std::string_view name, uint64_t hash) const;

    private:
        struct Slot {
            uint32_t entry = 0;  // entry number + 1; 0 is free
            uint32_t hash = 0;   // the high half of the name's hash, to pass other names without reading them
        };
        std::vector<Slot> slots_;
        size_t mask_ = 0;
    };
    struct Section {
        std::string_view name;
        uint64_t hash = 0;
        size_t firstEntry = 0, entryCount = 0;
        NameIndex index;
    };

private:
    const Entry* findEntry(const Section* section, std::string_view key) const;
    const Entry* findEntry(Cursor& cursor, std::string_view key) const;

    std::vector<char> text_;  // the file's text in UTF-8; a vector keeps its storage when moved
    std::vector<Entry> entries_;
    std::vector<Section> sections_;
    std::vector<Entry> sectionNames_;  // one per section, indexed by sectionIndex_
    NameIndex sectionIndex_;
    size_t longestValue_ = 0;
};

template <class Visit>
void ProfileDocument::forEachDistinctKey(const Section* section, Visit&& visit) const {
    if (!section) return;
    for (size_t i = section->firstEntry; i < section->firstEntry + section->entryCount; ++i) {
        const Entry& e = entries_[i];
        if (!e.distinctKey) continue;
        const Entry* first = e.firstOfName ? &e : section->index.find(entries_, e.name, e.hash);
        visit(e.name, first && first->hasEquals ? std::optional<std::string_view>(first->value) : std::nullopt);
    }
}

// Whitespace as the profile functions trim it: 0x09 to 0x0D, 0x1A and the blank.
inline bool isProfileSpace(char c) {
    return (c >= 0x09 && c <= 0x0D) || c == 0x1A || c == ' ';
}
inline std::string_view trimProfileSpace(std::string_view text) {
    size_t b = 0, e = text.size();
    while (b < e && isProfileSpace(text[b])) ++b;
    while (e > b && isProfileSpace(text[e - 1])) --e;
    return text.substr(b, e - b);
}
// Parses a value as GetPrivateProfileIntA does (first 29 characters, signs, 0x/0o/0b prefixes,
// unsigned 32-bit wraparound); nothing for an empty value.
std::optional<int32_t> parseProfileInt(std::string_view value);
// Removes one matching pair of outer quotes (' or "), as the string reader does.
std::string_view stripProfileQuotes(std::string_view value);

}  // namespace kestrin
