// Reads any bytes as a text catalog and asks it for texts.
#include "FuzzSupport.h"
#include "text/TextCatalog.h"

using namespace kestrin;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string error;
    const auto catalog = TextCatalog::parse(fuzz::bytesOf(data, size), &error);
    if (!catalog) {
        if (error.empty()) fuzz::fail("a refused catalog gives no reason", {}, {});
        return 0;
    }
    for (int32_t id : {0, 1, 1572, 3104, 3250, 4621, 65535}) {
        const auto text = catalog->lookup(id);
        if (text != catalog->lookup(id + 65536)) fuzz::fail("an id's high bits change its text", {}, {});
        if (text && text->size() > 255 * 3) fuzz::fail("a text is longer than 255 units", *text, {});
    }
    for (const auto& w : catalog->warnings())
        if (w.line == 0 || w.message.empty()) fuzz::fail("a warning without line or text", w.message, {});
    return 0;
}
