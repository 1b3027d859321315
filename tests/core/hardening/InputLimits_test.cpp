// The bounds that protect the control from hostile layouts: each is reached exactly at its
// number, and going beyond it gets the operator one message while the rest still opens.
#include <gtest/gtest.h>

#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "persist/InputLimits.h"
#include "persist/LayoutReader.h"
#include "support/TestSupport.h"

namespace kestrin {
namespace {

using test::RecordingPrompter;

// A layout of n one-byte fields, all at the first free byte (the reader does not check overlaps).
std::string layoutWithFields(int n) {
    std::string out = "[CARDDESIGN]\r\nSize=16K\r\nPages=1\r\n[ENCODE]\r\n";
    for (int i = 0; i < n; ++i) out += "F" + std::to_string(i) + "(1)=0,19,0,1,0\r\n";
    return out;
}

TEST(InputLimits, ItemsBeyondTheLimitAreLeftOutAndTold) {
    struct Case {
        int items;
        int kept;
        bool told;
    };
    for (const Case& c : {Case{kMaxItems, kMaxItems, false}, Case{kMaxItems + 33, kMaxItems, true}}) {
        RecordingPrompter prompter;
        CIClass card;
        RecordArray records;
        const LayoutReadResult result = readLayoutBytes(layoutWithFields(c.items), card, records, prompter);
        ASSERT_TRUE(result.opened);
        EXPECT_EQ(records.size(), c.kept);
        EXPECT_EQ(result.dropped.size(), static_cast<size_t>(c.items - c.kept));  // a check lists each
        ASSERT_EQ(prompter.messages.size(), c.told ? 1u : 0u) << c.items;
        if (c.told) {
            EXPECT_NE(prompter.messages[0].text.find("more than 32767 items; 33 were left out"), std::string::npos);
        }
    }
}

TEST(InputLimits, ValuesAreCutAtTheReadBufferAndTold) {
    struct Case {
        std::string value;  // of the SETTINGS key Font
        bool cut;
    };
    const std::string e = "\xE9";  // one character, two bytes in memory
    std::string accented;
    for (size_t i = 0; i < kMaxValueChars; ++i) accented += e;
    const Case cases[] = {
        {std::string(kMaxValueChars, '7'), false},
        {std::string(kMaxValueChars + 1, '7'), true},
        {accented, false},
        {accented + e, true},
        {"\"" + std::string(kMaxValueChars, 'q') + "\"", false},  // the quotes do not count
        {"\"" + std::string(kMaxValueChars + 1, 'q') + "\"", true},
    };
    for (const Case& c : cases) {
        RecordingPrompter prompter;
        CIClass card;
        RecordArray records;
        const std::string layout = test::crlf({"[CARDDESIGN]", "Size=2K", "[SETTINGS]", "Font=" + c.value});
        ASSERT_TRUE(readLayoutBytes(layout, card, records, prompter).opened);
        ASSERT_EQ(prompter.messages.size(), c.cut ? 1u : 0u) << c.value.size();
        if (c.cut) {
            EXPECT_NE(prompter.messages[0].text.find("1 values are longer than 1023 characters"), std::string::npos);
            EXPECT_NE(prompter.messages[0].text.find("[SETTINGS] Font"), std::string::npos);
        }
    }
}

TEST(InputLimits, DroppedEntryWarningsAreCountedBeyondTheirLimit) {
    std::string layout = "[CARDDESIGN]\r\nSize=2K\r\n[ENCODE]\r\n";
    for (int i = 0; i < 5000; ++i) layout += "Bad" + std::to_string(i) + "(1)=not numbers\r\n";
    RecordingPrompter prompter;
    CIClass card;
    RecordArray records;
    const LayoutReadResult result = readLayoutBytes(layout, card, records, prompter);
    ASSERT_TRUE(result.opened);
    ASSERT_EQ(result.warnings.size(), kMaxReadWarnings + 1);
    EXPECT_EQ(result.warnings.back(), "... and 4000 more entries dropped");
    ASSERT_EQ(result.dropped.size(), kMaxReadWarnings + 1);  // a check reports the count too
    EXPECT_EQ(result.dropped.back().reason, result.warnings.back());
    EXPECT_TRUE(prompter.messages.empty());
}

TEST(InputLimits, LayoutBytesBeyondTheFileLimitAreRefused) {
    RecordingPrompter prompter;
    CIClass card;
    RecordArray records;
    const std::string huge(kMaxLayoutFileBytes + 1, '\n');
    const LayoutReadResult result = readLayoutBytes(huge, card, records, prompter);
    EXPECT_FALSE(result.opened);
    ASSERT_EQ(prompter.messages.size(), 1u);
    EXPECT_EQ(prompter.messages[0].text, "The layout is larger than 64 MiB and was not opened.");
}

}  // namespace
}  // namespace kestrin
