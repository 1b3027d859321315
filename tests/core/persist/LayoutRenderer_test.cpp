#include <gtest/gtest.h>

#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "persist/LayoutRenderer.h"
#include "support/Records.h"
#include "support/TestSupport.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

std::string render(const CIClass& card, std::initializer_list<ItemRecord> items, const HostFieldList& fields = {}) {
    RecordArray records;
    for (const auto& r : items) records.add(r);
    return renderLayoutFile(card, records, fields).bytes;
}

CIClass cardOf(IClassType type, bool hid = true, bool bit = false) {
    CIClass card;
    card.setChipSize(type);
    card.setUseHIDSection(hid);
    card.setEnableBitwise(bit);
    return card;
}

TEST(LayoutRenderer, EmptyLayoutsHoldOnlyGeneralAndCardDesign) {
    EXPECT_EQ(render(cardOf(iSmallOnePage), {}),
              crlf({"[GENERAL]", "Version=6.1.4", "[CARDDESIGN]", "Size=2K", "Pages=1", "UseBit=0", "UseHID=1"}));
    EXPECT_EQ(render(cardOf(iBigOnePage, false, true), {}),
              crlf({"[GENERAL]", "Version=6.1.4", "[CARDDESIGN]", "Size=16K", "Pages=1", "UseBit=1", "UseHID=0"}));
    CIClass eight = cardOf(iBigEightPages);
    eight.SetBoundary(3, 25);
    eight.SetBoundary(7, 32);
    EXPECT_EQ(render(eight, {}),
              crlf({"[GENERAL]", "Version=6.1.4", "[CARDDESIGN]", "Size=16K", "Pages=8", "UseBit=0", "UseHID=1",
                    "1PageBorder=144", "2PageBorder=144", "3PageBorder=200", "4PageBorder=144", "5PageBorder=144",
                    "6PageBorder=144", "7PageBorder=256"}));
}

TEST(LayoutRenderer, FieldsGetNumberedKeysCountedSeparatelyForBitFields) {
    ItemRecord typed = field("Name", 0, 19, 0, 16, 0, 11);
    typed.fieldType = 1;
    const std::string file = render(cardOf(iSmallOnePage, true, true),
                                    {typed, field("Name", 0, 21, 0, 4, 64, 12), bitField("Name", 0, 22, 0, 3, 5, 13),
                                     field("NAME", 0, 23, 0, 1, 0, 14)});
    EXPECT_EQ(file, crlf({"[GENERAL]", "Version=6.1.4", "[CARDDESIGN]", "Size=2K", "Pages=1", "UseBit=1", "UseHID=1",
                          "[ENCODE]", "Name(1)=0,19,0,16,0", "Name(2)=0,21,0,4,64", "NAME(3)=0,23,0,1,0",
                          "[ITEMCOLOR]", "Name(1)=11", "Name(2)=12", "NAME(3)=14",
                          "[FIELDTYPE]", "Name(1)=0", "Name(2)=0", "NAME(3)=0",
                          "[BITENCODE]", "Name(1)=0,22,0,3,5,0", "[BITITEMCOLOR]", "Name(1)=13"}));
}

TEST(LayoutRenderer, FunctionsAndChecksumsWithTheirKeys) {
    ItemRecord crc = function("Checksum", "2", "", "", 0, 30, 0, 1, 31);
    crc.range = {0, 19, 0, 40, 0};
    crc.polynomial = {263, 255};
    ItemRecord add = function("Checksum", "1", "", "", 0, 30, 1, 1, 32);
    add.range = {0, 20, 0, 8, 0};
    add.initValue = 5;
    ItemRecord bitCrc = bitFunction("Checksum", "3", 0, 31, 0, 0, 1, 33);
    bitCrc.range = {0, 19, 0, 2, 6};
    bitCrc.initValue = 1;
    ItemRecord simpleFn = function("CardSnNr", "2", "", "", 0, 25, 0, 4, 34);
    simpleFn.isBitFunction = true;
    const std::string file = render(cardOf(iSmallOnePage),
                                    {crc, function("Count", "1", "1", "0", 0, 24, 0, 4, 21), add,
                                     bitFunction("Constant", "5", 0, 26, 0, 2, 3, 22), bitCrc, simpleFn,
                                     function("Constant", "\"quoted\"", "", "", 0, 27, 0, 8, 23)});
    EXPECT_EQ(file, crlf({"[GENERAL]", "Version=6.1.4", "[CARDDESIGN]", "Size=2K", "Pages=1", "UseBit=0", "UseHID=1",
                          "[INITCARD]",
                          "1Value=Count(1.1.0)", "1Place=0,24,0,4", "1Color=21",
                          "2Value=CardSnNr(2)", "2Place=0,25,0,4", "2Color=34", "2Mode=1",
                          "3Value=Constant(\"quoted\")", "3Place=0,27,0,8", "3Color=23",
                          "4Value=Checksum(2.1)", "4Place=0,30,0,1", "4Color=31",
                          "5Value=Checksum(1.2)", "5Place=0,30,1,1", "5Color=32",
                          "[BITINITCARD]",
                          "1Value=Constant(5)", "1Place=0,26,0,2,3", "1Color=22", "1Mode=1",
                          "2Value=Checksum(3.3)", "2Place=0,31,0,0,1", "2Mode=1", "2Color=33",
                          "[CHECKSUM]",
                          "1Range=0,19,0,40", "1Poly_=263,255",
                          "2Range=0,20,0,8", "2Init_=5",
                          "3Range=0,19,0,2,6", "3Init_=1"}));
}

struct BitChecksumMode {
    bool bitFunction, simple;
    const char* expected;
};

class BitChecksumModes : public ::testing::TestWithParam<BitChecksumMode> {};

// The mode of a bit checksum follows its flags; with both or neither set the last written
// colour or mode is repeated, as old files carry it.
TEST_P(BitChecksumModes, FollowFlagsOrRepeatTheLastInteger) {
    const auto c = GetParam();
    ItemRecord sum = bitFunction("Checksum", "1", 0, 31, 0, 0, 8, 55);
    sum.isBitFunction = c.bitFunction;
    sum.isSimpleBitFunction = c.simple;
    const std::string file = render(cardOf(iSmallOnePage), {field("A", 0, 19, 0, 1, 0, 4242), sum});
    EXPECT_NE(file.find(std::string("1Place=0,31,0,0,8\r\n1Mode=") + c.expected + "\r\n1Color=55\r\n"), std::string::npos)
        << file;
}

INSTANTIATE_TEST_SUITE_P(Flags, BitChecksumModes,
                         ::testing::Values(BitChecksumMode{true, false, "1"}, BitChecksumMode{false, true, "0"},
                                           BitChecksumMode{true, true, "4242"}, BitChecksumMode{false, false, "4242"}));

TEST(LayoutRenderer, BigItemsAndDatabaseUpdates) {
    HostFieldList fields;
    fields.setFields({{"Photo", "PHOTO", "Binary", 100, 5, true}, {"Level", "LEVEL", "Number", 3, 9, true}});
    ItemRecord photo = field("Photo", 0, 19, 0, 64, 0, 7);
    photo.isBinary = true;
    photo.bigItemNumber = 3;
    RecordArray records;
    records.add(photo);
    records.add(dbUpdate("LEVEL", "Count", "5", "2"));
    records.add(dbUpdate("UNKNOWN", "Constant", "7"));
    records.add(dbUpdate("LEVEL", "CardSnNr", "1"));
    const RenderedLayout out = renderLayoutFile(cardOf(iSmallOnePage), records, fields);
    EXPECT_NE(out.bytes.find(crlf({"[BIGITEM]", "Photo(1)=1,3", "[DATABASEUPDATE]", "1Field=9,Count(5.2.)",
                                   "2Field=0,Constant(7)", "3Field=9,CardSnNr(1)"})),
              std::string::npos)
        << out.bytes;
    EXPECT_EQ(out.bigItemNumbers, std::vector<int16_t>{3});
    ASSERT_EQ(out.warnings.size(), 1u);
    EXPECT_NE(out.warnings[0].find("UNKNOWN"), std::string::npos);
    EXPECT_EQ(out.usedFieldList, "Photo(1)");
}

// ENCODE has no room for a begin bit: a big item placed from bit 3 by the multi-track dialog
// also gets a FieldsMultiTrack entry under its key; one placed from bit 0 does not.
TEST(LayoutRenderer, BigItemPlacedFromABitKeepsTheBitInFieldsMultiTrack) {
    ItemRecord track = field("Track", 0, 19, 0, 4, 0, 5);
    track.isBinary = true;
    track.beginBit = 3;
    ItemRecord photo = field("Photo", 0, 21, 0, 8, 0, 6);
    photo.isBinary = true;
    photo.bigItemNumber = 2;
    EXPECT_EQ(render(cardOf(iSmallOnePage), {track, photo}),
              crlf({"[GENERAL]", "Version=6.1.4", "[CARDDESIGN]", "Size=2K", "Pages=1", "UseBit=0", "UseHID=1",
                    "[ENCODE]", "Track(1)=0,19,0,4,0", "Photo(1)=0,21,0,8,0",
                    "[ITEMCOLOR]", "Track(1)=5", "Photo(1)=6",
                    "[FIELDTYPE]", "Track(1)=0", "Photo(1)=0",
                    "[BIGITEM]", "Track(1)=1,0", "Photo(1)=1,2",
                    "[FieldsMultiTrack]", "Track(1)=0,19,0,3,4"}));
}

TEST(LayoutRenderer, CombinedFieldPartsHaveTheirOwnKeys) {
    const std::string file =
        render(cardOf(iSmallOnePage), {field("Name", 0, 19, 0, 8, 0, 1), field("First [+] Name", 0, 20, 0, 16, 0, 2)});
    EXPECT_EQ(file, crlf({"[GENERAL]", "Version=6.1.4", "[CARDDESIGN]", "Size=2K", "Pages=1", "UseBit=0", "UseHID=1",
                          "[ENCODE]", "Name(1)=0,19,0,8,0", "First(1)=0,20,0,16,0,1",
                          "[ITEMCOLOR]", "Name(1)=1", "First(1)=2", "Name(2)=2",
                          "[FIELDTYPE]", "Name(1)=0", "First(1)=0",
                          "[COMBINEDFIELDS]", "First(1)=1,1", "Name(2)=1,2", "1Place=0,20,0,16"}));
}

TEST(LayoutRenderer, UsedFieldListNamesEveryKeyAndTextParameters) {
    RecordArray records;
    records.add(field("Name", 0, 19, 0, 1));
    records.add(field("Name", 0, 19, 1, 1));
    records.add(bitField("Flag", 0, 20, 0, 0, 1));
    records.add(dbUpdate("X", "Count", "StartField", "12"));
    records.add(dbUpdate("X", "Constant", "1.5"));
    const auto out = renderLayoutFile(cardOf(iSmallOnePage), records, {});
    EXPECT_EQ(out.usedFieldList, "Name(1)Name(2)Flag(1)StartField()");
}

}  // namespace
