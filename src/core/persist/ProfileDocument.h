#pragma once
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "AsciiCaseless.h"

namespace kestrin {

// A profile (INI) file as the Windows profile functions read it: CR/LF runs end lines,
// lines are trimmed, names match case-insensitively, the first of duplicate sections and
// keys wins. Text is UTF-8 in memory; the file is Windows-1252 unless it starts with a
// UTF-16LE byte-order mark.
class ProfileDocument {
public:
    struct Entry {
        std::string name;
        std::string value;
        bool hasEquals = false;
    };
    struct Section {
        std::string name;
        std::vector<Entry> entries;
        // Name -> index of its first entry; the views point into entries.
        std::unordered_map<std::string_view, size_t, AsciiCaselessHash, AsciiCaselessEqual> firstEntry;
    };

    ProfileDocument() = default;
    ProfileDocument(ProfileDocument&&) noexcept = default;
    ProfileDocument& operator=(ProfileDocument&&) noexcept = default;
    // The name indexes point into the document's own strings, so it is moved, never copied.
    ProfileDocument(const ProfileDocument&) = delete;
    ProfileDocument& operator=(const ProfileDocument&) = delete;

    static ProfileDocument parse(std::string_view bytes);
    // Reads a file of at most maxBytes; nothing (and an error text) when it cannot be read.
    static std::optional<ProfileDocument> load(const std::filesystem::path& file, std::string* error,
                                               uintmax_t maxBytes = kDefaultMaxBytes);

    // GetPrivateProfileStringA with a buffer of bufferSize characters.
    std::string getString(std::string_view section, std::string_view key, std::string_view defaultText,
                          size_t bufferSize = 1024) const;
    // GetPrivateProfileIntA.
    int32_t getInt(std::string_view section, std::string_view key, int32_t defaultValue) const;
    // The entry's raw value (quotes kept), or nothing when there is no entry with "=".
    std::optional<std::string_view> rawValue(std::string_view section, std::string_view key) const;
    // Key names of the first matching section that have "=" and do not start with ";".
    std::vector<std::string> keys(std::string_view section) const;
    // Every section name in file order, duplicates included.
    std::vector<std::string> sections() const;
    bool hasSection(std::string_view section) const;
    // The longest value in UTF-8 bytes, quotes included (at least its length in characters).
    size_t longestValueBytes() const { return longestValue_; }

    static constexpr uintmax_t kDefaultMaxBytes = 64u * 1024u * 1024u;

private:
    const Section* findSection(std::string_view name) const;
    const Entry* findEntry(std::string_view section, std::string_view key) const;

    std::vector<Section> sections_;
    size_t longestValue_ = 0;
    std::unordered_map<std::string_view, size_t, AsciiCaselessHash, AsciiCaselessEqual> firstSection_;
};

// Whitespace as the profile functions trim it: 0x09 to 0x0D, 0x1A and the blank.
bool isProfileSpace(char c);
std::string_view trimProfileSpace(std::string_view text);
std::string asciiLower(std::string_view text);
// Parses a value as GetPrivateProfileIntA does (first 29 characters, signs, 0x/0o/0b prefixes,
// unsigned 32-bit wraparound); nothing for an empty value.
std::optional<int32_t> parseProfileInt(std::string_view value);
// Removes one matching pair of outer quotes (' or "), as the string reader does.
std::string_view stripProfileQuotes(std::string_view value);

}  // namespace kestrin
