#include "BenchLayouts.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <system_error>

#include <unistd.h>

#include "card/CardGeometry.h"

namespace kestrin::bench {

namespace fs = std::filesystem;

namespace {

// A builder that cannot build what a scenario promises stops the whole run: a benchmark
// of a smaller layout than its name says would report a misleading time.
void require(bool condition, const std::string& what) {
    if (condition) return;
    std::fprintf(stderr, "kestrin-bench: %s\n", what.c_str());
    std::abort();
}

struct BytePlace {
    int16_t page = 0;
    int16_t block = 0;
    int16_t byte = 0;
};

// Every byte items may use, page by page, from each page's first free block to its end.
std::vector<BytePlace> freeBytes(const CIClass& card) {
    std::vector<BytePlace> places;
    for (const CPage* p : card.Pages().list())
        for (int32_t block = p->BeginFreeSpace; block < p->blockCount(); ++block)
            for (int32_t byte = 0; byte < kBytesPerBlock; ++byte)
                places.push_back({static_cast<int16_t>(p->PageNumber), static_cast<int16_t>(block),
                                  static_cast<int16_t>(byte)});
    return places;
}

ItemRecord byteItem(int32_t index, const BytePlace& at) {
    ItemRecord r;
    r.name = fieldName(index);
    r.page = at.page;
    r.block = at.block;
    r.beginByte = at.byte;
    r.numBytes = 1;
    r.fieldType = fieldTypeCode("Character");
    r.color = distinctColor(index);
    return r;
}

// itemCount one-byte items on the card's free bytes, starting again at the first free
// byte when the card is full; item i is host field i.
void fillBytes(BenchLayout& layout, int32_t itemCount) {
    const std::vector<BytePlace> places = freeBytes(layout.card);
    require(!places.empty(), "the card has no free bytes");
    layout.records.reserve(static_cast<size_t>(itemCount));
    for (int32_t i = 0; i < itemCount; ++i)
        require(layout.records.add(byteItem(i, places[static_cast<size_t>(i) % places.size()])),
                "the record array is full");
    layout.fields.setFields(makeHostFields(itemCount));
    layout.hostFieldCount = itemCount;
}

BenchLayout cardOf(IClassType type) {
    BenchLayout layout;
    layout.card.setChipSize(type);
    layout.card.setUseHIDSection(true);
    return layout;
}
}  // namespace

std::string fieldName(int32_t index) {
    char text[16];
    std::snprintf(text, sizeof text, "F%04d", static_cast<int>(index + 1));
    return text;
}

int32_t distinctColor(int32_t index) {
    // An odd multiplier is a one-to-one map on 24-bit numbers, and it spreads
    // neighbouring items over very different colours.
    return static_cast<int32_t>((static_cast<uint32_t>(index) * 0x9E3779B1u) & 0xFFFFFFu);
}

std::vector<HostField> makeHostFields(int32_t count) {
    std::vector<HostField> fields;
    fields.reserve(static_cast<size_t>(count));
    for (int32_t i = 0; i < count; ++i) {
        const std::string name = fieldName(i);
        fields.push_back(HostField{name, name, "Character", 1, static_cast<int16_t>(i), true});
    }
    return fields;
}

BenchLayout makeOnePageByteLayout() {
    BenchLayout layout = cardOf(iBigOnePage);
    require(freeBytes(layout.card).size() == kOnePageFreeBytes, "the one-page card does not have 1,896 free bytes");
    fillBytes(layout, kOnePageFreeBytes);
    return layout;
}

BenchLayout makeOnePageBitLayout() {
    BenchLayout layout = cardOf(iBigOnePage);
    layout.card.setEnableBitwise(true);
    const std::vector<BytePlace> places = freeBytes(layout.card);
    require(places.size() == kOnePageFreeBytes, "the one-page card does not have 1,896 free bytes");
    layout.records.reserve(places.size() * kBitsPerByte);
    for (size_t f = 0; f < places.size(); ++f) {
        for (int16_t bit = 0; bit < kBitsPerByte; ++bit) {
            ItemRecord r;
            r.isBit = true;
            r.name = fieldName(static_cast<int32_t>(f));
            r.page = places[f].page;
            r.block = places[f].block;
            r.beginByte = places[f].byte;
            r.beginBit = bit;
            r.numBits = 1;
            r.fieldType = fieldTypeCode("Character");
            r.color = distinctColor(static_cast<int32_t>(f) * kBitsPerByte + bit);
            require(layout.records.add(r), "the record array is full");
        }
    }
    layout.fields.setFields(makeHostFields(kOnePageFreeBytes));
    layout.hostFieldCount = kOnePageFreeBytes;
    return layout;
}

BenchLayout makeEightPageByteLayout() {
    BenchLayout layout = cardOf(iBigEightPages);
    require(freeBytes(layout.card).size() == kEightPageFreeBytes, "the eight-page card does not have 1,560 free bytes");
    fillBytes(layout, kEightPageFreeBytes);
    return layout;
}

BenchLayout makeScaledByteLayout(int32_t itemCount) {
    BenchLayout layout = cardOf(iBigOnePage);
    fillBytes(layout, itemCount);
    return layout;
}

TempFolder::TempFolder() {
    static std::atomic<int> counter{0};
    std::random_device seed;
    const fs::path base = fs::temp_directory_path();
    for (int attempt = 0; attempt < 100 && path_.empty(); ++attempt) {
        const fs::path candidate = base / ("kestrin-bench-" + std::to_string(::getpid()) + "-" +
                                           std::to_string(counter++) + "-" + std::to_string(seed() % 100000));
        std::error_code ec;
        if (fs::create_directory(candidate, ec)) path_ = candidate;
    }
    require(!path_.empty(), "cannot create a folder under " + base.string());
}

TempFolder::~TempFolder() {
    std::error_code ec;
    fs::remove_all(path_, ec);
}

}  // namespace kestrin::bench
