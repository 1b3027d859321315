// Parses any bytes as a profile file and reads every section and key back the ways the
// layout reader does: strings with the full and a tiny buffer, integers and raw values.
#include <algorithm>

#include "FuzzSupport.h"
#include "persist/ProfileDocument.h"

using namespace kestrin;

namespace {
size_t characters(const std::string& utf8) {
    return static_cast<size_t>(std::count_if(utf8.begin(), utf8.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const ProfileDocument doc = ProfileDocument::parse(fuzz::bytesOf(data, size));
    const std::vector<std::string> sections = doc.sections();
    const size_t sectionCount = std::min<size_t>(sections.size(), 64);
    for (size_t s = 0; s < sectionCount; ++s) {
        const std::string& section = sections[s];
        if (!doc.hasSection(section)) fuzz::fail("a listed section is not found", section, {});
        const std::vector<std::string> keys = doc.keys(section);
        const size_t keyCount = std::min<size_t>(keys.size(), 256);
        for (size_t k = 0; k < keyCount; ++k) {
            const std::string& key = keys[k];
            const std::string full = doc.getString(section, key, "?");
            const std::string cut = doc.getString(section, key, "?", 4);
            // The buffer counts Windows-1252 characters; the text comes back as UTF-8.
            if (characters(cut) > 3) fuzz::fail("a value is longer than its buffer", cut, {});
            if (characters(full) > 1023) fuzz::fail("a value is longer than its buffer", full, {});
            (void)doc.getInt(section, key, -1);
            (void)doc.rawValue(section, key);  // may be none: an earlier entry of that name without "="
        }
    }
    return 0;
}
