#pragma once
// Builds small PE images in memory so that the DLL reader can be fed exact, and hostile,
// resource tables that no resource compiler would write.
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace kestrin::test {

// Little-endian writer with patching at known offsets.
class ByteWriter {
public:
    ByteWriter& u16(uint32_t value)
    {
        m_bytes += static_cast<char>(value & 0xFF);
        m_bytes += static_cast<char>((value >> 8) & 0xFF);
        return *this;
    }
    ByteWriter& u32(uint32_t value) { return u16(value & 0xFFFF).u16(value >> 16); }
    ByteWriter& bytes(std::string_view data)
    {
        m_bytes += data;
        return *this;
    }
    ByteWriter& zerosTo(std::size_t size)
    {
        if (m_bytes.size() < size)
            m_bytes.resize(size, '\0');
        return *this;
    }
    // A resource directory header with the given entry counts.
    ByteWriter& directory(uint32_t namedCount, uint32_t idCount)
    {
        return u32(0).u32(0).u32(0).u16(namedCount).u16(idCount);
    }
    ByteWriter& entry(uint32_t name, uint32_t target) { return u32(name).u32(target); }
    // A resource data entry.
    ByteWriter& dataEntry(uint32_t rva, uint32_t size) { return u32(rva).u32(size).u32(0).u32(0); }
    // A string block: 16 slots, each a length and its UTF-16LE units.
    ByteWriter& block(const std::vector<std::u16string>& slots)
    {
        for (std::size_t i = 0; i < 16; ++i) {
            const std::u16string text = i < slots.size() ? slots[i] : std::u16string();
            u16(static_cast<uint32_t>(text.size()));
            for (const char16_t unit : text)
                u16(unit);
        }
        return *this;
    }

    void put16(std::size_t at, uint32_t value)
    {
        m_bytes[at] = static_cast<char>(value & 0xFF);
        m_bytes[at + 1] = static_cast<char>((value >> 8) & 0xFF);
    }
    void put32(std::size_t at, uint32_t value)
    {
        put16(at, value & 0xFFFF);
        put16(at + 2, value >> 16);
    }
    std::size_t size() const { return m_bytes.size(); }
    const std::string& str() const { return m_bytes; }

private:
    std::string m_bytes;
};

constexpr uint32_t Subdirectory = 0x80000000u;
constexpr uint32_t ResourceRva = 0x1000;

// Where the fields of a built image are, for tests that damage one of them.
struct PeLayout {
    bool pe32Plus = false;
    static constexpr std::size_t NewHeaderOffsetField = 0x3C;
    static constexpr std::size_t Signature = 0x40;
    static constexpr std::size_t SectionCount = 0x46;
    static constexpr std::size_t OptionalHeaderSize = 0x54;
    static constexpr std::size_t OptionalHeader = 0x58;
    static constexpr std::size_t ResourceSection = 0x200;
    std::size_t optionalSize() const { return pe32Plus ? 240 : 224; }
    std::size_t rvaCount() const { return OptionalHeader + (pe32Plus ? 108 : 92); }
    std::size_t resourceDirectory() const { return OptionalHeader + (pe32Plus ? 128 : 112); }
    std::size_t sectionTable() const { return OptionalHeader + optionalSize(); }
    std::size_t sectionVirtualSize() const { return sectionTable() + 8; }
    std::size_t sectionRawSize() const { return sectionTable() + 16; }
    std::size_t sectionRawPointer() const { return sectionTable() + 20; }
};

// A DLL image with one section that holds rsrc at RVA 0x1000 (file offset 0x200),
// named as the resource table by the data directory.
inline ByteWriter peImage(std::string_view rsrc, bool pe32Plus = false)
{
    const PeLayout layout{pe32Plus};
    const auto rawSize = static_cast<uint32_t>((rsrc.size() + 0x1FF) / 0x200 * 0x200);
    ByteWriter image;
    image.bytes("MZ").zerosTo(PeLayout::NewHeaderOffsetField).u32(PeLayout::Signature);
    image.bytes(std::string_view("PE\0\0", 4));
    image.u16(pe32Plus ? 0x8664 : 0x14C).u16(1).u32(0).u32(0).u32(0);
    image.u16(static_cast<uint32_t>(layout.optionalSize())).u16(0x2102);
    image.u16(pe32Plus ? 0x20B : 0x10B);
    image.zerosTo(layout.rvaCount()).u32(16);
    image.zerosTo(layout.resourceDirectory()).u32(ResourceRva).u32(static_cast<uint32_t>(rsrc.size()));
    image.zerosTo(layout.sectionTable());
    image.bytes(std::string_view(".rsrc\0\0\0", 8)).u32(static_cast<uint32_t>(rsrc.size())).u32(ResourceRva);
    image.u32(rawSize).u32(PeLayout::ResourceSection).u32(0).u32(0).u32(0).u32(0x40000040);
    image.zerosTo(PeLayout::ResourceSection).bytes(rsrc).zerosTo(PeLayout::ResourceSection + rawSize);
    return image;
}

// One language version of a string block.
struct TestLanguage {
    uint32_t language;
    std::vector<std::u16string> slots;
};

struct TestBlock {
    uint32_t block;
    std::vector<TestLanguage> languages;  // written in this order, sorted or not
};

// A well-formed resource table holding only string blocks.
inline std::string stringTableSection(const std::vector<TestBlock>& blocks)
{
    const auto offset = [](std::size_t value) { return static_cast<uint32_t>(value); };
    const std::size_t typeDirectory = 16 + 8;
    std::size_t next = typeDirectory + 16 + 8 * blocks.size();
    std::vector<std::size_t> blockDirectories;
    std::size_t languageCount = 0;
    for (const TestBlock& b : blocks) {
        blockDirectories.push_back(next);
        next += 16 + 8 * b.languages.size();
        languageCount += b.languages.size();
    }
    const std::size_t dataEntries = next;
    std::size_t data = dataEntries + 16 * languageCount;

    ByteWriter table;
    table.directory(0, 1).entry(6, Subdirectory | offset(typeDirectory));
    table.directory(0, offset(blocks.size()));
    for (std::size_t i = 0; i < blocks.size(); ++i)
        table.entry(blocks[i].block, Subdirectory | offset(blockDirectories[i]));
    std::size_t entry = dataEntries;
    for (const TestBlock& b : blocks) {
        table.directory(0, offset(b.languages.size()));
        for (const TestLanguage& language : b.languages) {
            table.entry(language.language, offset(entry));
            entry += 16;
        }
    }
    ByteWriter blobs;
    for (const TestBlock& b : blocks)
        for (const TestLanguage& language : b.languages) {
            const std::size_t start = blobs.size();
            blobs.block(language.slots);
            table.dataEntry(ResourceRva + offset(data + start), offset(blobs.size() - start));
        }
    return table.bytes(blobs.str()).str();
}

}  // namespace kestrin::test
