// Random layouts, each item kept only when the placement rules accept it, save and open to
// the same card and records and save again to the same bytes; random (mostly invalid)
// placements leave the record array whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <unordered_set>

#include "base/NumberText.h"
#include "card/CIClass.h"
#include "items/ItemSpan.h"
#include "items/RecordArray.h"
#include "persist/AsciiCaseless.h"
#include "persist/ChipEncodeFile.h"
#include "persist/HostFields.h"
#include "persist/LayoutReader.h"
#include "persist/LayoutRenderer.h"
#include "persist/LayoutSaver.h"
#include "persist/ProfileDocument.h"
#include "persist/StorableText.h"
#include "rules/Encodings.h"
#include "rules/FunctionProperties.h"
#include "rules/LayoutAudit.h"
#include "rules/MultiTrackValidation.h"
#include "rules/PlacementValidation.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

using namespace kestrin;
using namespace kestrin::test;
namespace fs = std::filesystem;

namespace {

using CaselessNames = std::unordered_set<std::string, AsciiCaselessHash, AsciiCaselessEqual>;

// splitmix64: a seed names the same layout with every standard library.
class Rng {
public:
    explicit Rng(uint64_t seed) : state_(seed) {}
    uint64_t next() {
        uint64_t z = (state_ += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    int64_t between(int64_t lo, int64_t hi) {
        return hi <= lo ? lo : lo + static_cast<int64_t>(next() % (static_cast<uint64_t>(hi - lo) + 1));
    }
    bool chance(int num, int den) { return between(1, den) <= num; }
    template <class T>
    const T& pick(const std::vector<T>& v) { return v[static_cast<size_t>(between(0, static_cast<int64_t>(v.size()) - 1))]; }

private:
    uint64_t state_;
};

uint64_t caseSeed(uint64_t caseNumber) {
    static const char* given = std::getenv("KESTRIN_PROPERTY_SEED");
    return Rng((given ? std::strtoull(given, nullptr, 0) : 0x4B657374) ^ (caseNumber * 0x9E3779B97F4A7C15ull)).next();
}

const Translator kTranslator;
constexpr int64_t kBlockBits = PageAddress::BitsPerBlock;

// The order the reader gives records back in: byte-wise fields, bit fields, combined fields,
// byte functions (checksums last), bit functions (checksums last), database updates.
RecordArray inReadingOrder(const RecordArray& records) {
    auto group = [](const ItemRecord& r) {
        if (r.isDbUpdate) return 7;
        if (r.isFunction) return isChecksum(r) ? 4 : 3;
        if (r.isBitFunction || r.isSimpleBitFunction) return isChecksum(r) ? 6 : 5;
        return r.isBit ? 1 : isCombinedField(r) ? 2 : 0;
    };
    std::vector<ItemRecord> sorted = records.records();
    std::stable_sort(sorted.begin(), sorted.end(), [&](const auto& a, const auto& b) { return group(a) < group(b); });
    RecordArray out;
    for (const ItemRecord& r : sorted) out.add(r);
    return out;
}

struct RandomLayout {
    CIClass card;
    RecordArray records;
    HostFieldList fields;
};

// Builds a layout as an operator does: host fields with names a project can hold (quotes,
// brackets, Windows-1252 letters), a card with random properties, and candidate items of every
// kind at random places, often at the edges the rules care about.
class Generator {
public:
    explicit Generator(uint64_t seed) : rng(seed) {}

    RandomLayout make() {
        RandomLayout l;
        const auto type = static_cast<IClassType>(rng.between(iSmallOnePage, iBigEightPages));
        l.card.setChipSize(type);
        l.card.setUseHIDSection(rng.chance(2, 3));
        l.card.setEnableBitwise(rng.chance(2, 3));
        if (type == iBigEightPages)
            for (int32_t p = 1; p <= 7; ++p)
                if (rng.chance(1, 2)) l.card.SetBoundary(p, static_cast<int32_t>(rng.pick<int64_t>({6, 32, rng.between(6, 32)})));
        makeFields(l.fields);
        layout_ = &l;
        const int64_t target = rng.chance(1, 40) ? rng.between(30, 120) : rng.between(0, 12);
        for (int64_t attempt = 0; attempt < target * 5 && l.records.size() < target; ++attempt) {
            const ItemRecord c = candidate();
            const bool fits = c.isDbUpdate ? true
                              : c.isBinary ? !multiTrackViolation({c.name, c.page, c.block, c.beginByte, c.beginBit,
                                                                   std::to_string(c.numBytes)},
                                                                  l.card, l.records, kTranslator)
                                           : placementViolations(placementRequestOf(c), l.card, l.records, kTranslator).empty();
            if (fits) l.records.add(c);
        }
        // The layout check must pass in the order of placing and in the reader's order.
        for (;;) {
            if (auto v = auditLayout(l.card, l.records, kTranslator); !v.empty()) {
                l.records.removeAt(v.front().recordIndex);
            } else if (const RecordArray read = inReadingOrder(l.records);
                       !(v = auditLayout(l.card, read, kTranslator)).empty()) {
                const auto it = std::find(l.records.begin(), l.records.end(), read[v.front().recordIndex]);
                l.records.removeAt(static_cast<int32_t>(it - l.records.begin()));
            } else {
                return l;
            }
        }
    }

    Rng rng;

private:
    std::string name(CaselessNames& taken) {
        static const std::vector<std::string> pool = {
            "Name", "LAST_NAME", "Employee Nr", "Valid \"Until\"", "\"Quoted\" Name", "Gr\xC3\xB6\xC3\x9F" "e",
            "Prix \xE2\x82\xAC", "\xC5\x92uvre", "Size (mm)", "Code(2)", "Last, First", "O'Brien", "Wert [alt]",
            "x(1", "(", "'single'", "\"", "Tab\tStop", "\xC2\xB5-Wert \xC2\xB1", "Photo", "50% off"};
        static const std::vector<std::string> pieces = {"a", "B", "7", " ", ".", "'", "\"", "(", ")", "-", "/", "&",
                                                        "\xC3\xA9", "\xE2\x82\xAC", "\xC3\x9F", "\xE2\x80\xA6"};
        for (;;) {
            std::string n = rng.chance(3, 5) ? rng.pick(pool) : "";
            for (int64_t i = n.empty() ? rng.between(1, 14) : 0; i > 0; --i) n += rng.pick(pieces);
            // What a key and a function's value can hold, not the combined fields' separator,
            // and no number (a function's value that reads as one is a value, not a field).
            if (unstorableName(n) || unstorableValue(n) || n.find(kCombinedFieldSeparator) != std::string::npos ||
                numericValue(n) || n.rfind("@#@#", 0) == 0)
                continue;
            if (taken.insert(n).second) return n;
        }
    }
    void makeFields(HostFieldList& list) {
        CaselessNames taken;
        std::vector<HostField> fields;
        int16_t column = -1;
        for (int64_t i = rng.between(1, 8); i > 0; --i) {
            HostField f;
            f.name = name(taken);
            f.dbField = rng.chance(1, 2) ? f.name : name(taken);
            f.fieldType = rng.pick<std::string>({"Character", "Number", "Numeric", "Date", "Binary", "Memo"});
            f.fieldSize = static_cast<int16_t>(rng.between(1, 200));
            f.column = column = static_cast<int16_t>(column + rng.between(1, 3));
            fields.push_back(std::move(f));
        }
        list.setFields(std::move(fields));
    }

    const HostField& hostField() { return rng.pick(layout_->fields.fields()); }
    std::string itemNameOf(const HostField& f) { return rng.chance(4, 5) ? f.dbField : f.name; }
    std::string digits(int64_t lo, int64_t hi) { return (rng.chance(1, 12) ? "00" : "") + std::to_string(rng.between(lo, hi)); }
    int64_t bytes(const CPage& p) {
        return rng.chance(7, 10) ? rng.between(1, 8)
                                 : rng.chance(2, 3) ? rng.between(9, 64) : rng.between(1, p.PageSize - int64_t{p.BeginFreeSpace} * 8);
    }
    int64_t bits() { return rng.chance(7, 10) ? rng.between(1, 16) : rng.chance(2, 3) ? rng.between(17, 64) : rng.between(65, kMaxBitFieldBits); }

    // Puts r on a random page at a start bit anywhere or at an edge: the first free block,
    // the page end, around the boundary, right behind an item already placed.
    void place(ItemRecord& r, int64_t size, bool sizeInBits, bool byteAligned) {
        r.page = static_cast<int16_t>(rng.between(0, layout_->card.PagesCount() - 1));
        const CPage& p = *layout_->card.page(r.page);
        const int64_t n = sizeInBits ? size : size * 8, first = int64_t{p.BeginFreeSpace} * kBlockBits,
                      boundary = int64_t{p.Boundary} * kBlockBits;
        std::vector<int64_t> starts = {first, int64_t{p.PageSize} * 8 - n, boundary - n, boundary, boundary + kBlockBits,
                                       boundary + kBlockBits - n, rng.between(first, int64_t{p.PageSize} * 8 - n)};
        for (const ItemRecord& o : layout_->records)
            if (!o.isDbUpdate && o.page == r.page) starts.push_back(itemSpan(o).lastBit() + 1);
        int64_t s = std::max(first, rng.pick(starts));
        if (byteAligned) s -= s % 8;
        r.block = static_cast<int16_t>(s / kBlockBits);
        r.beginByte = static_cast<int16_t>(s % kBlockBits / 8);
        r.beginBit = byteAligned ? 0 : static_cast<int16_t>(s % 8);
        (sizeInBits ? r.numBits : r.numBytes) = static_cast<int16_t>(size);
        r.color = static_cast<int32_t>(rng.chance(1, 10) ? rng.between(INT32_MIN, -1) : rng.between(0, 0xFFFFFF));
    }

    ItemRecord candidate() {
        const bool bitwise = layout_->card.EnableBitwise();
        ItemRecord r;
        switch (rng.between(0, 19)) {
            case 0: case 1: case 2: case 3: case 4: case 5: case 6: {  // field, combined field, big item
                const HostField& f = hostField();
                r.name = itemNameOf(f);
                for (int64_t parts = rng.chance(1, 3) ? rng.between(1, 3) : 0; parts > 0; --parts)
                    r.name += std::string(kCombinedFieldSeparator) + itemNameOf(hostField());
                r.fieldType = fieldTypeCode(f.fieldType);  // the type of the first chosen field
                r.encodingCode = EncodingCode(r.fieldType, static_cast<int>(rng.between(0, 3)), static_cast<int>(rng.between(-1, 3)));
                place(r, bytes(*layout_->card.page(0)), false, true);
                if (rng.chance(1, 6)) r.isBinary = true, r.bigItemNumber = static_cast<int16_t>(rng.between(-5, 300));
                return r;
            }
            case 7: case 8:
                if (!bitwise) return candidate();
            {
                const HostField& f = hostField();
                r.isBit = true;
                r.name = itemNameOf(f);
                r.fieldType = fieldTypeCode(f.fieldType);
                r.encodingCode = 1;  // a binary number, high byte first
                place(r, bits(), true, false);
                return r;
            }
            case 9: case 10: {  // the multi-track dialog: a binary field placed from any bit
                const HostField& f = hostField();
                r.isBinary = true;
                r.name = itemNameOf(f);
                r.fieldType = fieldTypeCode(f.fieldType);
                place(r, bytes(*layout_->card.page(0)), false, rng.chance(1, 3));
                return r;
            }
            case 11: {
                const HostField& f = hostField();
                r.isDbUpdate = true;
                r.dbFieldName = f.dbField;
                r.dbColumn = f.column;
                const int64_t word = rng.between(0, 2);
                r.name = word == 0 ? "Constant" : word == 1 ? "Count" : "CardSnNr";
                r.param1 = word == 0 && rng.chance(1, 5) ? itemNameOf(hostField()) : digits(0, word == 2 ? 1 : 4294967295);
                if (word == 1) r.param2 = digits(0, 255);
                return r;
            }
            default: return function(bitwise && rng.chance(1, 3), bitwise && rng.chance(1, 6));
        }
    }

    // A function as the editor's dialog makes it from what the operator entered.
    ItemRecord function(bool bits, bool simpleBitChecksum) {
        FunctionInput in;
        in.kind = simpleBitChecksum ? FunctionKind::Checksum : static_cast<FunctionKind>(rng.between(0, 3));
        if (rng.chance(1, 2)) in.fieldName = itemNameOf(hostField());
        int64_t size = bits ? this->bits() : rng.between(1, 8);
        switch (in.kind) {
            case FunctionKind::Constant:
                in.option = rng.chance(1, 4) ? kConstantField : kConstantValue;
                in.valueFromField = in.option == kConstantField;
                if (in.valueFromField) in.fieldName = itemNameOf(hostField());
                else if (bits) size = rng.between(1, 40), in.constantText = digits(0, size >= 32 ? 4294967295 : (int64_t{1} << size) - 1);
                else in.constantText = rng.chance(1, 10) ? "" : digits(0, 255);
                break;
            case FunctionKind::Count:
                in.option = static_cast<int>(rng.between(kCountWriteBeforeIncrement, kCountIncrementBeforeWrite));
                in.valueFromField = rng.chance(1, 3);
                if (in.valueFromField) in.fieldName = itemNameOf(hostField());
                in.countNumberText = digits(0, 255);
                in.countStepText = rng.chance(1, 10) ? "" : digits(0, 255);
                if (bits) size = rng.between(1, 32);
                break;
            case FunctionKind::CardSnNr:
                in.option = static_cast<int>(rng.between(kCardSnNrDecimal, kCardSnNrIntel));
                size = *requiredCardSnNrBytes(in.option) * (bits ? 8 : 1);
                break;
            case FunctionKind::Checksum: {
                // The file keeps an ADD checksum's start value for no checksum, so it gets none.
                in.option = static_cast<int>(rng.between(kChecksumAdd, kChecksumParity));
                size = in.option == kChecksumParity ? 1 : !bits ? 1 : in.option == kChecksumAdd ? 8 : rng.between(1, 8);
                in.startValueText = in.option == kChecksumAdd ? "0" : in.option == kChecksumParity ? digits(0, 1) : digits(0, (int64_t{1} << std::min<int64_t>(size, 8)) - 1);
                if (in.option == kChecksumCrc) in.polynomText = bits ? digits((int64_t{1} << size) + 1, (int64_t{2} << size) - 1) : digits(257, 511);
                in.rangeRow = static_cast<int16_t>(rng.between(6, 31));
                in.rangeBeginByte = static_cast<int16_t>(rng.between(0, 7));
                in.rangeCountText = rng.chance(1, 10) ? "" : rng.chance(1, 9) ? "0" : digits(1, 48);
                if (rng.chance(1, 4)) in.rangePage = static_cast<int16_t>(rng.between(0, layout_->card.PagesCount() - 1));
                if (bits && rng.chance(1, 4)) in.rangeBeginBit = static_cast<int16_t>(rng.between(0, 7));
            }
        }
        ItemRecord r;
        applyFunctionValues(in, bits ? kModeBitFunction : kModeFunction, r);
        r.isFunction = !bits;
        r.isBitFunction = bits && !simpleBitChecksum;
        r.isSimpleBitFunction = simpleBitChecksum;
        place(r, size, bits, !bits);
        return r;
    }

    const RandomLayout* layout_ = nullptr;
};

struct Files {
    std::string layout, encode;
};
struct Opened {
    CIClass card;
    RecordArray records;
};

// Saves in memory, or (one case a shard) through the real save on disk; opens what was saved.
class Storage {
public:
    Storage(const HostFieldList& fields, const fs::path& file) : fields_(fields), file_(file) {}
    Files save(const CIClass& card, const RecordArray& records) {
        if (file_.empty()) {
            const RenderedLayout rendered = renderLayoutFile(card, records, fields_);
            return last_ = {rendered.bytes, renderChipEncodeFile(rendered.usedFieldList, rendered.bigItemNumbers, fields_)};
        }
        RecordingPrompter prompter;
        const SaveOutcome out = saveLayout(file_, &card, records, fields_, prompter, kTranslator);
        EXPECT_TRUE(out.saved && out.warnings.empty()) << out.message;
        return last_ = {readBytes(file_), readBytes(chipEncodePathFor(file_))};
    }
    Opened open() {
        Opened o;
        RecordingPrompter prompter;
        const LayoutReadResult result = file_.empty() ? readLayoutBytes(last_.layout, o.card, o.records, prompter, &fields_)
                                                      : readLayout(file_, o.card, o.records, prompter, &fields_);
        EXPECT_TRUE(result.opened && result.warnings.empty() && prompter.messages.empty()) << result.message;
        return o;
    }

private:
    const HostFieldList& fields_;
    fs::path file_;
    Files last_;
};

void expectSameCard(const CIClass& a, const CIClass& b) {
    EXPECT_EQ(a.ChipSize(), b.ChipSize());
    EXPECT_EQ(a.UseHIDSection(), b.UseHIDSection());
    EXPECT_EQ(a.EnableBitwise(), b.EnableBitwise());
    for (int32_t p = 0; p < a.PagesCount(); ++p) EXPECT_EQ(a.GetBoundary(p), b.GetBoundary(p)) << "page " << p;
}

class LayoutRoundTripProperty : public ::testing::TestWithParam<int> {};

// Saving what was opened gives the same bytes: at once for records in the reader's order (a
// layout opened and saved again), from the second save on for records in the order placed.
TEST_P(LayoutRoundTripProperty, SaveOpenSaveKeepsRecordsAndBytes) {
    TempDir dir;
    for (uint64_t i = 0; i < 1000; ++i) {
        const uint64_t caseNumber = static_cast<uint64_t>(GetParam()) * 1000 + i;
        SCOPED_TRACE("case " + std::to_string(caseNumber) + " (KESTRIN_PROPERTY_SEED picks other layouts)");
        const RandomLayout layout = Generator(caseSeed(caseNumber)).make();
        const bool inOrder = caseNumber % 4 != 1;
        const RecordArray records = inOrder ? inReadingOrder(layout.records) : layout.records;
        const bool onDisk = i == static_cast<uint64_t>(GetParam() % 2);
        Storage storage(layout.fields, onDisk ? dir / "Case.IIF" : fs::path());

        const Files first = storage.save(layout.card, records);
        const Opened opened = storage.open();
        expectSameCard(layout.card, opened.card);
        ASSERT_EQ(opened.records.records(), inReadingOrder(records).records());
        const Files second = storage.save(opened.card, opened.records);
        if (!inOrder) {
            ASSERT_EQ(storage.open().records.records(), opened.records.records());
            ASSERT_TRUE(second.layout == storage.save(opened.card, opened.records).layout);
            continue;
        }
        ASSERT_TRUE(first.layout == second.layout) << first.layout << "\n----\n" << second.layout;
        ASSERT_TRUE(first.encode == second.encode) << first.encode << "\n----\n" << second.encode;
        if (onDisk) {
            EXPECT_EQ(readBytes(dir / "Case.IIF.BAK"), first.layout);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Shards, LayoutRoundTripProperty, ::testing::Range(0, 10));

// Random placements, mostly invalid (overlaps, places off the page or in the header, absurd
// numbers), answered at random: a refusal is told and changes nothing, an acceptance changes
// nothing, a replacement removes exactly the record the result names (the last record takes
// its slot), after a question answered OK or for the same item placed again.
TEST(PlacementProperty, InvalidPlacementsNeverCorruptTheRecords) {
    static const std::vector<std::string> absurd = {"", " ", "0", "-1", "-32768", "32768", "65536", "99999999999999999999",
                                                    "1e308", "1e999", "3.5", "0.4", " 12 ", "abc", "12abc", "0x10",
                                                    "+7", "1,5", "nan", "inf", "\"8\"", "4294967296"};
    int outcomes[3] = {0, 0, 0};
    for (uint64_t n = 0; n < 400; ++n) {
        SCOPED_TRACE("case " + std::to_string(1000000 + n));
        Generator gen(caseSeed(1000000 + n));
        RandomLayout layout = gen.make();
        Rng& rng = gen.rng;
        for (int k = 0; k < 15; ++k) {
            const int16_t pages = static_cast<int16_t>(layout.card.PagesCount());
            PlacementRequest q;
            std::vector<const ItemRecord*> placed;
            for (const ItemRecord& r : layout.records)
                if (!r.isDbUpdate) placed.push_back(&r);
            if (!placed.empty() && rng.chance(1, 2)) {
                q = placementRequestOf(*rng.pick(placed));  // the item again, or something on top of it
                if (rng.chance(1, 2)) q.beginByte = static_cast<int16_t>(q.beginByte + rng.between(-1, 1));
                if (rng.chance(1, 3)) q.mode = static_cast<int32_t>(rng.between(kModeField, kModeBitFunction));
            } else {
                q.mode = static_cast<int32_t>(rng.between(kModeField, kModeBitFunction));
                q.itemName = q.selectedText = q.mode % 2 ? rng.pick<std::string>({"Constant", "Count", "CardSnNr", "Checksum"})
                                                         : rng.pick(layout.fields.fields()).dbField;
                q.page = static_cast<int16_t>(rng.between(0, pages - 1));
                q.row = static_cast<int16_t>(rng.between(6, 31));
                q.beginByte = static_cast<int16_t>(rng.between(0, 7));
                q.beginBit = static_cast<int16_t>(rng.between(0, 7));
                q.nrBytesText = std::to_string(rng.between(1, 16));
                q.propertyOption = static_cast<int>(rng.between(-1, 4));
                q.valueFromField = rng.chance(1, 4);
                q.constantText = std::to_string(rng.between(0, 600));
                q.polynomText = std::to_string(rng.between(0, 600));
                q.startValueText = std::to_string(rng.between(0, 300));
                q.rangeRow = static_cast<int16_t>(rng.between(0, 32));
                q.rangeCountText = std::to_string(rng.between(0, 40));
            }
            for (int64_t breaks = rng.chance(1, 6) ? 0 : rng.between(1, 3); breaks > 0; --breaks) {
                switch (rng.between(0, 9)) {
                    case 0: q.page = static_cast<int16_t>(rng.chance(1, 2) ? -1 : rng.between(pages, 12)); break;
                    case 1: q.row = static_cast<int16_t>(rng.between(-5, 18)); break;
                    case 2: q.row = static_cast<int16_t>(rng.between(30, 300)); break;
                    case 3: q.beginByte = static_cast<int16_t>(rng.chance(1, 2) ? -1 : rng.between(8, 300)); break;
                    case 4: q.beginBit = static_cast<int16_t>(rng.chance(1, 2) ? -1 : rng.between(8, 700)); break;
                    case 5: q.nrBytesText = rng.pick(absurd); break;
                    case 6: q.row = static_cast<int16_t>(INT16_MAX - rng.between(0, 2)), q.beginByte = INT16_MAX; break;
                    case 7: q.constantText = rng.pick(absurd), q.polynomText = rng.pick(absurd); break;
                    case 8: q.startValueText = rng.pick(absurd), q.rangeCountText = rng.pick(absurd); break;
                    default: q.rangeRow = static_cast<int16_t>(rng.between(INT16_MIN, INT16_MAX)); break;
                }
            }
            const RecordArray before = layout.records;
            const Answer answer = rng.chance(1, 2) ? Answer::Ok : Answer::Cancel;
            RecordingPrompter prompter(answer);
            const PlacementResult result = ValidatePlacement(q, layout.card, layout.records, prompter, kTranslator);
            ASSERT_LE(prompter.messages.size(), 1u);
            const bool asked = !prompter.messages.empty() && prompter.messages[0].question;
            ASSERT_TRUE(result.code >= kPlacementRejected && result.code <= kPlacementReplaced);
            ++outcomes[result.code];
            if (result.code != kPlacementReplaced) {
                ASSERT_EQ(prompter.messages.size(), result.code == kPlacementRejected ? 1u : 0u);
                ASSERT_EQ(layout.records.records(), before.records());
                continue;
            }
            ASSERT_TRUE(result.removedIndex >= 0 && result.removedIndex < before.size());
            RecordArray expected = before;
            expected.removeAt(result.removedIndex);
            ASSERT_EQ(layout.records.records(), expected.records());
            if (asked) {
                EXPECT_EQ(answer, Answer::Ok);
                EXPECT_EQ(prompter.messages[0].buttons, Buttons::OkCancel);
            } else {
                EXPECT_EQ(before[result.removedIndex].name, q.itemName);
            }
        }
    }
    // The mix reaches every outcome.
    EXPECT_TRUE(outcomes[kPlacementRejected] > 3000 && outcomes[kPlacementAccepted] > 50 && outcomes[kPlacementReplaced] > 100)
        << outcomes[0] << " refused, " << outcomes[1] << " accepted, " << outcomes[2] << " replaced";
}

}  // namespace
