#include "StorableText.h"

#include "Cp1252.h"
#include "ProfileDocument.h"
#include "items/RecordArray.h"

namespace kestrin {

namespace {

bool fitsCp1252(std::string_view text) {
    return isAscii(text) || cp1252ToUtf8(utf8ToCp1252(text)) == text;
}

bool hasLineBreak(std::string_view text) {
    return text.find_first_of("\r\n") != std::string_view::npos;
}

// The names an item is stored under: one key per field, one per part of a combined field.
template <typename Visit>
bool eachKeyName(const ItemRecord& r, Visit visit) {
    if (r.isFunction || r.isDbUpdate || r.isBitFunction || r.isSimpleBitFunction) return true;
    if (!isCombinedField(r)) return visit(std::string_view(r.name));
    for (const std::string& part : splitCombinedName(r.name))
        if (!visit(std::string_view(part))) return false;
    return true;
}

}  // namespace

std::optional<std::string> unstorableName(std::string_view name) {
    if (trimProfileSpace(name).empty()) return "an item has no name";
    const std::string quoted = "the name \"" + std::string(name) + "\"";
    if (trimProfileSpace(name).size() != name.size()) return quoted + " starts or ends with a blank";
    if (name.front() == '[' || name.front() == ';') return quoted + " starts with \"" + name.front() + "\"";
    if (name.find('=') != std::string_view::npos) return quoted + " holds \"=\"";
    if (hasLineBreak(name)) return quoted + " holds a line break";
    if (!fitsCp1252(name)) return quoted + " holds characters outside Windows-1252";
    return std::nullopt;
}

std::optional<std::string> unstorableValue(std::string_view value) {
    const std::string quoted = "the value \"" + std::string(value) + "\"";
    if (hasLineBreak(value)) return quoted + " holds a line break";
    if (value.find("/@") != std::string_view::npos) return quoted + " holds \"/@\"";
    if (!fitsCp1252(value)) return quoted + " holds characters outside Windows-1252";
    return std::nullopt;
}

std::optional<std::string> unstorableItem(const RecordArray& records) {
    std::optional<std::string> why;
    for (const ItemRecord& r : records) {
        // Items named "Checksum" are saved as checksum functions, whatever else they are.
        if (r.name == kFunctionChecksum && !r.isFunction && !r.isBitFunction && !r.isSimpleBitFunction)
            return "The layout was not saved: the name \"Checksum\" belongs to checksum functions, which a layout "
                   "file cannot hold for another item.";
        eachKeyName(r, [&](std::string_view name) {
            why = unstorableName(name);
            return !why;
        });
        for (const std::string* p : {&r.param1, &r.param2, &r.param3})
            if (!why) why = unstorableValue(*p);
        if (why) return "The layout was not saved: " + *why + ", which a layout file cannot hold.";
    }
    return std::nullopt;
}

}  // namespace kestrin
