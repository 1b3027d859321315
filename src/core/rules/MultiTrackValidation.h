#pragma once
#include <cstdint>
#include <optional>
#include <string>

#include "rules/PlacementValidation.h"

namespace kestrin {

// A field spread over several tracks, as the multi-track dialog holds it.
struct MultiTrackRequest {
    std::string fieldName;
    int16_t page = -1;
    int16_t row = -1;
    int16_t beginByte = -1;
    int16_t beginBit = 0;
    std::string nrBytesText;
};

inline constexpr int32_t kTextSegmentFit = 4536;
inline constexpr int32_t kTextStartInHeader = 4609;

// The first rule a multi-track item breaks: no field (or no size), past the page end,
// starting in the header or HID area, across the application boundary of an eight-page
// card, or over another item of the page (the first recordCount records, all when negative,
// leaving out the record at index skip: the item being edited).
std::optional<PlacementViolation> multiTrackViolation(const MultiTrackRequest& request, const CIClass& card,
                                                      const RecordArray& records, const Translator& translator,
                                                      int32_t recordCount = -1, int32_t skip = -1);

// Shows the first failure (every one refuses the placement); true when the item may be stored.
bool ValidateMultiTrack(const MultiTrackRequest& request, const CIClass& card, const RecordArray& records,
                        Prompter& prompter, const Translator& translator, int32_t skip = -1);

}  // namespace kestrin
