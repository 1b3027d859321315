// Reads any bytes as a Windows language library and asks it for texts.
#include "FuzzSupport.h"
#include "text/PeStringTable.h"

using namespace kestrin;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string error;
    const auto table = PeStringTable::parse(fuzz::bytesOf(data, size), &error);
    if (!table) {
        if (error.empty()) fuzz::fail("a refused library gives no reason", {}, {});
        return 0;
    }
    // Only the low 16 bits of an id count, and a text holds at most 255 UTF-16 units.
    for (int32_t id : {0, 1, 16, 1572, 3104, 3250, 4621, 65535}) {
        const auto text = table->lookup(id);
        if (text != table->lookup(id + 65536)) fuzz::fail("an id's high bits change its text", {}, {});
        if (text && text->size() > 255 * 3) fuzz::fail("a text is longer than 255 units", *text, {});
    }
    if (table->lookup(-1) != table->lookup(65535)) fuzz::fail("id -1 is not id 65535", {}, {});
    return 0;
}
