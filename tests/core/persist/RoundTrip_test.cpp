#include <gtest/gtest.h>

#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "persist/LayoutReader.h"
#include "persist/LayoutRenderer.h"
#include "support/Records.h"
#include "support/TestSupport.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

// Records in the order the reader gives them back: fields, bit fields, combined fields,
// byte functions (checksums last), bit functions (checksums last), database updates.
RecordArray everyKind(int page) {
    RecordArray records;
    ItemRecord name = field("Name", page, 19, 0, 16, 0, 0x00E0C0A0);
    name.fieldType = 0;
    records.add(name);
    ItemRecord date = field("Valid \"Until\"", page, 21, 0, 4, 10, 0x00A0E0C0);
    date.fieldType = 2;
    records.add(date);
    ItemRecord photo = field("Photo", page, 22, 0, 24, 0, 0x00C0C0C0);
    photo.isBinary = true;
    photo.bigItemNumber = 2;
    photo.fieldType = 3;
    records.add(photo);
    // Placed by the multi-track dialog from bit 5, which ENCODE alone cannot hold.
    ItemRecord track = field("Track", page, 25, 0, 2, 0, 0x00B0C0D0);
    track.isBinary = true;
    track.beginBit = 5;
    records.add(track);
    records.add(bitField("Flag", page, 26, 0, 3, 4, 0x00B0B0E0));
    records.add(field("First [+] Last [+] Title", page, 27, 0, 8, 0, 0x00D0D0D0));
    records.add(function("Count", "1", "1000", "0", page, 28, 0, 4, 0x00C8C8FF));
    records.add(function("Constant", "\"text\" constant", "", "", page, 28, 4, 4, 0x00E0E0FF));
    ItemRecord sum = function("Checksum", "2", "", "", page, 29, 0, 1, 0x00FFC8C8);
    sum.range = {static_cast<int16_t>(page), 19, 0, 64, 0};
    sum.polynomial = {263, 0};
    records.add(sum);
    ItemRecord add = function("Checksum", "1", "", "", page, 29, 1, 1, 0x00FFC8D0);
    add.range = {static_cast<int16_t>(page), 21, 0, 4, 0};
    records.add(add);
    records.add(bitFunction("CardSnNr", "3", page, 30, 0, 0, 7, 0x00C8FFC8));
    ItemRecord bitSum = bitFunction("Checksum", "3", page, 30, 1, 0, 1, 0x00C8FFFF);
    bitSum.range = {static_cast<int16_t>(page), 19, 0, 0, 16};
    bitSum.initValue = 1;
    records.add(bitSum);
    ItemRecord simple = bitFunction("Checksum", "1", page, 30, 2, 0, 8, 0x00FFFFC8);
    simple.isBitFunction = false;
    simple.isSimpleBitFunction = true;
    simple.range = {static_cast<int16_t>(page), 20, 0, 0, 8};
    records.add(simple);
    ItemRecord update = dbUpdate("LEVEL", "Count", "5", "1");
    update.dbColumn = 3;
    records.add(update);
    return records;
}

class RoundTrip : public ::testing::TestWithParam<IClassType> {};

TEST_P(RoundTrip, EveryItemKindReadsBackAndRewritesTheSameBytes) {
    HostFieldList fields;
    fields.setFields({{"Level", "LEVEL", "Number", 3, 3, true}});
    CIClass card;
    card.setChipSize(GetParam());
    card.setUseHIDSection(true);
    card.setEnableBitwise(true);
    if (GetParam() == iBigEightPages) card.SetBoundary(5, 30);
    const int page = GetParam() == iBigEightPages ? 5 : 0;
    const RecordArray original = everyKind(page);
    const std::string first = renderLayoutFile(card, original, fields).bytes;

    TempDir dir;
    writeBytes(dir / "L.IIF", first);
    CIClass readCard;
    RecordArray readRecords;
    RecordingPrompter prompter;
    const auto result = readLayout(dir / "L.IIF", readCard, readRecords, prompter, &fields);
    ASSERT_TRUE(result.opened);
    EXPECT_TRUE(result.warnings.empty()) << result.warnings.front();
    EXPECT_TRUE(prompter.messages.empty());
    ASSERT_EQ(readRecords.size(), original.size());
    for (int32_t i = 0; i < original.size(); ++i) EXPECT_EQ(readRecords[i], original[i]) << "record " << i;
    EXPECT_EQ(readCard.ChipSize(), GetParam());
    EXPECT_EQ(renderLayoutFile(readCard, readRecords, fields).bytes, first);
}

INSTANTIATE_TEST_SUITE_P(AllChips, RoundTrip, ::testing::Values(iSmallOnePage, iBigOnePage, iBigEightPages));

}  // namespace
