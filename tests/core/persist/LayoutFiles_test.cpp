// Layout files: what a save writes byte for byte, that it opens to the same card and items,
// and how hand-written and older files are read.
#include <gtest/gtest.h>

#include "base/KestrinError.h"
#include "persist/LayoutRenderer.h"
#include "support/SavedFiles.h"

using namespace kestrin;
using namespace kestrin::test;
namespace fs = std::filesystem;

namespace {

const fs::path kExamples = KESTRIN_EXAMPLES;

ItemRecord with(ItemRecord r, void (*change)(ItemRecord&)) { return change(r), r; }

// Opens bytes and expects the card and records given, without a warning or a question.
void expectOpensTo(const std::string& bytes, const CIClass& card, const RecordArray& records, const HostFieldList& fields) {
    const auto o = openLayout(bytes, Answer::No, &fields, card.ChipSize() == iSmallOnePage ? iBigOnePage : iSmallOnePage);
    ASSERT_TRUE(o->result.opened);
    EXPECT_TRUE(o->result.warnings.empty() && o->result.dropped.empty() && o->prompter.messages.empty());
    EXPECT_TRUE(o->card.ChipSize() == card.ChipSize() && o->card.UseHIDSection() == card.UseHIDSection() &&
                o->card.EnableBitwise() == card.EnableBitwise());
    for (int32_t p = 1; p < card.PagesCount(); ++p) EXPECT_EQ(o->card.GetBoundary(p), card.GetBoundary(p)) << p;
    EXPECT_EQ(o->records.records(), records.records());
}

// The bundled layouts open with the bundled project to the cards and items they hold, and
// save to the very same layout and chip encode bytes.
TEST(LayoutFiles, BundledLayoutsSaveToTheirOwnBytes) {
    HostFieldList fields;
    fields.fetch(kExamples / "project/Sample.ini");
    for (const char* name : {"Staff", "Visitors16K"}) {
        SCOPED_TRACE(name);
        TempDir dir;
        const std::string source = (kExamples / "layouts" / name).string();
        fs::copy_file(source + ".IIF", dir / "L.IIF");
        fs::copy_file(source + ".CHP", dir / "L.CHP");
        Opened o;
        ASSERT_TRUE(readLayout(dir / "L.IIF", o.card, o.records, o.prompter, &fields).opened);
        ASSERT_TRUE(saveLayout(dir / "L.IIF", &o.card, o.records, fields, o.prompter, Translator{}).saved);
        EXPECT_EQ(std::tuple(readBytes(dir / "L.IIF"), readBytes(dir / "L.CHP"), o.prompter.messages.size()),
                  std::tuple(readBytes(source + ".IIF"), readBytes(source + ".CHP"), 0u));
        expectOpensTo(readBytes(dir / "L.IIF"), o.card, o.records, fields);
    }
}

// What the bundled layouts do not hold saves to exactly these bytes, which open to the same
// card and records: field keys numbered apart for bit fields, a negative colour, a field type
// of the item's own, a big item placed from bit 3, a byte function in bit mode, a quoted
// constant, checksums with a polynomial, a start value or a bit range, a simple bit function.
TEST(LayoutFiles, EveryKindOfEntrySavesToTheseBytesAndOpensTheSame) {
    CIClass card = chipOf(iBigOnePage);  // with the HID section
    card.setEnableBitwise(true);
    const RecordArray records = recordsOf(
        {field("Name", 0, 19, 0, 16, 0, 11), field("Name", 0, 21, 0, 4, 64, -12),
         with(field("NAME", 0, 23, 0, 1, 0, 14), [](ItemRecord& r) { r.fieldType = 2; }),
         with(field("Track", 0, 40, 0, 4, 0, 5), [](ItemRecord& r) { r.isBinary = true, r.beginBit = 3; }),
         with(field("Photo", 0, 42, 0, 8, 0, 6), [](ItemRecord& r) { r.isBinary = true, r.bigItemNumber = 2, r.fieldType = 3; }),
         bitField("Name", 0, 22, 0, 3, 5, 13),
         with(function("CardSnNr", "2", "", "", 0, 25, 0, 4, 34), [](ItemRecord& r) { r.isBitFunction = true; }),
         function("Constant", "\"quoted\"", "", "", 0, 27, 0, 8, 23),
         with(function("Checksum", "2", "", "", 0, 30, 0, 1, 31),
              [](ItemRecord& r) { r.range = {0, 19, 0, 40, 0}, r.polynomial = {263, 255}; }),
         with(function("Checksum", "1", "", "", 0, 30, 1, 1, 32), [](ItemRecord& r) { r.range = {0, 20, 0, 8, 0}; }),
         with(bitFunction("Checksum", "3", 0, 31, 0, 0, 1, 33),
              [](ItemRecord& r) { r.range = {0, 19, 0, 2, 6}, r.initValue = 1; }),
         with(bitFunction("Checksum", "1", 0, 31, 1, 0, 8, 35), [](ItemRecord& r) {
             r.isBitFunction = false, r.isSimpleBitFunction = true, r.range = {0, 20, 0, 0, 8};
         })});
    HostFieldList fields;
    fields.setFields({{"Photo", "PHOTO", "Binary", 100, 5, true}, {"Level", "LEVEL", "Number", 3, 9, true}});
    // The checksums come last, so CHECKSUM is begun before the first bit checksum.
    const std::string bytes = readBytes(fs::path(__FILE__).parent_path() / "EveryKind.IIF");
    EXPECT_EQ(renderLayoutFile(card, records, fields).bytes, bytes);
    expectOpensTo(bytes, card, records, fields);
}

// Field keys are numbered per name, letter case ignored, however many names come between: here
// the three hundred parts of a hundred and fifty combined fields.
TEST(LayoutFiles, FieldKeysAreNumberedPerNameHoweverManyNamesComeBetween) {
    std::vector<ItemRecord> items{field("Name", 0, 19, 0, 1)};
    for (int i = 0; i < 150; ++i) items.push_back(field("A" + std::to_string(i) + " [+] B" + std::to_string(i), 0, 20, 0, 1));
    items.push_back(field("NAME", 0, 21, 0, 1));
    const std::string bytes = renderLayoutFile(chipOf(iBigOnePage), recordsOf(items), {}).bytes;
    EXPECT_EQ(std::tuple(bytes.find("\r\nNAME(1)="), bytes.find("\r\nNAME(2)=") != std::string::npos),
              std::tuple(std::string::npos, true));
}

// An eight-page card stores the boundaries of pages 1 to 7 as byte addresses; page 0's is never stored.
TEST(LayoutFiles, AnEightPageCardStoresTheBoundariesOfPagesOneToSeven) {
    CIClass card = chipOf(iBigEightPages);  // bitwise off
    card.setUseHIDSection(false);
    card.SetBoundary(3, 25);
    std::vector<std::string> lines{"[GENERAL]", "Version=6.1.4", "[CARDDESIGN]", "Size=16K", "Pages=8", "UseBit=0", "UseHID=0"};
    for (int page = 1; page <= 7; ++page) lines.push_back(std::to_string(page) + "PageBorder=" + (page == 3 ? "200" : "144"));
    EXPECT_EQ(renderLayoutFile(card, {}, {}).bytes, crlf(lines));
    expectOpensTo(crlf(lines), card, {}, {});
}

// A file of a later version is opened only when the operator agrees; on No nothing is applied.
TEST(LayoutReader, LaterVersionsAskFirst) {
    const struct { const char* version; bool asks; } cases[] = {  // version nullptr: no Version key
        {"6.2.0", true}, {"6.1.4", false}, {"6.0.9", false}, {nullptr, false}, {"7", true},
        {"6.1.5", true}, {"5.99.99", false}, {"garbage", false}, {"6.1.04", false}};
    for (const auto& c : cases)
        for (Answer answer : {Answer::Yes, Answer::No}) {
            const auto o =
                openLayout(crlf({"[GENERAL]", c.version ? "Version="s + c.version : "", "[CARDDESIGN]", "Size=16K"}), answer);
            const bool opened = !c.asks || answer == Answer::Yes;
            EXPECT_EQ(std::tuple(o->prompter.messages.size(), o->result.opened, o->card.ChipSize()),
                      std::tuple(c.asks ? 1u : 0u, opened, opened ? iBigOnePage : iSmallOnePage))
                << (c.version ? c.version : "none");
        }
    const auto o = openLayout(crlf({"[GENERAL]", "Version=6.2.0"}));
    const auto& m = o->prompter.messages.at(0);
    EXPECT_TRUE(m.question && m.buttons == Buttons::YesNo && m.icon == Icon::Exclamation);
    EXPECT_EQ(m.text,
              "The file you are trying to open was made in a later version of LK than the one you are currently using. "
              "\r\n\r\nThe file was created with version 6.2.0\r\nYou are using version 6.1.4 of LK. \r\n"
              "It is recommended you upgrade LK.\r\n\r\nIf you open the file, some data might be lost on saving. "
              "\r\nContinue anyway?");
}

// Each dropped entry is warned of and kept for a check, with the placement rule it breaks
// (0 for none) and its place as far as it was read.
TEST(LayoutReader, EntriesThatDoNotFitAreDroppedWithTheRuleTheyBreak) {
    const auto o = openLayout(crlf(
        {"[CARDDESIGN]", "Size=2K", "[ENCODE]", "Good(0)=+0, +19,0,4,0", "WrongPage(1)=3,19,0,4,0", "TooLong(1)=0,31,0,9,0",
         "Block(1)=0,40,0,1,0", "Before(1)=0,-1,7,1,0", "Byte(1)=0,19,8,1,0", "Zero(1)=0,19,0,0,0",
         "Huge(1)=0,19,0,99999,0", "Text(1)=a,b,c,d,e", "Short(1)=0,19", "Header(1)=0,0,0,1,0", "[BITENCODE]",
         "Bits(1)=0,31,7,0,9,0", "Flag(1)=0,21,0,0,3,0",
         "NoBits(1)=0,20,0,0,0,0", "Bit8(1)=0,20,0,8,1,0", "[INITCARD]", "1Value=NoBrackets", "1Place=0,20,0,1",
         "2Value=Count(1.1.0)", "2Place=0,20", "3Value=CardSnNr(0)", "3Place=0,31,0,10", "[BITINITCARD]",
         "1Value=Constant(1)", "1Place=0,31,7,4,5", "[DATABASEUPDATE]", "1Field=x,Constant(1)",
         "2Field=-1,Constant(1)", "3Field=2,Checksum(1.1)", "4Field=70000,Count(1)", "5Field=3"}));
    EXPECT_TRUE(o->result.opened);
    // The header lies on the page: that item is read, and a check finds it there.
    ASSERT_EQ(o->records.size(), 3);
    // Good and Flag have no colour entry; Good's key is numbered 0 and its numbers carry a "+".
    const auto& r = o->records;
    EXPECT_EQ(std::tuple(r[0].name, r[0].block, r[0].numBytes, r[0].color, r[1].name, r[2].name, r[2].numBits, r[2].color),
              std::tuple("Good", 19, 4, 0, "Header", "Flag", 3, 0));
    const std::string expected[] = {  // key / item name / kind / the rule broken
        "WrongPage(1)/WrongPage/Field/3158", "TooLong(1)/TooLong/Field/4600", "Block(1)/Block/Field/4600",
        "Before(1)/Before/Field/4601", "Byte(1)/Byte/Field/0", "Zero(1)/Zero/Field/3158", "Huge(1)/Huge/Field/0",
        "Text(1)/Text/Field/0", "Short(1)/Short/Field/0", "Bits(1)/Bits/Bit Field/4600", "NoBits(1)/NoBits/Bit Field/3158",
        "Bit8(1)/Bit8/Bit Field/0", "1Value//Function/0", "2Place/Count/Function/0", "3Value/CardSnNr/Function/4600",
        "1Value/Constant/Bit Function/4600", "1Field/Constant/Database Update/0", "2Field/Constant/Database Update/0",
        "3Field/Checksum/Database Update/0", "4Field/Count/Database Update/0", "5Field//Database Update/0"};
    ASSERT_EQ(o->result.dropped.size(), std::size(expected));
    ASSERT_EQ(o->result.warnings.size(), std::size(expected));
    for (size_t i = 0; i < std::size(expected); ++i) {
        const DroppedEntry& d = o->result.dropped[i];
        EXPECT_EQ(d.key + "/" + d.name + "/" + d.kind + "/" + std::to_string(d.textId), expected[i]);
        EXPECT_EQ(o->result.warnings[i], "[" + d.section + "] " + d.key + ": " + d.reason + "; entry dropped");
    }
    // Before: a full place; Short: a place read as far as it goes; Text: no place.
    const auto& d = o->result.dropped;
    EXPECT_EQ(std::tuple(d[3].block, d[3].beginByte, d[8].block, d[8].beginByte, d[7].page),
              std::tuple(-1, 7, 19, std::nullopt, std::nullopt));
    EXPECT_TRUE(o->prompter.messages.empty());
}

// A layout that an editor saved as UTF-16 with its byte-order mark reads as Windows reads it:
// the same card and items as the single-byte file.
TEST(LayoutReader, AUtf16FileReadsAsTheSingleByteOne) {
    const std::string ansi = crlf({"[CARDDESIGN]", "Size=2K", "UseHID=0", "[ENCODE]", "Stra\xDF" "e(1)=0,20,0,4,0"});
    std::string utf16 = "\xFF\xFE";
    for (char c : ansi) utf16 += std::string{c, '\0'};  // these bytes are their own code points
    const auto single = openLayout(ansi), wide = openLayout(utf16);
    ASSERT_EQ(wide->records.size(), 1);
    EXPECT_EQ(std::tuple(wide->records[0].name, wide->card.ChipSize(), wide->card.UseHIDSection()),
              std::tuple(std::string("Stra\xC3\x9F" "e"), iSmallOnePage, false));
    EXPECT_EQ(wide->records.records(), single->records.records());
}

// Older files: a checksum's start value (Init_) is read for a parity only; a FieldsMultiTrack
// entry under a big item's own key at its place gives it its begin bit, any other is an item
// of its own; a checksum without a range or polynomial entry reads them as zeros; SETTINGS are
// handed over as read.
TEST(LayoutReader, OlderFilesReadAsTheyAlwaysDid) {
    const auto o = openLayout(crlf(
        {"[CARDDESIGN]", "Size=2K", "[ENCODE]", "Photo(1)=0,19,0,4,0", "Logo(1)=0,21,0,2,0", "Card(1)=0,27,0,2,0",
         "[BIGITEM]", "Photo(1)=1,2", "Logo(1)=1,3", "Card(1)=1,4", "[FieldsMultiTrack]", "Photo(1)=0,19,0,3,4",
         "Logo(1)=0,22,0,5,2", "Sign(1)=0,25,0,9,8", "Card(1)=0,27",
         "[INITCARD]", "1Value=Checksum(1.1)", "1Place=0,30,0,1", "2Value=Checksum(3.2)", "2Place=0,30,1,1",
         "3Value=Checksum(2.3)", "3Place=0,30,2,1", "4Value=Checksum(2.5)", "4Place=0,30,3,1", "[BITINITCARD]",
         "1Value=Checksum(1.4)", "1Place=0,31,0,0,8", "1Mode=1", "[CHECKSUM]", "1Range=0,19,0,8,5", "1Init_=7",
         "2Range=0,20,0,8", "2Init_=1", "3Range=0,21,0,8", "3Poly_=263,9", "3Init_=4", "4Range=0,22,0,0,8,9", "4Init_=6",
         "[SETTINGS]", "Zoom=2", "Note=@#@#\"x\""}));
    ASSERT_EQ(o->records.size(), 10);
    // fields: name block beginBit numBytes bigItemNumber; checksums: method initValue polynomial range's block, last value
    const char* expected[] = {"Photo 19 3 4 2", "Logo 21 0 2 3", "Card 27 0 2 4", "1 0 0 0 19 0", "3 1 0 0 20 0", "2 0 263 9 21 0",
                              "2 0 0 0 0 0", "1 0 0 0 22 8", "Logo 22 5 2 0", "Sign 25 0 8 0"};
    for (int32_t i = 0; i < 10; ++i) {
        const ItemRecord& r = o->records[i];
        std::string found = r.isBinary ? r.name : r.param1;
        for (int n : r.isBinary ? std::vector<int>{r.block, r.beginBit, r.numBytes, r.bigItemNumber}
                                : std::vector<int>{r.initValue, r.polynomial[0], r.polynomial[1], r.range[1], r.range[4]})
            found += " " + std::to_string(n);
        EXPECT_EQ(found, expected[i]);
    }
    EXPECT_EQ(std::tuple(o->result.settings.size(), o->result.settings.at(1)),
              std::tuple(2u, std::pair<std::string, std::string>{"Note", "\"x\""}));
}

}  // namespace
