// Reads any bytes as a host project file for its database fields and image types, and looks
// every field up again by its database name and column.
#include "FuzzSupport.h"
#include "persist/HostFields.h"

using namespace kestrin;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    HostFieldList list;
    std::vector<std::string> warnings;
    list.fetchFromBytes(fuzz::bytesOf(data, size), &warnings);
    if (list.count() != static_cast<int16_t>(list.fields().size())) fuzz::fail("the field count disagrees", {}, {});
    for (const HostField& f : list.fields()) {
        if (list.byDbField(f.dbField) == nullptr) fuzz::fail("a field is not found by its name", f.dbField, {});
        if (list.byColumn(f.column) == nullptr) fuzz::fail("a field is not found by its column", f.dbField, {});
        (void)fieldTypeCode(f.fieldType);
    }
    if (list.imageTypes().size() > static_cast<size_t>(std::max<int16_t>(list.imageTypeCount(), 0)))
        fuzz::fail("more image types than counted", {}, {});
    return 0;
}
