#pragma once
// Shared builders for the save and open benchmarks: full cards, their host
// fields, a throw-away folder and a prompter that never shows anything.
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "base/Prompter.h"
#include "text/Translator.h"

namespace kestrin::bench {

// A card with its items and the host fields they come from.
struct BenchLayout {
    CIClass card;
    RecordArray records;
    HostFieldList fields;
    int32_t hostFieldCount = 0;  // how many host fields the items use (one chip encode entry each)
};

// Free bytes of a 16 kbit one-page card with the HID section on: blocks 19 to 255.
inline constexpr int32_t kOnePageFreeBytes = (256 - 19) * 8;  // 1,896
// Free bytes of an eight-page card with the HID section on: page 0 from block 19, the
// other seven pages from block 6, 32 blocks a page.
inline constexpr int32_t kEightPageFreeBytes = (32 - 19) * 8 + 7 * (32 - 6) * 8;  // 1,560

// "F0001", "F0002" ...: the host field (and item) name of the 0-based index.
std::string fieldName(int32_t index);
// A different 24-bit colour for every index below 2^24.
int32_t distinctColor(int32_t index);
// count host fields of type "Character", each named and stored under fieldName(i).
std::vector<HostField> makeHostFields(int32_t count);

// (a) a 16 kbit one-page card, HID on, a one-byte "Field" item on every free byte,
// each item its own host field.
BenchLayout makeOnePageByteLayout();
// (b) the same card with bit-wise placement on and a one-bit "Bit Field" item on every
// free bit; the 1,896 host fields each carry the eight bits of one byte.
BenchLayout makeOnePageBitLayout();
// (c) an eight-page card, HID on, default boundaries, a one-byte "Field" item on every
// free byte of every page, each item its own host field.
BenchLayout makeEightPageByteLayout();
// An (a)-style layout of itemCount one-byte items, each its own host field. Past the
// card's 1,896 free bytes the places start again from block 19: the file formats take
// any number of items, so this measures how save and open grow with the item count.
BenchLayout makeScaledByteLayout(int32_t itemCount);

// Answers Yes to every question and shows nothing.
class SilentPrompter : public Prompter {
public:
    void tell(Icon, const std::string&, const std::string&) override {}
    Answer ask(Icon, const std::string&, Buttons, const std::string&) override { return Answer::Yes; }
};

// A new empty folder under the system temporary folder, removed with everything in it.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace kestrin::bench
