// Random layouts, each item kept only when the placement rules accept it, save and open to
// the same card and records and save again to the same bytes; random (mostly invalid)
// placements leave the record array whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "card/CIClass.h"
#include "items/ItemSpan.h"
#include "items/RecordArray.h"
#include "persist/ChipEncodeFile.h"
#include "persist/HostFields.h"
#include "persist/LayoutReader.h"
#include "persist/LayoutRenderer.h"
#include "persist/LayoutSaver.h"
#include "rules/Encodings.h"
#include "rules/FunctionProperties.h"
#include "rules/LayoutAudit.h"
#include "rules/MultiTrackValidation.h"
#include "rules/PlacementValidation.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

// splitmix64: a seed names the same layout with every standard library.
struct Rng {
    uint64_t state;
    uint64_t next() {
        uint64_t z = (state += 0x9E3779B97F4A7C15ull);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
        return z ^ (z >> 31);
    }
    int64_t between(int64_t lo, int64_t hi) { return lo + static_cast<int64_t>(next() % (static_cast<uint64_t>(hi - lo) + 1)); }
    bool chance(int num, int den) { return between(1, den) <= num; }
    template <class T>
    const T& pick(const std::vector<T>& v) { return v[static_cast<size_t>(between(0, static_cast<int64_t>(v.size()) - 1))]; }
    std::string digits(int64_t lo, int64_t hi) { return (chance(1, 12) ? "00" : "") + std::to_string(between(lo, hi)); }
};

uint64_t caseSeed(uint64_t caseNumber) {
    static const char* given = std::getenv("KESTRIN_PROPERTY_SEED");
    return Rng{(given ? std::strtoull(given, nullptr, 0) : 0x4B657374) ^ (caseNumber * 0x9E3779B97F4A7C15ull)}.next();
}

const Translator kTranslator;

// Host field names a project can hold: quotes, brackets, separators and Windows-1252 letters
// anywhere in them, none a number or joined like a combined field's parts.
const std::vector<std::string> kNames = {"Name", "Nr", "a", "B7", "Nr 7", "'Name'", "a'b", "\"q\"", "x\"", "(x)", "a[x]", "B,C",
                                         "\xC3\xA9t\xC3\xA9", "\xE2\x82\xAC 5", "Stra\xC3\x9F" "e", "%a%", "T\tab",
                                         "\xC5\x92uvre", "Mid dle", "a;b", "x]"};

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
    return recordsOf(sorted);
}

struct RandomLayout { CIClass card; RecordArray records; HostFieldList fields; };

// A layout as an operator builds one: host fields with names a project can hold (quotes,
// brackets, Windows-1252 letters), a card with random properties, and candidate items of every
// kind at random places and at the edges; the product's own rules decide which ones stay.
struct Generator {
    explicit Generator(uint64_t seed) : rng{seed} {}

    RandomLayout& make() {
        l.card.setChipSize(static_cast<IClassType>(rng.between(iSmallOnePage, iBigEightPages)));
        l.card.setUseHIDSection(rng.chance(2, 3));
        l.card.setEnableBitwise(rng.chance(2, 3));
        for (int32_t p = 1; p < l.card.PagesCount(); ++p)
            if (rng.chance(1, 2)) l.card.SetBoundary(p, static_cast<int32_t>(rng.pick<int64_t>({6, 32, rng.between(6, 32)})));
        std::vector<std::string> names = kNames;  // shuffled the same way with every standard library
        for (int64_t i = static_cast<int64_t>(names.size()) - 1; i > 0; --i)
            std::swap(names[static_cast<size_t>(i)], names[static_cast<size_t>(rng.between(0, i))]);
        std::vector<HostField> fields;
        for (int16_t i = 0, n = static_cast<int16_t>(rng.between(1, 8)); i < n; ++i)
            fields.push_back({names[2 * i], names[rng.chance(1, 2) ? 2 * i : 2 * i + 1],
                              rng.pick<std::string>({"Character", "Number", "Numeric", "Date", "Binary", "Memo"}),
                              static_cast<int16_t>(rng.between(1, 200)), static_cast<int16_t>(2 * i + 1)});
        l.fields.setFields(std::move(fields));
        const int64_t target = rng.chance(1, 40) ? rng.between(30, 120) : rng.between(0, 12);
        for (int64_t attempt = 0; attempt < target * 6 && l.records.size() < target; ++attempt) {
            const ItemRecord c = candidate();
            const MultiTrackRequest track{c.name, c.page, c.block, c.beginByte, c.beginBit, std::to_string(c.numBytes)};
            if (c.isDbUpdate || (c.isBinary ? !multiTrackViolation(track, l.card, l.records, kTranslator)
                                            : placementViolations(placementRequestOf(c), l.card, l.records, kTranslator).empty()))
                l.records.add(c);
        }
        // The layout check must pass in the order of placing and in the reader's order.
        for (;;) {
            const RecordArray read = inReadingOrder(l.records);
            if (auto v = auditLayout(l.card, l.records, kTranslator); !v.empty())
                l.records.removeAt(v.front().recordIndex);
            else if (!(v = auditLayout(l.card, read, kTranslator)).empty())
                l.records.removeAt(static_cast<int32_t>(
                    std::find(l.records.begin(), l.records.end(), read[v.front().recordIndex]) - l.records.begin()));
            else
                return l;
        }
    }

    Rng rng;
    RandomLayout l;

    std::string fieldName() { return name(rng.pick(l.fields.fields())); }
    // The database name mostly, as the field list shows it, the other name now and then.
    std::string name(const HostField& f) { return rng.chance(4, 5) ? f.dbField : f.name; }
    int64_t size(bool bits) {
        return rng.chance(7, 10) ? rng.between(1, bits ? 16 : 8) : rng.between(bits ? 17 : 9, bits ? kMaxBitFieldBits : 64);
    }

    // Puts r on a random page at a start bit anywhere or at an edge: the first free block,
    // the page end, around the boundary, right behind an item already placed.
    void place(ItemRecord& r, int64_t size, bool inBits, bool byteAligned) {
        r.page = static_cast<int16_t>(rng.between(0, l.card.PagesCount() - 1));
        const CPage& p = *l.card.page(r.page);
        const int64_t block = PageAddress::BitsPerBlock, n = inBits ? size : size * 8, first = p.BeginFreeSpace * block,
                      end = p.PageSize * 8, boundary = p.Boundary * block;
        std::vector<int64_t> starts = {first, end - n, boundary - n, boundary, boundary + block - n, rng.between(first, end - 1)};
        for (const ItemRecord& o : l.records)
            if (!o.isDbUpdate && o.page == r.page) starts.push_back(itemSpan(o).lastBit() + 1);
        int64_t s = std::max(first, rng.pick(starts));
        if (byteAligned) s -= s % 8;
        r.block = static_cast<int16_t>(s / block), r.beginByte = static_cast<int16_t>(s % block / 8);
        r.beginBit = byteAligned ? 0 : static_cast<int16_t>(s % 8);
        (inBits ? r.numBits : r.numBytes) = static_cast<int16_t>(size);
        r.color = static_cast<int32_t>(rng.chance(1, 10) ? rng.between(INT32_MIN, -1) : rng.between(0, 0xFFFFFF));
    }

    // A candidate of any kind for the layout as it now is.
    ItemRecord candidate() {
        const bool bitwise = l.card.EnableBitwise();
        ItemRecord r;
        const int64_t kind = rng.between(0, 9);
        if (kind < 5) {  // a field, a combined field, a big item, a bit field, a multi-track field
            const HostField& f = rng.pick(l.fields.fields());
            r.name = name(f), r.fieldType = fieldTypeCode(f.fieldType);
            r.isBit = bitwise && kind == 3, r.isBinary = kind == 4;
            if (kind < 3)
                for (int64_t parts = rng.chance(1, 3) ? rng.between(1, 3) : 0; parts > 0; --parts)
                    r.name += std::string(kCombinedFieldSeparator) + fieldName();
            r.encodingCode = r.isBit ? 1 : EncodingCode(r.fieldType, static_cast<int>(rng.between(0, 3)),
                                                        static_cast<int>(rng.between(-1, 3)));
            if (kind == 2) r.isBinary = true, r.bigItemNumber = static_cast<int16_t>(rng.between(-5, 300));
            place(r, size(r.isBit), r.isBit, !r.isBit && (kind != 4 || rng.chance(1, 3)));
        } else if (kind == 5) {
            const HostField& f = rng.pick(l.fields.fields());
            const int64_t word = rng.between(0, 2);
            r.isDbUpdate = true, r.dbFieldName = f.dbField, r.dbColumn = f.column;
            r.name = rng.pick<std::string>({"Constant", "Count", "CardSnNr"});
            r.param1 = r.name == "Constant" && rng.chance(1, 5) ? fieldName() : rng.digits(0, word == 2 ? 1 : 4294967295);
            if (r.name == "Count") r.param2 = rng.digits(0, 255);
        } else {
            r = function(bitwise && rng.chance(1, 3), bitwise && rng.chance(1, 6));
        }
        return r;
    }

    // A function as the editor's dialog makes it from what the operator entered; values out of
    // range are left for the placement rules to refuse.
    ItemRecord function(bool bits, bool simpleBitChecksum) {
        FunctionInput in;
        in.kind = simpleBitChecksum ? FunctionKind::Checksum : static_cast<FunctionKind>(rng.between(0, 3));
        in.option = static_cast<int>(rng.between(0, 3));
        in.valueFromField = rng.chance(1, 4);
        if (in.valueFromField || rng.chance(1, 2)) in.fieldName = fieldName();
        in.constantText = rng.chance(1, 10) ? "" : rng.digits(0, rng.chance(1, 2) ? 255 : 4294967295);
        in.countNumberText = rng.digits(0, 255);
        in.countStepText = rng.chance(1, 10) ? "" : rng.digits(0, 255);
        int64_t size = rng.between(1, bits ? 40 : 8);
        if (in.kind == FunctionKind::CardSnNr) size = *requiredCardSnNrBytes(in.option) * (bits ? 8 : 1);
        if (in.kind == FunctionKind::Checksum) {
            in.option =
                simpleBitChecksum || rng.chance(1, 3) ? static_cast<int>(rng.between(kChecksumAdd, kChecksumParity)) : in.option;
            size = in.option == kChecksumParity ? 1 : !bits ? 1 : rng.between(1, 8);
            // The file keeps no start value for an ADD checksum, so it gets none.
            in.startValueText = in.option == kChecksumAdd ? "0" : rng.digits(0, (int64_t{1} << size) - 1);
            in.polynomText = rng.digits(size == 1 ? 257 : (int64_t{1} << size) + 1, size == 1 ? 511 : (int64_t{2} << size) - 1);
            in.rangeRow = static_cast<int16_t>(rng.between(6, 31)), in.rangeBeginByte = static_cast<int16_t>(rng.between(0, 7));
            in.rangeCountText = rng.chance(1, 10) ? "" : rng.chance(1, 9) ? "0" : rng.digits(1, 48);
            if (rng.chance(1, 4)) in.rangePage = static_cast<int16_t>(rng.between(0, l.card.PagesCount() - 1));
            if (bits && rng.chance(1, 4)) in.rangeBeginBit = static_cast<int16_t>(rng.between(0, 7));
        }
        ItemRecord r;
        applyFunctionValues(in, bits ? kModeBitFunction : kModeFunction, r);
        r.isFunction = !bits, r.isBitFunction = bits && !simpleBitChecksum, r.isSimpleBitFunction = simpleBitChecksum;
        place(r, size, bits, !bits);
        return r;
    }
};

// Saving what was opened gives the same bytes: at once for records in the reader's order (a
// layout opened and saved again), from the second save on for records in the order placed.
class LayoutRoundTripProperty : public ::testing::TestWithParam<int> {};

TEST_P(LayoutRoundTripProperty, SaveOpenSaveKeepsRecordsAndBytes) {
    for (uint64_t i = 0; i < 1000; ++i) {
        const uint64_t caseNumber = static_cast<uint64_t>(GetParam()) * 1000 + i;
        SCOPED_TRACE("case " + std::to_string(caseNumber) + " (KESTRIN_PROPERTY_SEED picks other layouts)");
        const RandomLayout l = Generator(caseSeed(caseNumber)).make();
        std::string layoutBytes;
        auto save = [&](const CIClass& card, const RecordArray& records) {
            const RenderedLayout rendered = renderLayoutFile(card, records, l.fields);
            layoutBytes = rendered.bytes;
            return rendered.bytes + "\n--\n" + renderChipEncodeFile(rendered.usedFieldList, rendered.bigItemNumbers, l.fields);
        };
        auto open = [&](CIClass& card) {
            RecordArray records;
            RecordingPrompter prompter;
            const LayoutReadResult result = readLayoutBytes(layoutBytes, card, records, prompter, &l.fields);
            EXPECT_TRUE(result.opened && result.warnings.empty() && prompter.messages.empty()) << result.message;
            return records;
        };
        const bool inOrder = caseNumber % 4 != 1;
        const RecordArray records = inOrder ? inReadingOrder(l.records) : l.records;
        const std::string first = save(l.card, records);
        CIClass card, again;
        const RecordArray opened = open(card);
        EXPECT_EQ(std::tuple(card.ChipSize(), card.UseHIDSection(), card.EnableBitwise()),
                  std::tuple(l.card.ChipSize(), l.card.UseHIDSection(), l.card.EnableBitwise()));
        for (int32_t p = 0; p < card.PagesCount(); ++p) EXPECT_EQ(card.GetBoundary(p), l.card.GetBoundary(p)) << "page " << p;
        ASSERT_EQ(opened.records(), inReadingOrder(records).records());
        const std::string second = save(card, opened);
        if (!inOrder) {
            ASSERT_EQ(open(again).records(), opened.records());
        }
        ASSERT_TRUE((inOrder ? first : save(card, opened)) == second) << first << "\n----\n" << second;
    }
}

INSTANTIATE_TEST_SUITE_P(Shards, LayoutRoundTripProperty, ::testing::Range(0, 10));

// Random placements, mostly invalid (overlaps, places off the page or in the header, absurd
// numbers), answered at random: a refusal is told and changes nothing, an acceptance changes
// nothing, a replacement removes exactly the record the result names (the last record takes
// its slot), after a question answered OK or for the same item placed again.
TEST(PlacementProperty, InvalidPlacementsNeverCorruptTheRecords) {
    static const std::vector<std::string> absurd = {"", " ", "0", "-1", "-32768", "32768", "65536", "99999999999999999999",
                                                    "1e308", "3.5", "0.4", " 12 ", "abc", "12abc", "0x10", "+7", "1,5",
                                                    "nan", "\"8\"", "4294967296"};
    int outcomes[3] = {0, 0, 0};
    for (uint64_t n = 0; n < 400; ++n) {
        SCOPED_TRACE("case " + std::to_string(1000000 + n));
        Generator gen(caseSeed(1000000 + n));
        RandomLayout& layout = gen.make();
        Rng& rng = gen.rng;
        std::vector<ItemRecord> placed;
        for (const ItemRecord& r : layout.records)
            if (!r.isDbUpdate) placed.push_back(r);
        for (int k = 0; k < 15; ++k) {
            // The item again, something on top of it, or a new candidate of any kind.
            PlacementRequest q = placementRequestOf(!placed.empty() && rng.chance(1, 2) ? rng.pick(placed) : gen.candidate());
            q.beginByte = static_cast<int16_t>(q.beginByte + rng.between(-1, 1) * rng.chance(1, 2));
            if (rng.chance(1, 3)) q.mode = static_cast<int32_t>(rng.between(kModeField, kModeBitFunction));
            for (int64_t breaks = rng.chance(1, 6) ? 0 : rng.between(1, 3); breaks > 0; --breaks) {
                const auto big = [&](int64_t lo, int64_t hi) {
                    return static_cast<int16_t>(rng.chance(1, 2) ? -1 : rng.between(lo, hi)); };
                switch (rng.between(0, 8)) {
                    case 0: q.page = big(layout.card.PagesCount(), 12); break;
                    case 1: q.row = static_cast<int16_t>(rng.between(-5, 300)); break;
                    case 2: q.beginByte = big(8, 300); break;
                    case 3: q.beginBit = big(8, 700); break;
                    case 4: q.nrBytesText = rng.pick(absurd); break;
                    case 5: q.row = static_cast<int16_t>(INT16_MAX - rng.between(0, 2)), q.beginByte = INT16_MAX; break;
                    case 6: q.constantText = rng.pick(absurd), q.polynomText = rng.pick(absurd); break;
                    case 7: q.startValueText = rng.pick(absurd), q.rangeCountText = rng.pick(absurd); break;
                    default: q.rangeRow = static_cast<int16_t>(rng.between(INT16_MIN, INT16_MAX)); break;
                }
            }
            RecordArray expected = layout.records;
            const Answer answer = rng.chance(1, 2) ? Answer::Ok : Answer::Cancel;
            RecordingPrompter prompter(answer);
            const PlacementResult result = ValidatePlacement(q, layout.card, layout.records, prompter, kTranslator);
            ASSERT_TRUE(result.code >= kPlacementRejected && result.code <= kPlacementReplaced);
            ++outcomes[result.code];
            const bool asked = prompter.messages.size() == 1 && prompter.messages[0].question;
            if (result.code != kPlacementReplaced) {
                ASSERT_EQ(prompter.messages.size(), result.code == kPlacementRejected ? 1u : 0u);
            } else {
                ASSERT_TRUE(result.removedIndex >= 0 && result.removedIndex < expected.size());
                ASSERT_TRUE(asked ? answer == Answer::Ok && prompter.messages[0].buttons == Buttons::OkCancel
                                  : prompter.messages.empty() && expected[result.removedIndex].name == q.itemName);
                expected.removeAt(result.removedIndex);
            }
            ASSERT_EQ(layout.records.records(), expected.records());
        }
    }
    // The mix reaches every outcome.
    EXPECT_TRUE(outcomes[kPlacementRejected] > 3000 && outcomes[kPlacementAccepted] > 50 && outcomes[kPlacementReplaced] > 100)
        << outcomes[0] << " refused, " << outcomes[1] << " accepted, " << outcomes[2] << " replaced";
}

}  // namespace
