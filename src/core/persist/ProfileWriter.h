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
// Each section keeps its lines as the file will hold them, with an open-addressing index
// over its keys, so a write costs no allocation of its own and bytes() mostly copies whole
// sections: a layout of thousands of items is built in little more than its lines take to copy.
class ProfileWriter {
public:
    void write(std::string_view section, std::string_view key, std::string_view value);
    void writeInt(std::string_view section, std::string_view key, int64_t value);
    // A write of a key that no earlier write to the section used, as the caller knows: it
    // skips the search for an entry to replace. The key must be trimmed and not empty.
    // Returns the section's number for further writes of new keys to it (kNoSection when the
    // write was not one of a new key after all).
    size_t writeNew(std::string_view section, std::string_view key, std::string_view value);
    void writeNew(size_t section, std::string_view key, std::string_view value);
    static constexpr size_t kNoSection = static_cast<size_t>(-1);
    std::string bytes() const;
    bool empty() const { return sections_.empty(); }
    // Room for about this many keys and bytes of lines once the section is first written, so
    // that a large section grows once; it does not create the section.
    void expect(std::string_view section, size_t keys, size_t lineBytes);

private:
    struct Key {
        uint32_t at = 0, size = 0;             // the key in its section's lines
        uint32_t valueAt = 0, valueSize = 0;   // the value: in the lines, or in the replaced values
        uint64_t hash = 0;                     // of the key, letter case ignored; 0 until indexed
        bool replaced = false;
    };
    struct Section {
        std::string name;
        std::string lines;           // "key=value\r\n" for each key, as first written
        std::string replacedValues;  // values written over earlier ones
        std::vector<Key> keys;
        std::vector<uint32_t> slots;  // key number + 1 by hash; 0 is free
        size_t indexed = 0;           // keys before this one are in slots
        bool anyReplaced = false;

        std::string_view keyText(const Key& k) const { return std::string_view(lines).substr(k.at, k.size); }
        std::string_view valueText(const Key& k) const {
            return std::string_view(k.replaced ? replacedValues : lines).substr(k.valueAt, k.valueSize);
        }
        void indexTo(size_t count);
        void growIndex();
        // The number of the key equal to this one (letter case ignored), or keys.size() when none is.
        size_t find(std::string_view key, uint64_t hash) const;
    };

    Section& sectionNamed(std::string_view name);
    void append(Section& s, std::string_view key, std::string_view value);

    std::vector<Section> sections_;
    // Section numbers by name: a chip encode file has a section for every field it uses.
    std::unordered_map<std::string, size_t, AsciiCaselessHash, AsciiCaselessEqual> sectionIndex_;
    bool ascii_ = true;  // nothing above 0x7F written: bytes() needs no conversion
    struct Expected {
        std::string section;
        size_t keys, lineBytes;
    };
    std::vector<Expected> expected_;
};

// A value as the profile functions keep it: line breaks become blanks, and leading and
// trailing whitespace is dropped (no reader could see it).
std::string profileSafeValue(std::string_view value);

}  // namespace kestrin
