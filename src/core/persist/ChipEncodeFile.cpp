#include "ChipEncodeFile.h"

#include <unordered_set>

#include "HostFields.h"
#include "ProfileWriter.h"

namespace kestrin {

std::vector<std::string> usedHostFields(std::string_view usedFieldList, const HostFieldList& fields) {
    std::vector<std::string> used;
    if (usedFieldList.empty()) return used;
    // With ")" put in front, a name is used exactly when it equals the text that follows
    // some ")" up to the next "(" (or the end of the list).
    std::string list(1, ')');
    list += usedFieldList;
    std::unordered_set<std::string_view> names;
    for (size_t i = 0; i < list.size(); ++i) {
        if (list[i] != ')') continue;
        const size_t start = i + 1;
        const size_t open = list.find('(', start);
        names.insert(std::string_view(list).substr(start, open == std::string::npos ? std::string::npos : open - start));
    }
    // Items name their fields by the database field name or, in older layouts, by the
    // display name; either way the field is written once, under the name the items use.
    for (const HostField& f : fields.fields()) {
        if (names.count(f.name) != 0)
            used.push_back(f.name);
        else if (names.count(f.dbField) != 0)
            used.push_back(f.dbField);
    }
    return used;
}

std::string renderChipEncodeFile(std::string_view usedFieldList, const std::vector<int16_t>& bigItemNumbers,
                                 const HostFieldList& fields) {
    ProfileWriter w;
    w.write("ChipEncode", "LK_Version", kChipEncodeVersion);
    if (!bigItemNumbers.empty()) {
        std::string images;
        for (int16_t n : bigItemNumbers) {
            if (!images.empty()) images += ',';
            images += std::to_string(n);
        }
        w.write("ChipEncode", "Images", images);
    }
    w.write("ChipEncode", "DllName", kEncoderLibrary);
    w.writeInt("ChipEncode", "ChipType", 1);
    int n = 0;
    for (const std::string& name : usedHostFields(usedFieldList, fields)) {
        const std::string section = std::to_string(++n) + "Field";
        w.write(section, "Type", "DataField");
        w.write(section, "Data", name);
    }
    w.writeInt("Track1", "FieldCount", n);
    return w.bytes();
}

}  // namespace kestrin
