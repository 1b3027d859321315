#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "AsciiCaseless.h"

namespace kestrin {

// Builds a profile file in memory with exactly the bytes that the same sequence of
// WritePrivateProfileStringA calls leaves in a new file: sections in the order first
// written, keys in the order first written, a repeated key replaced in place, every
// line "key=value" CRLF. Text is UTF-8 in memory and Windows-1252 in bytes().
class ProfileWriter {
public:
    void write(std::string_view section, std::string_view key, std::string_view value);
    void writeInt(std::string_view section, std::string_view key, int64_t value);
    std::string bytes() const;
    bool empty() const { return sections_.empty(); }

private:
    using NameIndex = std::unordered_map<std::string, size_t, AsciiCaselessHash, AsciiCaselessEqual>;
    struct Section {
        std::string name;
        std::vector<std::pair<std::string, std::string>> entries;
        NameIndex index;
    };
    std::vector<Section> sections_;
    NameIndex index_;
};

// A value as the profile functions keep it: line breaks become blanks, and leading and
// trailing whitespace is dropped (no reader could see it).
std::string profileSafeValue(std::string_view value);

}  // namespace kestrin
