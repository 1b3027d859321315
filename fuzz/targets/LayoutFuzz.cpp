// Opens any bytes as a layout, the way the control does, then checks that what it read can
// be saved without loss: the saved file opens with the same items. They may come in another
// order the first time, because items are read section by section (multi-track items, for
// one, are saved as fields), and with that the keys' numbers may change; from then on the
// saved file is a fixed point.
#include <algorithm>
#include "FuzzSupport.h"
#include "document/LayoutDocument.h"
#include "persist/ChipEncodeFile.h"
#include "persist/StorableText.h"
#include "rules/LayoutAudit.h"

using namespace kestrin;

namespace {

const HostFieldList& projectFields() {
    static const HostFieldList fields = [] {
        HostFieldList list;
        list.setFields({{"Name", "NAME", "Character", 30, 0, true},
                        {"Number", "EMPNR", "Number", 10, 1, true},
                        {"Issued", "ISSUED", "Date", 8, 2, true},
                        {"Photo", "PHOTO", "Binary", 0, 3, true}});
        return list;
    }();
    return fields;
}

// The same records, in any order.
bool sameItems(const RecordArray& a, const RecordArray& b) {
    if (a.size() != b.size()) return false;
    std::vector<ItemRecord> left, right;
    for (int32_t i = 0; i < a.size(); ++i) left.push_back(a[i]), right.push_back(b[i]);
    return std::is_permutation(left.begin(), left.end(), right.begin());
}

// Control characters and bytes beyond ASCII as \xNN, so a report shows the names as they are.
std::string escaped(const std::string& text) {
    static const char* digits = "0123456789ABCDEF";
    std::string out;
    for (unsigned char c : text) {
        if (c >= 0x20 && c < 0x7F) {
            out += static_cast<char>(c);
        } else {
            out += "\\x";
            out += digits[c >> 4];
            out += digits[c & 15];
        }
    }
    return out;
}

std::string describe(const RecordArray& records) {
    std::string out;
    for (int32_t i = 0; i < records.size(); ++i) {
        const ItemRecord& r = records[i];
        out += "name=" + escaped(r.name) + " flags=" + std::to_string(r.isFunction) + std::to_string(r.isDbUpdate) +
               std::to_string(r.isBit) + std::to_string(r.isSimpleBitFunction) + std::to_string(r.isBitFunction) +
               std::to_string(r.isBinary) + " place=" + std::to_string(r.page) + "," + std::to_string(r.block) + "," +
               std::to_string(r.beginByte) + "," + std::to_string(r.beginBit) + " size=" + std::to_string(r.numBytes) +
               "," + std::to_string(r.numBits) + " enc=" + std::to_string(r.encodingCode) +
               " type=" + std::to_string(r.fieldType) + " color=" + std::to_string(r.color) +
               " big=" + std::to_string(r.bigItemNumber) + " params=[" + escaped(r.param1) + "|" + escaped(r.param2) + "|" + escaped(r.param3) +
               "] poly=" + std::to_string(r.polynomial[0]) + "," + std::to_string(r.polynomial[1]) +
               " init=" + std::to_string(r.initValue) + " range=";
        for (int16_t v : r.range) out += std::to_string(v) + ",";
        out += " db=" + escaped(r.dbFieldName) + "/" + std::to_string(r.dbColumn) + "\n";
    }
    return out;
}

}  // namespace

// A layout document over the project's fields, answering questions as told.
struct Opened {
    explicit Opened(Answer answer) : prompter(answer) { doc.fields() = projectFields(); }
    fuzz::SilentPrompter prompter;
    LayoutDocument doc{prompter};
};

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string_view bytes = fuzz::bytesOf(data, size);
    // The first byte decides the answer to the later-version question, so both paths run.
    Opened first(size > 0 && (data[0] & 1) ? Answer::No : Answer::Yes);
    if (!first.doc.openBytes(bytes).opened) return 0;
    const RecordArray& records = first.doc.records();

    (void)first.doc.audit();
    // A name or value that a layout file cannot hold makes the save refuse with a message.
    if (unstorableItem(records)) return 0;
    const RenderedLayout saved = first.doc.renderFile();
    (void)renderChipEncodeFile(saved.usedFieldList, saved.bigItemNumbers, projectFields());

    Opened again(Answer::Yes);
    if (!again.doc.openBytes(saved.bytes).opened) fuzz::fail("a saved layout does not open", saved.bytes, {});
    if (!sameItems(records, again.doc.records()))
        fuzz::fail("a saved layout opens with other items", describe(records), describe(again.doc.records()));
    const RenderedLayout second = again.doc.renderFile();

    Opened third(Answer::Yes);
    (void)third.doc.openBytes(second.bytes);
    const RenderedLayout fixed = third.doc.renderFile();
    if (fixed.bytes != second.bytes) fuzz::fail("a saved layout is not a fixed point", second.bytes, fixed.bytes);
    return 0;
}
