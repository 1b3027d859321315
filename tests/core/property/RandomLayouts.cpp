#include "RandomLayouts.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <sstream>
#include <tuple>

#include "rules/LayoutPropertiesRules.h"
#include "rules/Encodings.h"
#include "rules/FunctionProperties.h"
#include "items/ItemSpan.h"
#include "rules/LayoutAudit.h"
#include "base/NumberText.h"
#include "rules/MultiTrackValidation.h"
#include "persist/ProfileDocument.h"
#include "persist/StorableText.h"
#include "text/Translator.h"

namespace kestrin::test {

uint64_t Rng::next() {
    uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
}

int64_t Rng::between(int64_t lo, int64_t hi) {
    if (hi <= lo) return lo;
    const uint64_t span = static_cast<uint64_t>(hi) - static_cast<uint64_t>(lo) + 1;
    return static_cast<int64_t>(static_cast<uint64_t>(lo) + next() % span);
}

namespace {

constexpr int64_t kBitsPerBlock = PageAddress::BitsPerBlock;
int64_t lastBitOf(const ItemRecord& r) { return itemSpan(r).lastBit(); }

const Translator& translator() {
    static const Translator tr;
    return tr;
}

// Names as host projects hold them: blanks, punctuation, quotes, brackets, dots, and the
// letters and signs of Windows-1252 beyond ASCII.
const std::vector<std::string>& namePool() {
    static const std::vector<std::string> pool = {
        "Name",          "FirstName",      "LAST_NAME",    "Employee Nr",     "Valid \"Until\"", "\"Quoted\" Name",
        "Größe",         "Café",           "Straße",       "Prix €",          "Zürich Büro",     "Señal",
        "Œuvre",         "Nr.Card",        "Size (mm)",    "Code(2)",         "Last, First",     "O'Brien",
        "µ-Wert ±",      "Åsa Ørsted",     "naïve façade", "«Titel» ™",       "Ÿ",               "Photo",
        "Level",         "Dept-7",         "x",            "A/B",             "50% off",         "Name.Ext.2",
        "Ärger",         "\"",             "'single'",     "\"both\"",        "name",            "NAME",
        "É",             "é",              "Tür & Tor",    "Kürzel…",         "Preis in £/¥",    "Wert [alt]",
        "Tab\tStop",    "x(1",            "(",            "Ende)",
    };
    return pool;
}

const std::vector<std::string>& namePieces() {
    static const std::vector<std::string> pieces = {
        "a", "B", "c", "Z", "q", "0", "7", " ", ".", ",", "'", "\"", "(", ")", "-", "_", "/", "&", "#", "%", "+",
        "é", "ü", "€", "ß", "Ä", "ñ", "œ", "Ÿ", "™", "°", "£", "¥", "«", "»", "–", "—", "…", "‰", "š", "ž", "Ø",
    };
    return pieces;
}

// Names a host project can hand over and a layout key can carry: what the layout file can
// hold as a key and as a function's value, without the leading "@#@#" the project reader
// drops, without the separator of combined fields, and not a number (a function's value that
// reads as a number is a value, not a field).
bool usableName(const std::string& n) {
    if (unstorableName(n) || unstorableValue(n) || n.rfind("@#@#", 0) == 0) return false;
    if (n.find(kCombinedFieldSeparator) != std::string::npos) return false;
    return !numericValue(n).has_value();
}

std::string uniqueName(Rng& rng, std::set<std::string>& taken) {
    for (;;) {
        std::string name;
        if (rng.chance(3, 5)) {
            name = rng.pick(namePool());
        } else {
            const int64_t length = rng.between(1, 14);
            for (int64_t i = 0; i < length; ++i) name += rng.pick(namePieces());
        }
        if (usableName(name) && taken.insert(name).second) return name;
    }
}

void makeFields(Rng& rng, HostFieldList& list) {
    static const std::vector<std::string> types = {"Character", "Number", "Numeric", "Date", "Binary", "Memo"};
    std::set<std::string> taken;
    std::vector<HostField> fields;
    int16_t column = -1;
    const int64_t count = rng.between(1, 8);
    for (int64_t i = 0; i < count; ++i) {
        HostField f;
        f.name = uniqueName(rng, taken);
        f.dbField = rng.chance(1, 2) ? f.name : uniqueName(rng, taken);
        f.fieldType = rng.pick(types);
        f.fieldSize = static_cast<int16_t>(rng.between(1, 200));
        // Columns in between are the tag field or fields not in the project.
        column = static_cast<int16_t>(column + rng.between(1, 3));
        f.column = column;
        fields.push_back(std::move(f));
    }
    list.setFields(std::move(fields));
}

int32_t pickBoundary(Rng& rng) {
    switch (rng.between(0, 5)) {
    case 0: return 6;
    case 1: return 32;
    default: return static_cast<int32_t>(rng.between(6, 32));
    }
}

void makeCard(Rng& rng, CIClass& card) {
    const auto type = static_cast<IClassType>(rng.between(iSmallOnePage, iBigEightPages));
    card.setChipSize(type);
    card.setUseHIDSection(rng.chance(2, 3));
    card.setEnableBitwise(rng.chance(2, 3));
    if (type == iBigEightPages)
        for (int32_t p = 1; p <= 7; ++p)
            if (rng.chance(1, 2)) card.SetBoundary(p, pickBoundary(rng));
}

int32_t randomColor(Rng& rng) {
    switch (rng.between(0, 9)) {
    case 0: return 0;
    case 1: return 0xFFFFFF;
    case 2: return static_cast<int32_t>(rng.between(INT32_MIN, -1));  // older files carry any 32-bit value
    default: return static_cast<int32_t>(rng.between(0, 0xFFFFFF));
    }
}

struct Candidate {
    ItemRecord record;
    bool hasRequest = false;
    PlacementRequest request;  // what the editor judged, when the item came through it
};

class Builder {
public:
    Builder(Rng& rng, RandomLayout& layout) : rng_(rng), layout_(layout) {}

    Candidate next() {
        const bool bitwise = layout_.card.EnableBitwise();
        for (;;) {
            switch (rng_.between(0, 19)) {
            case 0: case 1: case 2: case 3: return field(false);
            case 4: case 5: return field(true);
            case 6: case 7: if (bitwise) return bitField(); break;
            case 8: case 9: return multiTrack();
            case 10: return bigItem();
            case 11: case 12: case 13: case 14: return function(kModeFunction, false);
            case 15: case 16: if (bitwise) return function(kModeBitFunction, false); break;
            case 17: if (bitwise) return function(kModeBitFunction, true); break;
            default: return dbUpdate();
            }
        }
    }

private:
    const HostField& hostField() { return rng_.pick(layout_.fields.fields()); }
    // Items name their fields by the database field name; older layouts by the display name.
    std::string itemNameOf(const HostField& f) { return rng_.chance(4, 5) ? f.dbField : f.name; }

    int16_t page() { return static_cast<int16_t>(rng_.between(0, layout_.card.PagesCount() - 1)); }

    int64_t bytesFor(int16_t pageNo) {
        const CPage& p = *layout_.card.page(pageNo);
        switch (rng_.between(0, 9)) {
        case 7: case 8: return rng_.between(9, 64);
        case 9: return rng_.between(1, std::max<int64_t>(1, p.PageSize - int64_t{p.BeginFreeSpace} * 8));
        default: return rng_.between(1, 8);
        }
    }
    int64_t bitsFor() {
        switch (rng_.between(0, 9)) {
        case 7: case 8: return rng_.between(17, 64);
        case 9: return rng_.between(65, kMaxBitFieldBits);
        default: return rng_.between(1, 16);
        }
    }

    // A start bit for an item of `bits` bits: anywhere, or right at the edges the rules care
    // about (the first free block, the page end, the boundary blocks, the previous page's
    // boundary, right behind an item already placed).
    int64_t start(int16_t pageNo, int64_t bits, bool byteAligned) {
        const CPage& p = *layout_.card.page(pageNo);
        const int64_t first = int64_t{p.BeginFreeSpace} * kBitsPerBlock;
        const int64_t end = int64_t{p.PageSize} * 8;
        const int64_t boundary = int64_t{p.Boundary} * kBitsPerBlock;
        int64_t s = first;
        switch (rng_.between(0, 11)) {
        case 0: s = first; break;
        case 1: s = end - bits; break;
        case 2: s = boundary + kBitsPerBlock - bits; break;
        case 3: s = boundary + kBitsPerBlock; break;
        case 4: s = boundary - bits; break;
        case 5: s = boundary; break;
        case 6:
            if (const CPage* before = layout_.card.page(pageNo - 1))
                s = int64_t{before->Boundary} * kBitsPerBlock - (rng_.chance(1, 2) ? bits : 0);
            break;
        case 7:
        case 8: {
            std::vector<int64_t> ends;
            for (const ItemRecord& r : layout_.records)
                if (!r.isDbUpdate && r.page == pageNo) ends.push_back(lastBitOf(r) + 1);
            if (!ends.empty()) s = rng_.pick(ends);
            break;
        }
        default: s = rng_.between(first, std::max(first, end - bits));
        }
        if (byteAligned) s -= s % 8;
        return s < 0 ? first : s;
    }

    static void place(ItemRecord& r, int16_t pageNo, int64_t startBit, bool bitPlace) {
        r.page = pageNo;
        r.block = static_cast<int16_t>(startBit / kBitsPerBlock);
        r.beginByte = static_cast<int16_t>(startBit % kBitsPerBlock / 8);
        if (bitPlace) r.beginBit = static_cast<int16_t>(startBit % 8);
    }

    static PlacementRequest requestFor(const ItemRecord& r, int32_t mode, int64_t size) {
        PlacementRequest q;
        q.mode = mode;
        q.selectedText = q.itemName = r.name;
        q.page = r.page;
        q.row = r.block;
        q.beginByte = r.beginByte;
        q.beginBit = mode == kModeBitField || mode == kModeBitFunction ? r.beginBit : int16_t{0};
        q.nrBytesText = std::to_string(size);
        return q;
    }

    Candidate field(bool combined) {
        std::vector<const HostField*> chosen{&hostField()};
        for (int64_t n = combined ? rng_.between(2, 4) : 1; static_cast<int64_t>(chosen.size()) < n;)
            chosen.push_back(&hostField());  // the same field twice is allowed as well
        Candidate c;
        ItemRecord& r = c.record;
        for (const HostField* f : chosen) {
            if (!r.name.empty()) r.name += kCombinedFieldSeparator;
            r.name += itemNameOf(*f);
        }
        // The editor takes the type of the first chosen field.
        const int16_t type = fieldTypeCode(chosen.front()->fieldType);
        r.fieldType = type;
        const auto option = static_cast<int>(rng_.between(0, 3));
        r.encodingCode = EncodingCode(type, option, static_cast<int>(rng_.between(-1, 3)));
        r.color = randomColor(rng_);
        const int16_t p = page();
        const int64_t bytes = bytesFor(p);
        r.numBytes = static_cast<int16_t>(bytes);
        place(r, p, start(p, bytes * 8, true), false);
        c.hasRequest = true;
        c.request = requestFor(r, kModeField, bytes);
        return c;
    }

    Candidate bitField() {
        Candidate c;
        ItemRecord& r = c.record;
        const HostField& f = hostField();
        r.isBit = true;
        r.name = itemNameOf(f);
        r.fieldType = fieldTypeCode(f.fieldType);
        r.encodingCode = 1;  // always a binary number, high byte first
        r.color = randomColor(rng_);
        const int16_t p = page();
        const int64_t bits = bitsFor();
        r.numBits = static_cast<int16_t>(bits);
        place(r, p, start(p, bits, false), true);
        c.hasRequest = true;
        c.request = requestFor(r, kModeBitField, bits);
        return c;
    }

    // The multi-track dialog stores the field, its place with the begin bit, and its bytes.
    Candidate multiTrack() {
        Candidate c;
        ItemRecord& r = c.record;
        r.isBinary = true;
        r.name = itemNameOf(hostField());
        r.color = randomColor(rng_);
        const int16_t p = page();
        const int64_t bytes = bytesFor(p);
        r.numBytes = static_cast<int16_t>(bytes);
        place(r, p, start(p, bytes * 8, rng_.chance(1, 3)), true);
        return c;
    }

    // A field that an opened layout flags as a big item, with its number.
    Candidate bigItem() {
        Candidate c = field(rng_.chance(1, 4));
        c.record.isBinary = true;
        c.record.bigItemNumber = static_cast<int16_t>(rng_.between(-5, 300));
        c.hasRequest = false;
        return c;
    }

    std::string digits(int64_t lo, int64_t hi) { return std::to_string(rng_.between(lo, hi)); }
    // A number box's text as the operator typed it: kept as typed, so leading zeros stay; a
    // box the rules do not insist on may be left empty.
    std::string typed(int64_t lo, int64_t hi, bool mayBeEmpty) {
        switch (rng_.between(0, 11)) {
        case 0:
            if (mayBeEmpty) return {};
            break;
        case 1: return "00" + digits(lo, hi);
        }
        return digits(lo, hi);
    }

    Candidate function(int32_t mode, bool simpleBitChecksum) {
        const bool bits = mode == kModeBitFunction;
        FunctionInput in;
        in.kind = simpleBitChecksum ? FunctionKind::Checksum : static_cast<FunctionKind>(rng_.between(0, 3));
        // The dialog hands over the field list's selection whether or not the value comes from it.
        if (rng_.chance(1, 2)) in.fieldName = itemNameOf(hostField());
        const int16_t p = page();
        int64_t size = bits ? bitsFor() : bytesFor(p);  // bytes in function mode, bits in bit-function mode
        switch (in.kind) {
        case FunctionKind::Constant:
            in.option = rng_.chance(1, 4) ? kConstantField : kConstantValue;
            in.valueFromField = in.option == kConstantField;
            if (in.valueFromField) {
                in.fieldName = itemNameOf(hostField());
            } else if (bits) {
                size = rng_.between(1, 40);
                in.constantText = typed(0, size >= 32 ? 4294967295 : (int64_t{1} << size) - 1, false);
            } else {
                in.constantText = typed(0, 255, true);
            }
            break;
        case FunctionKind::Count:
            in.option = static_cast<int>(rng_.between(kCountWriteBeforeIncrement, kCountIncrementBeforeWrite));
            in.valueFromField = rng_.chance(1, 3);
            if (in.valueFromField) in.fieldName = itemNameOf(hostField());
            in.countNumberText = typed(0, 255, true);
            in.countStepText = typed(0, 255, true);
            if (bits) size = rng_.between(1, 32);
            break;
        case FunctionKind::CardSnNr:
            in.option = static_cast<int>(rng_.between(kCardSnNrDecimal, kCardSnNrIntel));
            size = *requiredCardSnNrBytes(in.option) * (bits ? 8 : 1);
            break;
        case FunctionKind::Checksum: checksum(in, bits, p, size); break;
        }
        Candidate c;
        ItemRecord& r = c.record;
        applyFunctionValues(in, mode, r);
        r.isFunction = !bits;
        r.isBitFunction = bits && !simpleBitChecksum;
        r.isSimpleBitFunction = simpleBitChecksum;
        r.color = randomColor(rng_);
        if (bits)
            r.numBits = static_cast<int16_t>(size);
        else
            r.numBytes = static_cast<int16_t>(size);
        place(r, p, start(p, bits ? size : size * 8, !bits), bits);
        c.hasRequest = true;
        c.request = requestFor(r, mode, size);
        fillFunctionRequest(c.request, in);
        return c;
    }

    void checksum(FunctionInput& in, bool bits, int16_t pageNo, int64_t& size) {
        in.option = static_cast<int>(rng_.between(kChecksumAdd, kChecksumParity));
        if (!bits) {
            size = 1;
            if (in.option == kChecksumCrc) in.polynomText = digits(257, 511);
            // A byte ADD checksum's start value is written but not read back (Init_ is read for a
            // parity only), so layouts that must save twice alike give it none.
            in.startValueText = in.option == kChecksumParity ? digits(0, 1)
                                : in.option == kChecksumCrc  ? digits(0, 255)
                                                             : std::string("0");
        } else if (in.option == kChecksumAdd) {
            size = 8;
            in.startValueText = digits(0, 255);
        } else if (in.option == kChecksumParity) {
            size = 1;
            in.startValueText = digits(0, 1);
        } else {
            size = rng_.between(1, 8);
            in.polynomText = digits((int64_t{1} << size) + 1, (int64_t{2} << size) - 1);
            in.startValueText = digits(0, (int64_t{1} << size) - 1);
        }
        const CPage& p = *layout_.card.page(pageNo);
        in.rangeRow = static_cast<int16_t>(rng_.between(p.BeginFreeSpace, p.blockCount() - 1));
        in.rangeBeginByte = static_cast<int16_t>(rng_.between(0, 7));
        switch (rng_.between(0, 9)) {
        case 0: in.rangeCountText = ""; break;   // no range entered
        case 1: in.rangeCountText = "0"; break;
        default: in.rangeCountText = digits(1, 48);
        }
        // The editor leaves the range's page and begin bit at 0; opened layouts carry others.
        if (rng_.chance(1, 4)) in.rangePage = rng_.chance(1, 2) ? pageNo : page();
        if (bits && rng_.chance(1, 4)) in.rangeBeginBit = static_cast<int16_t>(rng_.between(0, 7));
    }

    // The database-update dialog stores numbers as plain digits; older layouts may name a
    // field as a constant's value.
    Candidate dbUpdate() {
        Candidate c;
        ItemRecord& r = c.record;
        const HostField& f = hostField();
        r.isDbUpdate = true;
        r.dbFieldName = f.dbField;
        r.dbColumn = f.column;
        switch (rng_.between(0, 2)) {
        case 0:
            r.name = std::string(kFunctionConstant);
            r.param1 = rng_.chance(1, 5) ? itemNameOf(hostField()) : digits(0, 4294967295);
            break;
        case 1:
            r.name = std::string(kFunctionCount);
            r.param1 = digits(0, 255);
            r.param2 = digits(0, 255);
            break;
        default:
            r.name = std::string(kFunctionCardSnNr);
            r.param1 = digits(0, 1);
        }
        return c;
    }

    Rng& rng_;
    RandomLayout& layout_;
};

// The name under which a record's field type is kept (FIELDTYPE "Name(n)"), and whether that
// key is counted among the bit fields; nothing for records without a field type entry.
std::string lowerCase(std::string text) {
    for (char& c : text) c = asciiFold(c);
    return text;
}

std::optional<std::pair<std::string, bool>> fieldTypeKeyName(const ItemRecord& r) {
    if (r.isDbUpdate || r.isFunction || r.isBitFunction || r.isSimpleBitFunction) return std::nullopt;
    if (r.isBit) return std::make_pair(lowerCase(r.name), true);
    return std::make_pair(lowerCase(r.name.substr(0, r.name.find(kCombinedFieldSeparator))), false);
}

// Byte-wise fields and bit fields number their keys separately but share the FIELDTYPE
// section, so "Name(1)" of a field and "NAME(1)" of a bit field are one entry there: such
// items must agree on their type for the file to keep it. The editor gives items of one
// host field one type; the multi-track dialog gives its items type 0, and host fields whose
// names differ only in letter case may differ in type. Those pairs are left out.
class FieldTypeKeys {
public:
    bool clashes(const ItemRecord& candidate) const {
        const auto key = fieldTypeKeyName(candidate);
        if (!key) return false;
        for (const auto& [name, bitKey, type] : keys_)
            if (bitKey != key->second && name == key->first && type != candidate.fieldType) return true;
        return false;
    }
    void add(const ItemRecord& r) {
        if (const auto key = fieldTypeKeyName(r)) keys_.emplace_back(key->first, key->second, r.fieldType);
    }

private:
    std::vector<std::tuple<std::string, bool, int32_t>> keys_;
};

std::string firstMessage(const std::vector<PlacementViolation>& v) {
    return v.empty() ? std::string() : std::to_string(v.front().textId) + " " + v.front().message;
}

}  // namespace

RandomLayout randomValidLayout(uint64_t seed) {
    Rng rng(seed);
    RandomLayout layout;
    makeCard(rng, layout.card);
    makeFields(rng, layout.fields);
    const int64_t target = rng.chance(1, 40) ? rng.between(30, 120) : rng.between(0, 12);
    Builder builder(rng, layout);
    FieldTypeKeys typeKeys;
    for (int64_t attempt = 0; attempt < target * 5 && layout.records.size() < target; ++attempt) {
        const Candidate c = builder.next();
        if (typeKeys.clashes(c.record)) continue;
        if (placementProblem(layout.card, layout.records, c.record, c.hasRequest ? &c.request : nullptr).empty()) {
            layout.records.add(c.record);
            typeKeys.add(c.record);
        }
    }
    return layout;
}

std::string placementProblem(const CIClass& card, const RecordArray& records, const ItemRecord& r,
                             const PlacementRequest* editorRequest) {
    const Translator& tr = translator();
    if (r.isDbUpdate) return {};
    if (r.isBinary) {
        const MultiTrackRequest q{r.name, r.page, r.block, r.beginByte, r.beginBit, std::to_string(r.numBytes)};
        if (auto v = multiTrackViolation(q, card, records, tr)) return "multi-track rules: " + v->message;
    } else {
        if (editorRequest)
            if (auto m = firstMessage(placementViolations(*editorRequest, card, records, tr)); !m.empty())
                return "editor: " + m;
        if (auto m = firstMessage(placementViolations(placementRequestOf(r), card, records, tr)); !m.empty())
            return "layout check: " + m;
    }
    RecordArray alone;
    alone.add(r);
    if (isChecksum(r)) {
        for (const ItemRecord& older : records) {
            if (older.isDbUpdate || !isChecksum(older)) continue;
            if (auto m = firstMessage(placementViolations(placementRequestOf(older), card, alone, tr)); !m.empty())
                return "older checksum " + describe(older) + " against it: " + m;
        }
    }
    const auto props = checkLayoutProperties(boundaryTextsOf(card), card.UseHIDSection(), alone, tr);
    if (!props.messages.empty()) return "layout properties: " + props.messages.front();
    return {};
}

std::vector<std::string> auditProblems(const CIClass& card, const RecordArray& records) {
    std::vector<std::string> out;
    for (const AuditViolation& v : auditLayout(card, records, translator()))
        out.push_back("record " + std::to_string(v.recordIndex) + " " + describe(records[v.recordIndex]) + ": " +
                      std::to_string(v.textId) + " " + v.text);
    return out;
}

PlacementRequest randomInvalidRequest(Rng& rng, const RandomLayout& layout) {
    const CIClass& card = layout.card;
    PlacementRequest q;
    q.mode = static_cast<int32_t>(rng.between(kModeField, kModeBitFunction));
    const bool bitMode = q.mode == kModeBitField || q.mode == kModeBitFunction;
    const bool functionMode = q.mode == kModeFunction || q.mode == kModeBitFunction;
    static const std::vector<std::string> words = {std::string(kFunctionConstant), std::string(kFunctionCount),
                                                   std::string(kFunctionCardSnNr), std::string(kFunctionChecksum)};
    const std::vector<HostField>& fields = layout.fields.fields();
    q.itemName = functionMode ? rng.pick(words) : rng.pick(fields).dbField;
    q.selectedText = q.itemName;
    q.page = static_cast<int16_t>(rng.between(0, card.PagesCount() - 1));
    const CPage& page = *card.page(q.page);
    q.row = static_cast<int16_t>(rng.between(page.BeginFreeSpace, page.blockCount() - 1));
    q.beginByte = static_cast<int16_t>(rng.between(0, 7));
    q.beginBit = bitMode ? static_cast<int16_t>(rng.between(0, 7)) : int16_t{0};
    q.nrBytesText = std::to_string(rng.between(1, 16));
    q.propertyOption = static_cast<int>(rng.between(-1, 4));
    q.valueFromField = rng.chance(1, 4);
    q.fieldChosen = rng.chance(1, 2) ? rng.pick(fields).dbField : std::string();
    q.constantText = std::to_string(rng.between(0, 600));
    q.polynomText = std::to_string(rng.between(0, 600));
    q.startValueText = std::to_string(rng.between(0, 300));
    q.rangeRow = static_cast<int16_t>(rng.between(0, page.blockCount()));
    q.rangeBeginByte = static_cast<int16_t>(rng.between(0, 7));
    q.rangeCountText = std::to_string(rng.between(0, 40));

    // Over a placed item: itself again (same name and kind), or something else on top of it.
    std::vector<const ItemRecord*> placed;
    for (const ItemRecord& r : layout.records)
        if (!r.isDbUpdate) placed.push_back(&r);
    if (!placed.empty() && rng.chance(2, 5)) {
        const ItemRecord& r = *rng.pick(placed);
        const int code = kindCode(kindWord(r));
        if (code >= 0 && rng.chance(1, 2)) {
            const PlacementRequest again = placementRequestOf(r);
            q = again;
            if (rng.chance(1, 3)) q.mode = code;  // a "Bit Function (Simple)" goes back to function mode
        }
        q.page = r.page;
        q.row = r.block;
        q.beginByte = static_cast<int16_t>(r.beginByte + (rng.chance(1, 3) ? rng.between(-1, 1) : 0));
        if (rng.chance(1, 3)) q.itemName = q.selectedText = r.name;
    }

    static const std::vector<std::string> absurdTexts = {
        "",      " ",     "0",      "-1",       "-32768", "32767", "32768",  "65536", "99999999999999999999",
        "1e308", "1e999", "-1e999", "3.5",      "0.4",    " 12 ",  "abc",    "12abc", "0x10",
        "+7",    "1,5",   "nan",    "inf",      "€",      "\"8\"", "4294967295", "4294967296",
    };
    // Then break it in up to three ways (now and then in none: a plain overlap, or the item
    // placed again where it stands).
    for (int64_t n = rng.chance(1, 6) ? 0 : rng.between(1, 3); n > 0; --n) {
        switch (rng.between(0, 16)) {
        case 0:  // a page the card does not have
            q.page = static_cast<int16_t>(rng.chance(1, 2) ? rng.between(-3, -1) : rng.between(card.PagesCount(), 12));
            break;
        case 1: q.row = static_cast<int16_t>(rng.between(-5, page.BeginFreeSpace - 1)); break;  // header, HID, negative
        case 2: q.row = static_cast<int16_t>(rng.between(page.blockCount() - 2, page.blockCount() + 40)); break;
        case 3: q.beginByte = static_cast<int16_t>(rng.chance(1, 2) ? rng.between(-9, -1) : rng.between(8, 300)); break;
        case 4: q.beginBit = static_cast<int16_t>(rng.chance(1, 2) ? rng.between(-20, -1) : rng.between(8, 700)); break;
        case 5: q.nrBytesText = rng.pick(absurdTexts); break;
        case 6: q.nrBytesText = std::to_string(rng.between(page.PageSize - 8, int64_t{page.PageSize} * 9)); break;
        case 7: {  // across the application boundary
            const int64_t b = (int64_t{page.Boundary} + 1) * kBitsPerBlock;
            const int64_t s = b - rng.between(1, 64);
            q.row = static_cast<int16_t>(s / kBitsPerBlock);
            q.beginByte = static_cast<int16_t>(s % kBitsPerBlock / 8);
            q.nrBytesText = std::to_string(rng.between(2, 24));
            break;
        }
        case 8: q.row = INT16_MIN + static_cast<int16_t>(rng.between(0, 2)); break;
        case 9: q.row = static_cast<int16_t>(INT16_MAX - rng.between(0, 2)); q.beginByte = INT16_MAX; break;
        case 10: q.constantText = rng.pick(absurdTexts); break;
        case 11: q.polynomText = rng.pick(absurdTexts); break;
        case 12: q.startValueText = rng.pick(absurdTexts); break;
        case 13: q.rangeCountText = rng.pick(absurdTexts); break;
        case 14:
            q.rangeRow = static_cast<int16_t>(rng.between(INT16_MIN, INT16_MAX));
            q.rangeBeginByte = static_cast<int16_t>(rng.between(-300, 300));
            break;
        case 15: q.itemName = rng.chance(1, 2) ? std::string() : rng.pick(words); break;
        default: q.selectedText.clear(); break;
        }
    }
    return q;
}

RecordArray inReadingOrder(const RecordArray& records) {
    auto group = [](const ItemRecord& r) {
        if (r.isDbUpdate) return 7;
        if (r.isFunction) return isChecksum(r) ? 4 : 3;
        if (r.isBitFunction || r.isSimpleBitFunction) return isChecksum(r) ? 6 : 5;
        if (r.isBit) return 1;
        return isCombinedField(r) ? 2 : 0;
    };
    std::vector<ItemRecord> sorted = records.records();
    std::stable_sort(sorted.begin(), sorted.end(),
                     [&](const ItemRecord& a, const ItemRecord& b) { return group(a) < group(b); });
    RecordArray out;
    for (const ItemRecord& r : sorted) out.add(r);
    return out;
}

namespace {

template <class T>
std::string text(const T& v) {
    std::ostringstream s;
    s << v;
    return s.str();
}
std::string text(const std::string& v) { return "\"" + v + "\""; }
std::string text(bool v) { return v ? "true" : "false"; }
template <class T, size_t N>
std::string text(const std::array<T, N>& v) {
    std::string out = "{";
    for (size_t i = 0; i < N; ++i) out += (i ? "," : "") + std::to_string(v[i]);
    return out + "}";
}

}  // namespace

std::string firstDifference(const ItemRecord& a, const ItemRecord& b) {
#define KESTRIN_COMPARE(member) \
    if (!(a.member == b.member)) return #member ": expected " + text(a.member) + ", read " + text(b.member);
    KESTRIN_COMPARE(isFunction)
    KESTRIN_COMPARE(isDbUpdate)
    KESTRIN_COMPARE(isBit)
    KESTRIN_COMPARE(isSimpleBitFunction)
    KESTRIN_COMPARE(isBitFunction)
    KESTRIN_COMPARE(isBinary)
    KESTRIN_COMPARE(name)
    KESTRIN_COMPARE(page)
    KESTRIN_COMPARE(block)
    KESTRIN_COMPARE(beginByte)
    KESTRIN_COMPARE(beginBit)
    KESTRIN_COMPARE(numBytes)
    KESTRIN_COMPARE(numBits)
    KESTRIN_COMPARE(encodingCode)
    KESTRIN_COMPARE(fieldType)
    KESTRIN_COMPARE(color)
    KESTRIN_COMPARE(bigItemNumber)
    KESTRIN_COMPARE(param1)
    KESTRIN_COMPARE(param2)
    KESTRIN_COMPARE(param3)
    KESTRIN_COMPARE(polynomial)
    KESTRIN_COMPARE(initValue)
    KESTRIN_COMPARE(range)
    KESTRIN_COMPARE(dbFieldName)
    KESTRIN_COMPARE(dbColumn)
#undef KESTRIN_COMPARE
    // A member added to the record and not listed above still makes records unequal.
    return a == b ? std::string() : "a member not compared above";
}

std::string describe(const ItemRecord& r) {
    std::ostringstream s;
    s << "[" << kindWord(r) << (r.isDbUpdate ? " (database update)" : "") << " \"" << r.name << "\" at " << r.page
      << "/" << r.block << "/" << r.beginByte << "/" << r.beginBit << " bytes " << r.numBytes << " bits " << r.numBits;
    if (!r.param1.empty() || !r.param2.empty() || !r.param3.empty())
        s << " params \"" << r.param1 << "\",\"" << r.param2 << "\",\"" << r.param3 << "\"";
    if (isChecksum(r))
        s << " poly " << text(r.polynomial) << " init " << r.initValue << " range " << text(r.range);
    if (r.isDbUpdate) s << " field \"" << r.dbFieldName << "\" column " << r.dbColumn;
    s << "]";
    return s.str();
}

std::string describe(const CIClass& card) {
    std::ostringstream s;
    s << "chip " << static_cast<int>(card.ChipSize()) << " HID " << card.UseHIDSection() << " bitwise "
      << card.EnableBitwise() << " boundaries";
    for (int32_t p = 0; p < card.PagesCount(); ++p) s << " " << card.page(p)->Boundary;
    return s.str();
}

std::string describe(const RandomLayout& layout) {
    std::string out = describe(layout.card) + ", " + std::to_string(layout.records.size()) + " records";
    for (const ItemRecord& r : layout.records) out += "\n  " + describe(r);
    return out;
}

}  // namespace kestrin::test
