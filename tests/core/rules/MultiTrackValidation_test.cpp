#include <gtest/gtest.h>

#include "card/CIClass.h"
#include "rules/MultiTrackValidation.h"
#include "items/RecordArray.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

struct MultiTrackCase {
    const char* name;
    IClassType chip;
    MultiTrackRequest request;
    int32_t textId;  // 0: accepted
};

class MultiTrack : public ::testing::TestWithParam<MultiTrackCase> {};

TEST_P(MultiTrack, RefusesTheFirstBrokenRule) {
    const auto& c = GetParam();
    CIClass card;
    card.setChipSize(c.chip);
    RecordArray records;
    records.add(field("Other", 0, 28, 0, 8));
    RecordingPrompter prompter;
    const Translator tr;
    EXPECT_EQ(ValidateMultiTrack(c.request, card, records, prompter, tr), c.textId == 0);
    const auto v = multiTrackViolation(c.request, card, records, tr);
    EXPECT_EQ(v ? v->textId : 0, c.textId);
    EXPECT_EQ(prompter.messages.size(), c.textId == 0 ? 0u : 1u);
    EXPECT_EQ(records.size(), 1);  // a refusal never changes the records
}

INSTANTIATE_TEST_SUITE_P(
    Cases, MultiTrack,
    ::testing::Values(MultiTrackCase{"EndsAtPageEnd", iSmallOnePage, {"Photo", 0, 30, 0, 0, "16"}, 0},
                      MultiTrackCase{"OneBytePast", iSmallOnePage, {"Photo", 0, 30, 1, 0, "16"}, kTextSegmentFit},
                      MultiTrackCase{"BitPushesPast", iSmallOnePage, {"Photo", 0, 30, 0, 1, "16"}, kTextSegmentFit},
                      MultiTrackCase{"NoField", iSmallOnePage, {"", 0, 19, 0, 0, "4"}, kTextIncomplete},
                      MultiTrackCase{"NoSize", iSmallOnePage, {"Photo", 0, 19, 0, 0, ""}, kTextIncomplete},
                      MultiTrackCase{"FirstFreeBlock", iSmallOnePage, {"Photo", 0, 19, 0, 0, "8"}, 0},
                      MultiTrackCase{"InHid", iSmallOnePage, {"Photo", 0, 18, 7, 0, "1"}, kTextStartInHeader},
                      MultiTrackCase{"AcrossBoundary", iBigEightPages, {"Photo", 2, 17, 0, 0, "16"}, kTextBoundary},
                      MultiTrackCase{"UpToBoundary", iBigEightPages, {"Photo", 2, 16, 0, 0, "16"}, 0},
                      MultiTrackCase{"NoBoundaryOnOnePage", iBigOnePage, {"Photo", 0, 17 + 2, 0, 0, "16"}, 0},
                      MultiTrackCase{"OverOtherItem", iSmallOnePage, {"Photo", 0, 27, 0, 0, "9"}, kTextOverlapOther},
                      MultiTrackCase{"OverSameName", iSmallOnePage, {"Other", 0, 28, 7, 0, "1"}, kTextOverlapSameName}),
    [](const auto& testInfo) { return std::string(testInfo.param.name); });

}  // namespace
