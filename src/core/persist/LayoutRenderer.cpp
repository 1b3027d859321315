#include "LayoutRenderer.h"

#include <charconv>


#include "LayoutSyntax.h"
#include "ProfileDocument.h"
#include "ProfileStrings.h"
#include "ProfileWriter.h"
#include "base/ProductInfo.h"
#include "card/CIClass.h"
#include "card/CardGeometry.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"

namespace kestrin {

namespace S = layout_sections;

namespace {

// Field keys "Name(n)", numbered per name (letter case ignored) from 1 in the order written.
// Two names give two different keys, since a key's last "(" follows its name. The names
// are kept in one text with an open-addressing index: thousands of items, one name each.
class FieldKeys {
public:
    std::string next(std::string_view name) {
        if ((names_.size() + 1) * 2 > slots_.size()) grow();
        const uint64_t hash = AsciiCaselessHash{}(name);
        const auto high = static_cast<uint32_t>(hash >> 32);
        const size_t mask = slots_.size() - 1;
        size_t slot = hash & mask;
        while (slots_[slot].name != 0 && !sameName(slots_[slot], high, name)) slot = (slot + 1) & mask;
        if (slots_[slot].name == 0) {
            names_.push_back(Name{text_.size(), name.size(), hash, 0});
            text_.append(name);
            slots_[slot] = Slot{static_cast<uint32_t>(names_.size()), high};
        }
        const int32_t n = ++names_[slots_[slot].name - 1].count;
        char number[16];
        char* end = std::to_chars(number, number + sizeof number, n).ptr;
        std::string key;
        key.reserve(name.size() + 2 + static_cast<size_t>(end - number));
        key.append(name).append(1, '(').append(number, static_cast<size_t>(end - number)).append(1, ')');
        return key;
    }

    // Room for this many names of about this many bytes in all, so the table grows once.
    void reserve(size_t names, size_t textBytes) {
        names_.reserve(names);
        text_.reserve(textBytes);
        size_t slots = 64;
        while (slots < names * 2) slots *= 2;
        if (names_.empty() && slots > slots_.size()) slots_.assign(slots, Slot{});  // nothing to place again
    }

private:
    struct Name {
        size_t at, size;
        uint64_t hash;
        int32_t count;
    };
    // A slot holds the high half of its name's hash, so other names are passed without reading them.
    struct Slot {
        uint32_t name = 0;  // name number + 1; 0 is free
        uint32_t high = 0;
    };
    bool sameName(const Slot& slot, uint32_t high, std::string_view name) const {
        if (slot.high != high) return false;
        const Name& n = names_[slot.name - 1];
        return AsciiCaselessEqual{}(std::string_view(text_).substr(n.at, n.size), name);
    }
    void grow() {
        slots_.assign(slots_.empty() ? 64 : slots_.size() * 2, Slot{});
        const size_t mask = slots_.size() - 1;
        for (size_t i = 0; i < names_.size(); ++i) {
            size_t slot = names_[i].hash & mask;
            while (slots_[slot].name != 0) slot = (slot + 1) & mask;
            slots_[slot] = Slot{static_cast<uint32_t>(i + 1), static_cast<uint32_t>(names_[i].hash >> 32)};
        }
    }
    std::string text_;
    std::vector<Name> names_;
    std::vector<Slot> slots_;
};

class Renderer {
public:
    Renderer(const CIClass& card, const RecordArray& records, const HostFieldList& fields)
        : card_(card), records_(records), fields_(fields) {}

    RenderedLayout run() {
        findDistinctKeys();
        writeCardDesign();
        bool anyChecksum = false;
        for (const ItemRecord& r : records_) {
            if (isChecksum(r))
                anyChecksum = true;
            else
                writeFirstPass(r);
        }
        if (anyChecksum)
            for (const ItemRecord& r : records_)
                if (isChecksum(r) && !r.isDbUpdate) writeChecksum(r);
        out_.bytes = w_.bytes();
        return std::move(out_);
    }

private:
    // fresh: the key is known to be new in the section, so the writer need not look for it.
    void string(std::string_view section, const std::string& key, std::string_view value, bool fresh = false) {
        const std::string quoted = needsQuoteGuard(value) ? quoteLayoutValue(value) : std::string();
        if (!quoted.empty()) value = quoted;
        if (fresh)
            w_.writeNew(section, key, value);
        else
            w_.write(section, key, value);
    }
    // A section written item after item: with keys known to be new, the writer finds it once.
    struct Run {
        std::string_view section;
        size_t index = ProfileWriter::kNoSection;
    };
    void string(Run& run, const std::string& key, std::string_view value, bool fresh) {
        if (!fresh || needsQuoteGuard(value)) return string(run.section, key, value, fresh);
        if (run.index != ProfileWriter::kNoSection)
            w_.writeNew(run.index, key, value);
        else
            run.index = w_.writeNew(run.section, key, value);
    }
    void integer(Run& run, const std::string& key, int64_t value, bool remember, bool fresh) {
        char buf[24];
        string(run, key, std::string_view(buf, static_cast<size_t>(std::to_chars(buf, buf + sizeof buf, value).ptr - buf)),
               fresh);
        if (remember) lastInt_ = value;
    }

    // Colours and modes are remembered: a bit checksum with an unclear mode repeats the last one.
    void integer(std::string_view section, const std::string& key, int64_t value, bool remember = false,
                 bool fresh = false) {
        char buf[24];
        string(section, key, std::string_view(buf, static_cast<size_t>(std::to_chars(buf, buf + sizeof buf, value).ptr - buf)),
               fresh);
        if (remember) lastInt_ = value;
    }

    // Keys of one field-key numbering are distinct, as the writer compares them, unless a name
    // starts with a blank (the writer trims keys). FIELDTYPE takes the keys of both numberings,
    // which meet when a name is used by byte-wise and bit-wise items alike.
    void findDistinctKeys() {
        size_t byteKeys = 0, bitKeys = 0, byteNames = 0, bitNames = 0;
        for (const ItemRecord& r : records_) {
            if (r.isDbUpdate || r.isFunction || r.isBitFunction) continue;
            ++(r.isBit ? bitKeys : byteKeys);
            (r.isBit ? bitNames : byteNames) += r.name.size();
            if (!isCombinedField(r)) {
                if (!r.name.empty() && isProfileSpace(r.name.front())) distinctKeys_ = false;
            } else {
                for (const std::string& part : splitCombinedName(r.name))
                    if (!part.empty() && isProfileSpace(part.front())) distinctKeys_ = false;
            }
        }
        distinctFieldTypes_ = distinctKeys_ && !(byteKeys && bitKeys);
        // A field's lines take about this many bytes: "F0001(1)=0,19,0,1,0".
        constexpr size_t kLineBytes = 24;
        for (auto [section, keys] : {std::pair{S::Encode, byteKeys}, {S::ItemColor, byteKeys},
                                     {S::BitEncode, bitKeys}, {S::BitItemColor, bitKeys},
                                     {S::FieldType, byteKeys + bitKeys}})
            if (keys > 0) w_.expect(section, keys, keys * kLineBytes);
        byteKeys_.reserve(byteKeys, byteNames);
        bitKeys_.reserve(bitKeys, bitNames);
        out_.usedFieldList.reserve(byteNames + bitNames + (byteKeys + bitKeys) * 6);  // "Name(n)" each
    }

    void writeCardDesign() {
        string(S::General, "Version",
               std::to_string(kVersionMajor) + "." + std::to_string(kVersionMinor) + "." + std::to_string(kVersionRevision));
        string(S::CardDesign, "Size", std::string(sizeTextOf(card_.ChipSize())));
        integer(S::CardDesign, "Pages", card_.ChipSize() == iBigEightPages ? 8 : 1);
        integer(S::CardDesign, "UseBit", card_.EnableBitwise() ? 1 : 0);
        integer(S::CardDesign, "UseHID", card_.UseHIDSection() ? 1 : 0);
        if (card_.ChipSize() == iBigEightPages)
            for (int32_t p = 1; p <= 7; ++p)
                if (const CPage* page = card_.page(p))
                    integer(S::CardDesign, std::to_string(p) + "PageBorder", PageAddress::ofBlock(page->Boundary).byte());
    }

    void writeFirstPass(const ItemRecord& r) {
        if (r.isDbUpdate)
            writeDatabaseUpdate(r);
        else if (r.isFunction)
            writeFunction(S::InitCard, ++initCard_, r, functionValue(r), bytePlace(r), r.isBitFunction);
        else if (r.isBitFunction)
            writeFunction(S::BitInitCard, ++bitInitCard_, r, functionValue(r), bitPlace(r), true);
        else if (r.isBit)
            writeBitField(r);
        else if (isCombinedField(r))
            writeCombinedField(r);
        else
            writeField(r);
    }

    static std::string bytePlace(const ItemRecord& r) { return joinNumbers({r.page, r.block, r.beginByte, r.numBytes}); }
    static std::string bitPlace(const ItemRecord& r) {
        return joinNumbers({r.page, r.block, r.beginByte, r.beginBit, r.numBits});
    }

    void writeFunction(std::string_view section, int k, const ItemRecord& r, const std::string& value,
                       const std::string& place, bool writeMode) {
        const std::string n = std::to_string(k);
        string(section, n + "Value", value);
        string(section, n + "Place", place);
        integer(section, n + "Color", r.color, true);
        if (writeMode) integer(section, n + "Mode", 1, true);
    }

    void useKey(const std::string& key) { out_.usedFieldList += key; }

    void writeField(const ItemRecord& r) {
        const std::string key = byteKeys_.next(r.name);
        useKey(key);
        string(encode_, key, joinNumbers({r.page, r.block, r.beginByte, r.numBytes, r.encodingCode}), distinctKeys_);
        integer(itemColor_, key, r.color, true, distinctKeys_);
        integer(fieldType_, key, r.fieldType, false, distinctFieldTypes_);
        if (r.isBinary) writeBigItem(key, r);
    }

    // A big item: its number, and for an item placed from a begin bit other than 0 (the
    // multi-track dialog offers one) its FieldsMultiTrack entry, as ENCODE has no room for
    // the bit.
    void writeBigItem(const std::string& key, const ItemRecord& r) {
        string(S::BigItem, key, "1," + std::to_string(r.bigItemNumber), distinctKeys_);
        out_.bigItemNumbers.push_back(r.bigItemNumber);
        if (r.beginBit != 0)
            string(S::FieldsMultiTrack, key, joinNumbers({r.page, r.block, r.beginByte, r.beginBit, r.numBytes}),
                   distinctKeys_);
    }

    // A combined field: every part gets its own key with a COMBINEDFIELDS entry
    // "item,part" and an ITEMCOLOR entry; the first part's ENCODE value carries the item
    // number as a sixth number, and "cPlace" holds the item's place.
    void writeCombinedField(const ItemRecord& r) {
        const int c = ++combined_;
        const std::vector<std::string> parts = splitCombinedName(r.name);
        std::vector<std::string> keys;
        for (const auto& part : parts) keys.push_back(byteKeys_.next(part));
        for (const auto& key : keys) useKey(key);
        string(S::Encode, keys.front(),
               joinNumbers({r.page, r.block, r.beginByte, r.numBytes, r.encodingCode, c}));
        integer(S::FieldType, keys.front(), r.fieldType);
        for (size_t i = 0; i < keys.size(); ++i) {
            string(S::CombinedFields, keys[i], joinNumbers({c, static_cast<int64_t>(i + 1)}));
            integer(S::ItemColor, keys[i], r.color, true);
        }
        string(S::CombinedFields, std::to_string(c) + "Place", bytePlace(r));
        if (r.isBinary) writeBigItem(keys.front(), r);
    }

    void writeBitField(const ItemRecord& r) {
        const std::string key = bitKeys_.next(r.name);
        useKey(key);
        string(bitEncode_, key, joinNumbers({r.page, r.block, r.beginByte, r.beginBit, r.numBits, r.encodingCode}),
               distinctKeys_);
        integer(bitItemColor_, key, r.color, true, distinctKeys_);
        integer(fieldType_, key, r.fieldType, false, distinctFieldTypes_);
    }

    void writeDatabaseUpdate(const ItemRecord& r) {
        int64_t column = 0;
        if (const HostField* f = fields_.byDbField(r.dbFieldName)) {
            column = f->column;
        } else if (r.dbColumn >= 0) {
            column = r.dbColumn;
        } else {
            out_.warnings.push_back("database-update field \"" + r.dbFieldName +
                                    "\" is not in the host project; column 0 written");
        }
        string(S::DatabaseUpdate, std::to_string(++dbUpdate_) + "Field", std::to_string(column) + "," + functionValue(r));
        for (const std::string* p : {&r.param1, &r.param2})
            if (!p->empty() && !looksNumeric(*p)) out_.usedFieldList += *p + "()";
    }

    void writeChecksum(const ItemRecord& r) {
        const int j = ++checksum_;
        const std::string value = functionValue(r, j);
        const int method = parseProfileInt(r.param1).value_or(0);
        const bool byteChecksum = r.isFunction;
        if (byteChecksum) {
            writeFunction(S::InitCard, ++initCard_, r, value, bytePlace(r), r.isBitFunction);
        } else {
            const std::string k = std::to_string(++bitInitCard_);
            string(S::BitInitCard, k + "Value", value);
            string(S::BitInitCard, k + "Place", bitPlace(r));
            int64_t mode = lastInt_;
            if (r.isBitFunction && !r.isSimpleBitFunction) mode = 1;
            else if (r.isSimpleBitFunction && !r.isBitFunction) mode = 0;
            integer(S::BitInitCard, k + "Mode", mode, true);
            integer(S::BitInitCard, k + "Color", r.color, true);
        }
        const std::string n = std::to_string(j);
        const auto& g = r.range;
        string(S::Checksum, n + "Range",
               byteChecksum ? joinNumbers({g[0], g[1], g[2], g[3]}) : joinNumbers({g[0], g[1], g[2], g[3], g[4]}));
        if (method == kChecksumCrc)
            string(S::Checksum, n + "Poly_", joinNumbers({r.polynomial[0], r.polynomial[1]}));
        else if (byteChecksum || method == kChecksumParity)
            integer(S::Checksum, n + "Init_", r.initValue);
    }

    const CIClass& card_;
    const RecordArray& records_;
    const HostFieldList& fields_;
    ProfileWriter w_;
    RenderedLayout out_;
    FieldKeys byteKeys_;
    FieldKeys bitKeys_;
    int initCard_ = 0;
    int bitInitCard_ = 0;
    int checksum_ = 0;
    int combined_ = 0;
    int dbUpdate_ = 0;
    int64_t lastInt_ = 0;
    bool distinctKeys_ = true;
    bool distinctFieldTypes_ = true;
    Run encode_{S::Encode}, itemColor_{S::ItemColor}, fieldType_{S::FieldType}, bitEncode_{S::BitEncode},
        bitItemColor_{S::BitItemColor};
};

}  // namespace

RenderedLayout renderLayoutFile(const CIClass& card, const RecordArray& records, const HostFieldList& fields) {
    return Renderer(card, records, fields).run();
}

}  // namespace kestrin
