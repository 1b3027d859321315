#include <gtest/gtest.h>

#include <array>

#include "base/KestrinError.h"
#include "card/CIClass.h"
#include "items/GridRows.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "persist/LayoutReader.h"
#include "support/TestSupport.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

class LayoutReaderTest : public ::testing::Test {
protected:
    LayoutReadResult read(const std::string& text, Answer answer = Answer::Yes) {
        const auto file = dir / "L.IIF";
        writeBytes(file, text);
        prompter = RecordingPrompter(answer);
        return readLayout(file, card, records, prompter, &fields);
    }

    TempDir dir;
    CIClass card;
    RecordArray records;
    HostFieldList fields;
    RecordingPrompter prompter;
};

TEST_F(LayoutReaderTest, RaisesForNoNameAndMissingFile) {
    try {
        readLayout("", card, records, prompter);
        FAIL();
    } catch (const KestrinError& e) {
        EXPECT_EQ(e.source(), "iClass UserControl");
        EXPECT_EQ(e.description(), "No filename given.");
    }
    try {
        readLayout(dir / "none.IIF", card, records, prompter);
        FAIL();
    } catch (const KestrinError& e) {
        EXPECT_EQ(e.description(), "File doesn't exist");
    }
}

struct VersionCase {
    const char* version;  // nullptr: no Version key
    bool warns;
};

class VersionRule : public LayoutReaderTest, public ::testing::WithParamInterface<VersionCase> {};

TEST_P(VersionRule, WarnsOnlyForLaterFiles) {
    const auto c = GetParam();
    std::string text = "[GENERAL]\r\n";
    if (c.version) text += std::string("Version=") + c.version + "\r\n";
    text += "[CARDDESIGN]\r\nSize=16K\r\nPages=1\r\n";
    const auto result = read(text, Answer::No);
    EXPECT_EQ(prompter.messages.size(), c.warns ? 1u : 0u);
    EXPECT_EQ(result.opened, !c.warns);
    EXPECT_EQ(card.ChipSize(), c.warns ? iSmallOnePage : iBigOnePage);  // on No nothing is applied
}

INSTANTIATE_TEST_SUITE_P(Versions, VersionRule,
                         ::testing::Values(VersionCase{"6.2.0", true}, VersionCase{"6.1.4", false},
                                           VersionCase{"6.0.9", false}, VersionCase{nullptr, false},
                                           VersionCase{"7", true}, VersionCase{"6.1.5", true},
                                           VersionCase{"5.99.99", false}, VersionCase{"garbage", false}));

TEST_F(LayoutReaderTest, LaterVersionQuestionTextAndYesOpens) {
    const auto result = read("[GENERAL]\r\nVersion=6.2.0\r\n[CARDDESIGN]\r\nSize=2K\r\n", Answer::Yes);
    ASSERT_EQ(prompter.messages.size(), 1u);
    const auto& m = prompter.messages[0];
    EXPECT_TRUE(m.question);
    EXPECT_EQ(m.buttons, Buttons::YesNo);
    EXPECT_EQ(m.icon, Icon::Exclamation);
    EXPECT_EQ(m.text,
              "The file you are trying to open was made in a later version of LK than the one you are currently using. "
              "\r\n\r\nThe file was created with version 6.2.0\r\nYou are using version 6.1.4 of LK. \r\n"
              "It is recommended you upgrade LK.\r\n\r\nIf you open the file, some data might be lost on saving. "
              "\r\nContinue anyway?");
    EXPECT_TRUE(result.opened);
}

struct DesignCase {
    const char* cardDesign;
    IClassType chip;
    bool hid, bit;
};

class CardDesign : public LayoutReaderTest, public ::testing::WithParamInterface<DesignCase> {};

TEST_P(CardDesign, SetsChipTypeThenReappliesSwitches) {
    const auto c = GetParam();
    card.setChipSize(iBigOnePage);  // what an unknown Size keeps
    read(std::string("[CARDDESIGN]\r\n") + c.cardDesign);
    EXPECT_EQ(card.ChipSize(), c.chip);
    EXPECT_EQ(card.UseHIDSection(), c.hid);
    EXPECT_EQ(card.EnableBitwise(), c.bit);
    EXPECT_EQ(card.Pages().Item(1).BeginFreeSpace, c.hid ? 19 : 6);
}

INSTANTIATE_TEST_SUITE_P(
    Designs, CardDesign,
    ::testing::Values(DesignCase{"Size=2K\r\nUseHID=1\r\n", iSmallOnePage, true, false},
                      DesignCase{"Size=16K\r\nPages=1\r\nUseBit=1\r\n", iBigOnePage, false, true},
                      DesignCase{"Size=16K\r\n", iBigOnePage, false, false},
                      DesignCase{"Size=16K\r\nPages=8\r\nUseHID=1\r\nUseBit=1\r\n", iBigEightPages, true, true},
                      DesignCase{"Size=16K\r\nPages=0\r\n", iBigOnePage, false, false},
                      DesignCase{"Size=4K\r\nUseHID=1\r\n", iBigOnePage, true, false},
                      DesignCase{"Size=16k\r\n", iBigOnePage, false, false}));

TEST_F(LayoutReaderTest, PageBordersAreDividedBy8RoundedToEven) {
    read("[CARDDESIGN]\r\nSize=16K\r\nPages=8\r\n1PageBorder=20\r\n2PageBorder=148\r\n3PageBorder=200\r\n"
         "4PageBorder=300\r\n5PageBorder=44\r\n6PageBorder=-8\r\n7PageBorder=256\r\n");
    EXPECT_EQ(card.GetBoundary(1), 18);  // 2.5 -> 2, below 6: ignored
    EXPECT_EQ(card.GetBoundary(2), 18);  // 18.5 -> 18
    EXPECT_EQ(card.GetBoundary(3), 25);
    EXPECT_EQ(card.GetBoundary(4), 18);  // 37.5 -> 38, above 32: ignored
    EXPECT_EQ(card.GetBoundary(5), 6);   // 5.5 -> 6
    EXPECT_EQ(card.GetBoundary(6), 18);
    EXPECT_EQ(card.GetBoundary(7), 32);
    EXPECT_EQ(card.GetBoundary(0), 18);
}

TEST_F(LayoutReaderTest, ItemSectionsBecomeRowsInReadingOrder) {
    fields.setFields({{"Level", "LEVEL", "Number", 3, 4, true}});
    read(crlf({"[CARDDESIGN]", "Size=2K", "UseBit=1", "UseHID=1", "[DATABASEUPDATE]", "1Field=4,Count(5.1.)",
               "[BITINITCARD]", "1Value=Constant(3)", "1Place=0,28,0,2,3", "1Color=5", "1Mode=1", "[INITCARD]",
               "2Value=Checksum(1.1)", "2Place=0,30,0,1", "2Color=6", "1Value=CardSnNr(0)", "1Place=0,26,0,10",
               "1Color=7", "[CHECKSUM]", "1Range=0,19,0,16", "[COMBINEDFIELDS]", "A(1)=1,1", "B(1)=1,2",
               "1Place=0,25,0,8", "[BITENCODE]", "Flag(1)=0,24,0,5,2,1", "[ENCODE]", "Name(1)=0,19,0,16,0",
               "A(1)=0,25,0,8,0,1", "[ITEMCOLOR]", "Name(1)=99", "A(1)=98"}));
    const auto rows = itemRows(records);
    ASSERT_EQ(rows.size(), 6u);
    EXPECT_EQ(rows[0].name, "Name");
    EXPECT_EQ(rows[1].name, "Flag");
    EXPECT_EQ(rows[1].kind, "Bit Field");
    EXPECT_EQ(rows[2].name, "A [+] B");
    EXPECT_EQ(rows[2].bytes, 8);
    EXPECT_EQ(rows[3].name, "CardSnNr");
    EXPECT_EQ(rows[4].name, "Checksum");
    EXPECT_EQ(rows[5].kind, "Bit Function");
    EXPECT_EQ(records[0].color, 99);
    EXPECT_EQ(records[2].color, 98);
    EXPECT_EQ(records[4].range[3], 16);
    const int32_t update = records.indexOfDbUpdateRow(1);
    ASSERT_GE(update, 0);
    EXPECT_EQ(records[update].dbFieldName, "LEVEL");
    EXPECT_EQ(records[update].param1, "5");
}

// Each dropped entry is warned of and kept for a check, with the placement rule it breaks
// (0 for none) and its place as far as it was read.
TEST_F(LayoutReaderTest, EntriesThatDoNotFitTheCardAreDroppedWithTheRuleTheyBreak) {
    const auto result = read(crlf({"[CARDDESIGN]", "Size=2K", "[ENCODE]", "Good(1)=0,19,0,4,0",
                                   "WrongPage(1)=3,19,0,4,0", "TooLong(1)=0,31,0,9,0", "Block(1)=0,40,0,1,0",
                                   "Before(1)=0,-1,7,1,0", "Byte(1)=0,19,8,1,0", "Zero(1)=0,19,0,0,0",
                                   "Huge(1)=0,19,0,99999,0", "Text(1)=a,b,c,d,e", "Short(1)=0,19", "Header(1)=0,0,0,1,0",
                                   "[BITENCODE]",
                                   "Bits(1)=0,31,7,0,9,0", "NoBits(1)=0,20,0,0,0,0", "Bit8(1)=0,20,0,8,1,0",
                                   "[INITCARD]", "1Value=NoBrackets", "1Place=0,20,0,1", "2Value=Count(1.1.0)",
                                   "2Place=0,20", "3Value=CardSnNr(0)", "3Place=0,31,0,10", "[BITINITCARD]",
                                   "1Value=Constant(1)", "1Place=0,31,7,4,5", "[DATABASEUPDATE]", "1Field=x,Constant(1)",
                                   "2Field=-1,Constant(1)", "3Field=2,Checksum(1.1)"}));
    EXPECT_TRUE(result.opened);
    // The header lies on the page: the item is read, and a check finds it there.
    ASSERT_EQ(records.size(), 2);
    EXPECT_EQ(records[0].name, "Good");
    EXPECT_EQ(records[0].color, 0);  // no ITEMCOLOR entry
    EXPECT_EQ(records[1].name, "Header");
    struct Dropped {
        const char* key;
        const char* name;
        const char* kind;
        int32_t textId;
    };
    const Dropped expected[] = {
        {"WrongPage(1)", "WrongPage", "Field", 3158}, {"TooLong(1)", "TooLong", "Field", 4600},
        {"Block(1)", "Block", "Field", 4600},         {"Before(1)", "Before", "Field", 4601},
        {"Byte(1)", "Byte", "Field", 0},              {"Zero(1)", "Zero", "Field", 3158},
        {"Huge(1)", "Huge", "Field", 0},              {"Text(1)", "Text", "Field", 0},
        {"Short(1)", "Short", "Field", 0},            {"Bits(1)", "Bits", "Bit Field", 4600},
        {"NoBits(1)", "NoBits", "Bit Field", 3158},   {"Bit8(1)", "Bit8", "Bit Field", 0},
        {"1Value", "", "Function", 0},                {"2Place", "Count", "Function", 0},
        {"3Value", "CardSnNr", "Function", 4600},     {"1Value", "Constant", "Bit Function", 4600},
        {"1Field", "Constant", "Database Update", 0}, {"2Field", "Constant", "Database Update", 0},
        {"3Field", "Checksum", "Database Update", 0}};
    ASSERT_EQ(result.dropped.size(), std::size(expected));
    ASSERT_EQ(result.warnings.size(), std::size(expected));
    for (size_t i = 0; i < std::size(expected); ++i) {
        const DroppedEntry& d = result.dropped[i];
        EXPECT_EQ(d.key, expected[i].key) << i;
        EXPECT_EQ(d.name, expected[i].name) << i;
        EXPECT_EQ(d.kind, expected[i].kind) << i;
        EXPECT_EQ(d.textId, expected[i].textId) << i;
        EXPECT_EQ(result.warnings[i], "[" + d.section + "] " + d.key + ": " + d.reason + "; entry dropped");
    }
    EXPECT_EQ(result.dropped[3].block, -1);  // a full place
    EXPECT_EQ(result.dropped[3].beginByte, 7);
    EXPECT_EQ(result.dropped[8].block, 19);  // a place read as far as it goes
    EXPECT_FALSE(result.dropped[8].beginByte);
    EXPECT_FALSE(result.dropped[7].page);
}

// A byte checksum keeps its start value in Init_ for every method but a CRC, as a save writes it.
TEST_F(LayoutReaderTest, ChecksumStartValuesAreReadForParitiesOnly) {
    read(crlf({"[CARDDESIGN]", "Size=2K", "UseBit=1", "[INITCARD]", "1Value=Checksum(1.1)", "1Place=0,30,0,1",
               "2Value=Checksum(3.2)", "2Place=0,30,1,1", "3Value=Checksum(2.3)", "3Place=0,30,2,1",
               "[BITINITCARD]", "1Value=Checksum(1.4)", "1Place=0,31,0,0,8", "1Mode=1", "2Value=Checksum(3.5)",
               "2Place=0,31,1,0,1", "2Mode=1", "[CHECKSUM]", "1Range=0,19,0,8", "1Init_=7", "2Range=0,20,0,8",
               "2Init_=1", "3Range=0,21,0,8", "3Poly_=263,9", "3Init_=4", "4Range=0,22,0,0,8", "4Init_=6",
               "5Range=0,23,0,0,8", "5Init_=1"}));
    ASSERT_EQ(records.size(), 5);
    struct Expected {
        const char* method;
        int16_t initValue;
        std::array<int16_t, 2> polynomial;
    };
    // Bytes: ADD, parity, CRC; bits: ADD, parity. Only the parities' Init_ is read.
    const Expected expected[] = {
        {"1", 0, {0, 0}}, {"3", 1, {0, 0}}, {"2", 0, {263, 9}}, {"1", 0, {0, 0}}, {"3", 1, {0, 0}}};
    for (int32_t i = 0; i < records.size(); ++i) {
        EXPECT_EQ(records[i].param1, expected[i].method) << i;
        EXPECT_EQ(records[i].initValue, expected[i].initValue) << i;
        EXPECT_EQ(records[i].polynomial, expected[i].polynomial) << i;
    }
}

// A FieldsMultiTrack entry under a big item's own key, at the same place, gives that item its
// begin bit; any other entry is an item of its own.
TEST_F(LayoutReaderTest, MultiTrackEntryOfABigItemGivesItsBeginBit) {
    read(crlf({"[CARDDESIGN]", "Size=2K", "[ENCODE]", "Photo(1)=0,19,0,4,0", "Logo(1)=0,21,0,2,0", "[BIGITEM]",
               "Photo(1)=1,2", "Logo(1)=1,3", "[FieldsMultiTrack]", "Photo(1)=0,19,0,3,4", "Logo(1)=0,22,0,5,2",
               "Sign(1)=0,25,0,1,8"}));
    ASSERT_EQ(records.size(), 4);
    struct Expected {
        const char* name;
        int16_t block, beginBit, numBytes, bigItemNumber;
    };
    const Expected expected[] = {
        {"Photo", 19, 3, 4, 2}, {"Logo", 21, 0, 2, 3}, {"Logo", 22, 5, 2, 0}, {"Sign", 25, 1, 8, 0}};
    for (int32_t i = 0; i < records.size(); ++i) {
        const ItemRecord& r = records[i];
        EXPECT_TRUE(r.isBinary) << i;
        EXPECT_EQ(r.name, expected[i].name) << i;
        EXPECT_EQ(r.block, expected[i].block) << i;
        EXPECT_EQ(r.beginBit, expected[i].beginBit) << i;
        EXPECT_EQ(r.numBytes, expected[i].numBytes) << i;
        EXPECT_EQ(r.bigItemNumber, expected[i].bigItemNumber) << i;
    }
}

TEST_F(LayoutReaderTest, GarbageFilesOpenEmpty) {
    std::string bytes;
    for (int i = 0; i < 20000; ++i) bytes += static_cast<char>((i * 2654435761u) >> 13);
    const auto result = read(bytes);
    EXPECT_TRUE(result.opened);
    EXPECT_EQ(records.size(), 0);
}

TEST_F(LayoutReaderTest, SettingsAndMultiTrackSectionsAreRead) {
    const auto result = read(crlf({"[CARDDESIGN]", "Size=2K", "[FieldsMultiTrack]", "Photo(1)=0,19,0,0,32",
                                   "[SETTINGS]", "Zoom=2", "Note=@#@#\"x\""}));
    ASSERT_EQ(records.size(), 1);
    EXPECT_EQ(itemRowOf(records[0]).kind, "Binary Field");
    ASSERT_EQ(result.settings.size(), 2u);
    EXPECT_EQ(result.settings[1].second, "\"x\"");
}

}  // namespace
