#include <gtest/gtest.h>

#include "card/CIClass.h"
#include "rules/LayoutPropertiesRules.h"
#include "rules/NumberChecks.h"
#include "items/RecordArray.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

BoundaryTexts allAt(const std::string& value) {
    BoundaryTexts t;
    t.fill(value);
    return t;
}

TEST(LayoutProperties, BoxOfPageNMinusOneIsComparedWithItemsOfPageN) {
    const Translator tr;
    RecordArray records;
    records.add(field("P0", 0, 19, 0, 16));  // page 0 is never checked
    records.add(field("P2", 2, 19, 0, 16));  // blocks 19 and 20
    records.add(field("P7", 7, 19, 0, 16));
    BoundaryTexts boxes = allAt("18");
    boxes[1] = "20";  // box 1 pairs with page 2: one block into the item
    boxes[6] = "19";  // box 6 pairs with page 7: exactly at the item's first block
    boxes[7] = "20";  // box 7 is never compared
    const auto check = checkLayoutProperties(boxes, false, records, tr);
    EXPECT_TRUE(check.boundaryFailed);
    EXPECT_EQ(check.cutItems, std::vector<int32_t>{1});
    EXPECT_TRUE(check.cutBoxes[1]);
    EXPECT_FALSE(check.cutBoxes[6]);
    EXPECT_FALSE(check.cutBoxes[7]);
    ASSERT_EQ(check.messages.size(), 1u);
    EXPECT_EQ(check.messages[0], "Some or all application boundaries cut through database items or functions.\r\n"
                                 "Move the boundary or click cancel and move your iClass items.");
}

TEST(LayoutProperties, HidCheckAndBothMessagesInOrder) {
    const Translator tr;
    RecordArray records;
    records.add(field("Hid", 0, 18, 0, 1));
    records.add(field("Free", 0, 19, 0, 1));
    records.add(field("Cut", 1, 17, 0, 16));
    RecordingPrompter prompter;
    const auto check = checkLayoutProperties(allAt("18"), true, records, tr);
    EXPECT_EQ(check.hidItems, std::vector<int32_t>{0});
    EXPECT_FALSE(acceptLayoutProperties(check, prompter));
    ASSERT_EQ(prompter.messages.size(), 2u);
    EXPECT_EQ(prompter.messages[0].text.rfind("Some or all", 0), 0u);
    EXPECT_EQ(prompter.messages[1].text, "HID Space should not cover database items or functions.\r\n"
                                         "Disable HID application or click cancel and move your iClass items.");
    EXPECT_TRUE(checkLayoutProperties(allAt("18"), false, RecordArray{}, tr).messages.empty());
    EXPECT_TRUE(acceptLayoutProperties(checkLayoutProperties(allAt("16"), false, records, tr), prompter));
}

TEST(LayoutProperties, BoundaryBoxesAcceptFiveToThirtyOne) {
    const Translator tr;
    for (const char* ok : {"5", "31", "05", " 7 "}) EXPECT_TRUE(checkBoundaryBox(ok, tr).ok) << ok;
    for (const char* bad : {"4", "32", "", "x"}) EXPECT_FALSE(checkBoundaryBox(bad, tr).ok) << bad;
    EXPECT_EQ(checkBoundaryBox("", tr).message, "<Please enter a value between> 5 & 31!");
}

TEST(LayoutProperties, ControlsMapToChipTypesAndWriteBack) {
    EXPECT_EQ(chipTypeOf(true, 1), iSmallOnePage);
    EXPECT_EQ(chipTypeOf(false, 0), iBigOnePage);
    EXPECT_EQ(chipTypeOf(false, 1), iBigEightPages);
    EXPECT_TRUE(boundaryTabEnabled(true, 1));
    EXPECT_FALSE(boundaryTabEnabled(true, 0));
    EXPECT_FALSE(boundaryTabEnabled(false, 1));

    CIClass card;
    BoundaryTexts boxes = allAt("18");
    boxes[0] = "10";
    boxes[5] = "25";
    EXPECT_TRUE(writeLayoutProperties(card, false, 1, true, false, boxes));
    EXPECT_EQ(card.ChipSize(), iBigEightPages);
    EXPECT_TRUE(card.EnableBitwise());
    EXPECT_FALSE(card.UseHIDSection());
    EXPECT_EQ(card.GetBoundary(0), 10);
    EXPECT_EQ(card.GetBoundary(5), 25);
    EXPECT_EQ(boundaryTextsOf(card)[5], "25");

    boxes[3] = "";
    EXPECT_FALSE(writeLayoutProperties(card, false, 1, false, true, boxes));
    EXPECT_EQ(card.GetBoundary(5), 18);  // rebuilt pages keep their defaults
    EXPECT_TRUE(writeLayoutProperties(card, true, 0, false, true, boxes));  // one page: no boundaries taken
    EXPECT_EQ(boundaryTextsOf(card), allAt("18"));
}

}  // namespace
