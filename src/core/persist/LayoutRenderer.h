#pragma once
#include <cstdint>
#include <string>
#include <vector>

namespace kestrin {

class CIClass;
class RecordArray;
class HostFieldList;

// A layout file built in memory, with what the chip encode file needs from the same save.
struct RenderedLayout {
    std::string bytes;                  // the layout file, Windows-1252
    std::string usedFieldList;          // every field key written, "Name(1)Other(1)", plus "Text()" entries
    std::vector<int16_t> bigItemNumbers;  // in item order
    std::vector<std::string> warnings;
};

// Writes GENERAL and CARDDESIGN, then the item sections in two passes over the records
// (checksums last), with the bytes that the old key-by-key profile writes produced.
RenderedLayout renderLayoutFile(const CIClass& card, const RecordArray& records, const HostFieldList& fields);

}  // namespace kestrin
