#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "card/CIClass.h"
#include "rules/PlacementValidation.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"

namespace kestrin::test {

// A small generator of our own (splitmix64), so that a seed names the same layout with every
// standard library.
class Rng {
public:
    explicit Rng(uint64_t seed) : state_(seed) {}
    uint64_t next();
    // A number from lo to hi, both included.
    int64_t between(int64_t lo, int64_t hi);
    // True num times out of den.
    bool chance(int num, int den) { return between(1, den) <= num; }
    template <class T>
    const T& pick(const std::vector<T>& v) {
        return v[static_cast<size_t>(between(0, static_cast<int64_t>(v.size()) - 1))];
    }

private:
    uint64_t state_;
};

// A layout as an operator builds it: a card with its properties, the host fields of the
// project, and records made the way the item editor, the multi-track dialog and the
// database-update dialog make them (plus the few kinds only an opened file gives: big items
// with their numbers and simple bit checksums). Every placed record was accepted by the
// placement rules against the records before it, and would be accepted in any order.
struct RandomLayout {
    CIClass card;
    RecordArray records;
    HostFieldList fields;
};

// The same seed gives the same layout. Most layouts hold up to 12 records; one in 40 or so
// holds 30 to 120.
RandomLayout randomValidLayout(uint64_t seed);

// Why the placement rules refuse the candidate next to the records already placed: the
// editor's request (when given) and the request the layout check rebuilds from the stored
// record are both judged; a big item goes through the multi-track rules; a checksum must
// also stand when the older checksums are judged against it (the range rules are not
// symmetric); and the boundaries and HID switch of the card must not cut it. Empty when it
// may be placed.
std::string placementProblem(const CIClass& card, const RecordArray& records, const ItemRecord& candidate,
                             const PlacementRequest* editorRequest = nullptr);

// Everything the layout check finds, one line each; empty for a clean layout.
std::vector<std::string> auditProblems(const CIClass& card, const RecordArray& records);

// A placement request the rules should mostly refuse: overlaps with placed items, places off
// the page, in the header or HID area or across a boundary, absurd and negative numbers,
// texts that are no numbers, and function values out of their ranges. Some are valid.
PlacementRequest randomInvalidRequest(Rng& rng, const RandomLayout& layout);

// The records in the order the reader gives them back: byte-wise fields, bit fields,
// combined fields, byte functions (checksums last), bit functions (checksums last),
// database updates; each group keeps the order of the array.
RecordArray inReadingOrder(const RecordArray& records);

// Compares two records member by member: empty when equal, otherwise the first member that
// differs with both values.
std::string firstDifference(const ItemRecord& expected, const ItemRecord& actual);

// One line for a record, a card and a layout, for failure messages.
std::string describe(const ItemRecord& r);
std::string describe(const CIClass& card);
std::string describe(const RandomLayout& layout);

}  // namespace kestrin::test
