#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

// Builds a profile file in memory with exactly the bytes that the same sequence of
// WritePrivateProfileStringA calls leaves in a new file: sections in the order first
// written, keys in the order first written, a repeated key replaced in place, every
// line "key=value" CRLF. Text is UTF-8 in memory and Windows-1252 in bytes().
// Names and values are kept in one growing text with open-addressing indexes over them,
// so a write costs no allocation of its own: a layout of thousands of items is built in
// about the time its lines take to copy.
class ProfileWriter {
public:
    void write(std::string_view section, std::string_view key, std::string_view value);
    void writeInt(std::string_view section, std::string_view key, int64_t value);
    // A write of a key that no earlier write to the section used, as the caller knows: it
    // skips the search for an entry to replace. The key must be trimmed and not empty.
    void writeNew(std::string_view section, std::string_view key, std::string_view value);
    // Room for about this many bytes of names and values, to grow the text once.
    void reserve(size_t bytes) { text_.reserve(bytes); }
    std::string bytes() const;
    bool empty() const { return sections_.empty(); }

private:
    struct Text {
        uint32_t at = 0, size = 0;  // a piece of text_
    };
    struct Name {
        Text text;
        uint64_t hash = 0;
        Text value;  // for a key; unused for a section
    };
    // Numbers of names by hash; the names themselves live in a vector beside it.
    class Index {
    public:
        // The number of the name that equals (letter case ignored), or the number given to it now.
        size_t findOrAdd(const ProfileWriter& w, std::vector<Name>& names, std::string_view name, uint64_t hash,
                         bool& added);
        // Takes in the names from first on, known to be distinct from each other and the rest.
        void addDistinct(const ProfileWriter& w, std::vector<Name>& names, size_t first);

    private:
        void grow(const std::vector<Name>& names);
        void insert(const std::vector<Name>& names, size_t number);
        std::vector<uint32_t> slots_;  // name number + 1; 0 is free
        size_t size_ = 0;              // names in slots_
    };
    struct Section {
        Name name;
        std::vector<Name> keys;
        Index index;
        size_t indexed = 0;  // keys written before this many are in the index
    };

    std::string_view view(Text t) const { return std::string_view(text_).substr(t.at, t.size); }
    Text keep(std::string_view piece);
    Text keepValue(std::string_view value);
    Section& sectionNamed(std::string_view name);

    std::string text_;
    bool ascii_ = true;  // no byte of text_ above 0x7F: bytes() needs no conversion
    std::vector<Section> sections_;
    std::vector<Name> sectionNames_;
    Index sectionIndex_;
    // The sections written last, by where the caller keeps their names: writes come in runs
    // over a few sections, and a hit is confirmed by comparing the names.
    struct Recent {
        const char* at = nullptr;
        size_t size = 0, section = 0;
    };
    Recent recent_[8];
    size_t nextRecent_ = 0;
};

// A value as the profile functions keep it: line breaks become blanks, and leading and
// trailing whitespace is dropped (no reader could see it).
std::string profileSafeValue(std::string_view value);

}  // namespace kestrin
