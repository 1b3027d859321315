#include "text/PeStringTable.h"

#include <cstdio>
#include <utility>
#include <vector>

#include "text/UtfConvert.h"

namespace kestrin {
namespace {

constexpr uint32_t StringTableType = 6;
constexpr uint32_t LanguageNeutral = 0x0000;
constexpr uint32_t LanguageEnglishUs = 0x0409;
constexpr uint32_t HighBit = 0x80000000u;
constexpr uint32_t SlotsPerBlock = 16;
constexpr uint32_t HighestBlock = 0xFFFF / SlotsPerBlock + 1;
// Real DLLs hold a few thousand entries; the cap keeps a hostile tree from costing minutes.
constexpr uint64_t MaxEntriesVisited = 1u << 20;

// Why a file cannot be read; caught in parse() and turned into the error text.
struct Refusal {
    std::string reason;
};

[[noreturn]] void refuse(std::string reason) { throw Refusal{std::move(reason)}; }

std::string hex(uint32_t value)
{
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "0x%X", value);
    return buffer;
}

// A window on the file's bytes whose every read is checked against its end.
class ByteWindow {
public:
    explicit ByteWindow(std::string_view bytes) : m_bytes(bytes) {}

    bool holds(uint64_t offset, uint64_t length) const
    {
        return offset <= m_bytes.size() && length <= m_bytes.size() - offset;
    }
    uint16_t u16(uint64_t offset) const { return static_cast<uint16_t>(byte(offset) | byte(offset + 1) << 8); }
    uint32_t u32(uint64_t offset) const { return uint32_t{u16(offset)} | uint32_t{u16(offset + 2)} << 16; }
    std::string_view slice(uint64_t offset, uint64_t length) const { return m_bytes.substr(offset, length); }
    std::size_t size() const { return m_bytes.size(); }

private:
    uint32_t byte(uint64_t offset) const
    {
        if (offset >= m_bytes.size())  // callers check first; this keeps a missed check harmless
            refuse("damaged file: a read past the end of its data");
        return static_cast<unsigned char>(m_bytes[offset]);
    }

    std::string_view m_bytes;
};

struct Section {
    uint32_t virtualAddress;
    uint32_t virtualSize;
    uint32_t rawSize;
    uint32_t rawPointer;
};

// The headers of a PE image: its format, its sections and where its resource table is.
struct PeHeaders {
    PeStringTable::Format format = PeStringTable::Format::Pe32;
    std::vector<Section> sections;
    std::optional<uint32_t> resourceRva;
};

PeHeaders readHeaders(const ByteWindow& file)
{
    if (!file.holds(0, 2) || file.slice(0, 2) != "MZ")
        refuse("not a Windows DLL (no MZ signature)");
    if (!file.holds(0x3C, 4))
        refuse("truncated file: the DOS header is incomplete");
    const uint64_t pe = file.u32(0x3C);
    if (!file.holds(pe, 2))
        refuse("truncated file or DOS program: the new header offset points past the end");
    if (file.slice(pe, 2) == "NE")
        refuse("a 16-bit Windows (NE) file; only 32- and 64-bit Windows DLLs can be read");
    if (!file.holds(pe, 4) || file.slice(pe, 4) != std::string_view("PE\0\0", 4))
        refuse("not a 32- or 64-bit Windows DLL (no PE signature)");
    const uint64_t coff = pe + 4;
    if (!file.holds(coff, 20))
        refuse("truncated file: the COFF header is incomplete");
    const uint32_t sectionCount = file.u16(coff + 2);
    const uint32_t optionalSize = file.u16(coff + 16);
    const uint64_t optional = coff + 20;
    if (optionalSize < 2 || !file.holds(optional, optionalSize))
        refuse("truncated file: the optional header is incomplete");

    PeHeaders headers;
    const uint32_t magic = file.u16(optional);
    uint32_t countOffset = 0;
    if (magic == 0x10B) {
        headers.format = PeStringTable::Format::Pe32;
        countOffset = 92;
    } else if (magic == 0x20B) {
        headers.format = PeStringTable::Format::Pe32Plus;
        countOffset = 108;
    } else {
        refuse("unknown optional header magic " + hex(magic) + " (neither PE32 nor PE32+)");
    }
    // Without a resource directory entry the image simply has no texts.
    const uint32_t resourceEntry = countOffset + 4 + 2 * 8;
    if (optionalSize >= countOffset + 4 && file.u32(optional + countOffset) > 2 &&
        optionalSize >= resourceEntry + 8) {
        const uint32_t rva = file.u32(optional + resourceEntry);
        if (rva != 0 && file.u32(optional + resourceEntry + 4) != 0)
            headers.resourceRva = rva;
    }

    const uint64_t table = optional + optionalSize;
    if (!file.holds(table, uint64_t{sectionCount} * 40))
        refuse("truncated file: the section table is incomplete");
    for (uint32_t i = 0; i < sectionCount; ++i) {
        const uint64_t at = table + uint64_t{i} * 40;
        headers.sections.push_back({file.u32(at + 12), file.u32(at + 8), file.u32(at + 16), file.u32(at + 20)});
    }
    return headers;
}

// The file's bytes from rva to the end of the data of the section that holds rva.
std::string_view sectionTail(const ByteWindow& file, const PeHeaders& headers, uint32_t rva, const std::string& what)
{
    for (const Section& s : headers.sections) {
        const uint64_t span = s.virtualSize != 0 ? s.virtualSize : s.rawSize;
        if (rva < s.virtualAddress || rva - s.virtualAddress >= span)
            continue;
        if (!file.holds(s.rawPointer, s.rawSize))
            refuse("truncated file: the section holding " + what + " ends past the end of the file");
        const uint64_t inSection = rva - s.virtualAddress;
        if (inSection >= s.rawSize)
            refuse(what + " lies outside its section's data (packed or damaged file)");
        return file.slice(s.rawPointer + inSection, s.rawSize - inSection);
    }
    refuse(what + " lies outside every section (packed or damaged file)");
}

std::string_view mapRva(const ByteWindow& file, const PeHeaders& headers, uint32_t rva, uint32_t length,
                        const std::string& what)
{
    const std::string_view tail = sectionTail(file, headers, rva, what);
    if (length > tail.size())
        refuse(what + " runs past its section's data (packed or damaged file)");
    return tail.substr(0, length);
}

struct DirectoryEntry {
    uint32_t id;
    uint32_t target;  // relative to the resource table; HighBit set for a subdirectory
};

// The resource table: directories and data entries at offsets relative to its start.
class ResourceTree {
public:
    explicit ResourceTree(std::string_view table) : m_table(table) {}

    // The id entries of the directory at offset; named entries are of no use to id lookups.
    std::vector<DirectoryEntry> idEntries(uint32_t offset)
    {
        if (!m_table.holds(offset, 16))
            refuse("damaged resource table: a directory lies past the end of the resource section");
        const uint64_t count = uint64_t{m_table.u16(offset + 12)} + m_table.u16(offset + 14);
        if (!m_table.holds(uint64_t{offset} + 16, count * 8))
            refuse("damaged resource table: a directory's entries run past the end of the resource section");
        m_visited += count;
        if (m_visited > MaxEntriesVisited)
            refuse("damaged resource table: too many directory entries");
        std::vector<DirectoryEntry> entries;
        for (uint64_t i = 0; i < count; ++i) {
            const uint64_t at = offset + 16 + i * 8;
            const uint32_t name = m_table.u32(at);
            if ((name & HighBit) == 0)
                entries.push_back({name & 0xFFFF, m_table.u32(at + 4)});
        }
        return entries;
    }

    // Data RVA and size of the data entry at offset.
    std::pair<uint32_t, uint32_t> dataEntry(uint32_t offset) const
    {
        if (!m_table.holds(offset, 16))
            refuse("damaged resource table: a data entry lies past the end of the resource section");
        return {m_table.u32(offset), m_table.u32(offset + 4)};
    }

private:
    ByteWindow m_table;
    uint64_t m_visited = 0;
};

std::optional<DirectoryEntry> chooseLanguage(const std::vector<DirectoryEntry>& languages)
{
    for (const uint32_t wanted : {LanguageNeutral, LanguageEnglishUs})
        for (const DirectoryEntry& entry : languages)
            if (entry.id == wanted)
                return entry;
    if (languages.empty())
        return std::nullopt;
    return languages.front();
}

void readBlock(uint32_t block, std::string_view data, std::unordered_map<uint16_t, std::string>& texts)
{
    const ByteWindow window(data);
    uint64_t at = 0;
    for (uint32_t slot = 0; slot < SlotsPerBlock; ++slot) {
        if (!window.holds(at, 2))
            refuse("damaged string block " + std::to_string(block) + ": it ends before its 16 texts");
        const uint32_t length = window.u16(at);
        at += 2;
        if (!window.holds(at, uint64_t{length} * 2))
            refuse("damaged string block " + std::to_string(block) + ": a text runs past the block's end");
        if (length != 0) {
            std::u16string units(length, u'\0');
            for (uint32_t i = 0; i < length; ++i)
                units[i] = static_cast<char16_t>(window.u16(at + uint64_t{i} * 2));
            const auto id = static_cast<uint16_t>((block - 1) * SlotsPerBlock + slot);
            texts.emplace(id, utf16ToUtf8(cutUtf16(units)));
        }
        at += uint64_t{length} * 2;
    }
}

std::unordered_map<uint16_t, std::string> readStringTables(const ByteWindow& file, const PeHeaders& headers)
{
    std::unordered_map<uint16_t, std::string> texts;
    if (!headers.resourceRva)
        return texts;
    // The tree may reach to the end of its section's data, whatever size the header claims.
    const std::string_view table = sectionTail(file, headers, *headers.resourceRva, "the resource table");
    ResourceTree tree(table);

    std::optional<DirectoryEntry> stringType;
    for (const DirectoryEntry& entry : tree.idEntries(0))
        if (entry.id == StringTableType) {
            stringType = entry;
            break;
        }
    if (!stringType)
        return texts;
    if ((stringType->target & HighBit) == 0)
        refuse("damaged resource table: the string-table entry is not a directory");

    std::vector<bool> seen(HighestBlock + 1, false);
    for (const DirectoryEntry& blockEntry : tree.idEntries(stringType->target & ~HighBit)) {
        const uint32_t block = blockEntry.id;
        if (block == 0 || block > HighestBlock || seen[block])
            continue;  // no id reaches it, or an earlier entry already gave this block
        seen[block] = true;
        if ((blockEntry.target & HighBit) == 0)
            refuse("damaged resource table: string block " + std::to_string(block) + " is not a directory");
        const auto language = chooseLanguage(tree.idEntries(blockEntry.target & ~HighBit));
        if (!language)
            continue;
        if ((language->target & HighBit) != 0)
            refuse("damaged resource table: string block " + std::to_string(block) +
                   " nests deeper than three levels");
        const auto [rva, size] = tree.dataEntry(language->target);
        const std::string what = "the data of string block " + std::to_string(block);
        readBlock(block, mapRva(file, headers, rva, size, what), texts);
    }
    return texts;
}

}  // namespace

PeStringTable::PeStringTable(Format format, std::unordered_map<uint16_t, std::string> texts)
    : m_format(format), m_texts(std::move(texts))
{
}

std::unique_ptr<PeStringTable> PeStringTable::parse(std::string_view image, std::string* error)
{
    try {
        const ByteWindow file(image);
        const PeHeaders headers = readHeaders(file);
        auto texts = readStringTables(file, headers);
        return std::unique_ptr<PeStringTable>(new PeStringTable(headers.format, std::move(texts)));
    } catch (const Refusal& refusal) {
        if (error)
            *error = refusal.reason;
        return nullptr;
    }
}

std::optional<std::string> PeStringTable::lookup(int32_t id) const
{
    const auto found = m_texts.find(static_cast<uint16_t>(id));
    if (found == m_texts.end())
        return std::nullopt;
    return found->second;
}

}  // namespace kestrin
