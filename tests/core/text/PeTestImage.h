#pragma once
// Builds small PE images in memory so that the DLL reader can be fed exact, and hostile,
// resource tables that no resource compiler would write.
#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrin::test {

constexpr uint32_t Subdirectory = 0x80000000u;
constexpr uint32_t ResourceRva = 0x1000;        // where peImage() maps the resource section
constexpr std::size_t ResourceSection = 0x200;  // and where it lies in the file
constexpr std::size_t OptionalHeader = 0x58;
constexpr std::size_t rvaCountAt(bool plus) { return OptionalHeader + (plus ? 108 : 92); }
constexpr std::size_t resourceDirectoryAt(bool plus) { return rvaCountAt(plus) + 20; }
constexpr std::size_t sectionTableAt(bool plus) { return OptionalHeader + (plus ? 240 : 224); }

// Little-endian writer.
struct ByteWriter {
    std::string s;
    ByteWriter& u16(uint32_t v) { s.append(2, '\0'); return put(s.size() - 2, v, 2); }
    ByteWriter& u32(uint32_t v) { s.append(4, '\0'); return put(s.size() - 4, v, 4); }
    ByteWriter& bytes(std::string_view b) { s += b; return *this; }
    ByteWriter& zerosTo(std::size_t size) { s.resize(std::max(size, s.size()), '\0'); return *this; }
    ByteWriter& directory(uint32_t named, uint32_t ids) { return u32(0).u32(0).u32(0).u16(named).u16(ids); }
    ByteWriter& entry(uint32_t name, uint32_t target) { return u32(name).u32(target); }
    ByteWriter& dataEntry(uint32_t rva, uint32_t size) { return u32(rva).u32(size).u32(0).u32(0); }
    // A string block: 16 slots, each a length and its UTF-16LE units.
    ByteWriter& block(const std::vector<std::u16string>& slots) {
        for (std::size_t i = 0; i < 16; ++i) {
            u16(i < slots.size() ? static_cast<uint32_t>(slots[i].size()) : 0);
            for (const char16_t unit : i < slots.size() ? slots[i] : u"") u16(unit);
        }
        return *this;
    }
    // Overwrites width bytes at offset at.
    ByteWriter& put(std::size_t at, uint32_t v, int width = 4) {
        for (int i = 0; i < width; ++i) s[at + i] = static_cast<char>(v >> 8 * i & 0xFF);
        return *this;
    }
};

// A DLL image with one section that holds rsrc at ResourceRva, named as the resource table
// by the data directory.
inline ByteWriter peImage(std::string_view rsrc, bool plus = false) {
    const auto size = static_cast<uint32_t>(rsrc.size());
    const uint32_t rawSize = (size + 0x1FF) / 0x200 * 0x200;
    ByteWriter image;
    image.bytes("MZ").zerosTo(0x3C).u32(0x40).bytes(std::string_view("PE\0\0", 4));
    image.u16(plus ? 0x8664 : 0x14C).u16(1).u32(0).u32(0).u32(0);
    image.u16(static_cast<uint32_t>(sectionTableAt(plus) - OptionalHeader)).u16(0x2102).u16(plus ? 0x20B : 0x10B);
    image.zerosTo(rvaCountAt(plus)).u32(16).zerosTo(resourceDirectoryAt(plus)).u32(ResourceRva).u32(size);
    image.zerosTo(sectionTableAt(plus)).bytes(".rsrc").zerosTo(sectionTableAt(plus) + 8);
    image.u32(size).u32(ResourceRva).u32(rawSize).u32(ResourceSection);
    image.zerosTo(ResourceSection).bytes(rsrc).zerosTo(ResourceSection + rawSize);
    return image;
}

// One string block, its language versions written in the order given.
struct TestBlock { uint32_t block; std::vector<std::pair<uint32_t, std::vector<std::u16string>>> languages; };

// A well-formed resource table holding only string blocks: root and type directories, the
// language directories, their data entries, the blocks.
inline std::string stringTableSection(const std::vector<TestBlock>& blocks) {
    const auto at = [](std::size_t offset) { return static_cast<uint32_t>(offset); };
    std::size_t languageCount = 0;
    for (const TestBlock& b : blocks) languageCount += b.languages.size();
    const std::size_t languagesAt = 40 + 8 * blocks.size();
    const std::size_t entriesAt = languagesAt + 16 * blocks.size() + 8 * languageCount;
    const std::size_t dataAt = entriesAt + 16 * languageCount;
    ByteWriter table, languages, entries, data;
    table.directory(0, 1).entry(6, Subdirectory | 24).directory(0, at(blocks.size()));
    for (const TestBlock& b : blocks) {
        table.entry(b.block, Subdirectory | at(languagesAt + languages.s.size()));
        languages.directory(0, at(b.languages.size()));
        for (const auto& [language, slots] : b.languages) {
            languages.entry(language, at(entriesAt + entries.s.size()));
            const std::size_t start = data.s.size();
            data.block(slots);
            entries.dataEntry(ResourceRva + at(dataAt + start), at(data.s.size() - start));
        }
    }
    return table.s + languages.s + entries.s + data.s;
}

}  // namespace kestrin::test
