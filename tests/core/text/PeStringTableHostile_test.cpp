#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>

#include "PeTestImage.h"
#include "TextTestSupport.h"
#include "text/PeStringTable.h"

namespace kestrin {
namespace {

using test::ByteWriter;
using test::PeLayout;
using test::peImage;
using test::ResourceRva;
using test::stringTableSection;
using test::Subdirectory;

// A sound image of one English block with "ok" in slot 0, for the cases to damage.
ByteWriter soundImage(bool plus = false)
{
    return peImage(stringTableSection({{1, {{0x0409, {u"ok"}}}}}), plus);
}

ByteWriter damaged(const std::function<void(ByteWriter&)>& damage, bool plus = false)
{
    ByteWriter image = soundImage(plus);
    damage(image);
    return image;
}

struct HostileCase {
    const char* name;
    std::function<std::string()> image;
    const char* reason;  // a part of the error text that names the fault
};

void PrintTo(const HostileCase& c, std::ostream* out) { *out << c.name; }

class HostileImage : public ::testing::TestWithParam<HostileCase> {};

TEST_P(HostileImage, IsRefusedWithItsReason)
{
    std::string error;
    const auto table = PeStringTable::parse(GetParam().image(), &error);
    EXPECT_EQ(table, nullptr);
    EXPECT_NE(error.find(GetParam().reason), std::string::npos) << "error was: " << error;
}

std::string resourceImage(const ByteWriter& rsrc) { return peImage(rsrc.str()).str(); }

const PeLayout pe32{false};

INSTANTIATE_TEST_SUITE_P(
    Cases, HostileImage,
    ::testing::Values(
        HostileCase{"Empty", [] { return std::string(); }, "no MZ signature"},
        HostileCase{"OneByte", [] { return std::string("M"); }, "no MZ signature"},
        HostileCase{"WrongMagic", [] { return "ZM" + soundImage().str().substr(2); }, "no MZ signature"},
        HostileCase{"DosHeaderOnly", [] { return std::string("MZ\x90\0", 4); }, "DOS header is incomplete"},
        HostileCase{"NewHeaderPastEnd",
                    [] { return damaged([](ByteWriter& i) { i.put32(PeLayout::NewHeaderOffsetField, 0xFFFFFFF0); }).str(); },
                    "points past the end"},
        HostileCase{"SixteenBit", [] { return damaged([](ByteWriter& i) { i.put16(PeLayout::Signature, 'N' | 'E' << 8); }).str(); },
                    "16-bit Windows (NE)"},
        HostileCase{"LinearExecutable",
                    [] { return damaged([](ByteWriter& i) { i.put16(PeLayout::Signature, 'L' | 'E' << 8); }).str(); },
                    "no PE signature"},
        HostileCase{"CoffHeaderCut", [] { return soundImage().str().substr(0, PeLayout::Signature + 10); },
                    "COFF header is incomplete"},
        HostileCase{"OptionalHeaderCut", [] { return soundImage().str().substr(0, PeLayout::OptionalHeader + 50); },
                    "optional header is incomplete"},
        HostileCase{"RomImage",
                    [] { return damaged([](ByteWriter& i) { i.put16(PeLayout::OptionalHeader, 0x107); }).str(); },
                    "magic 0x107"},
        HostileCase{"ManySections",
                    [] { return damaged([](ByteWriter& i) { i.put16(PeLayout::SectionCount, 0xFFFF); }).str(); },
                    "section table is incomplete"},
        HostileCase{"TableOutsideSections",
                    [] { return damaged([](ByteWriter& i) { i.put32(pe32.resourceDirectory(), 0x9000); }).str(); },
                    "resource table lies outside every section"},
        HostileCase{"PackedSection",
                    [] { return damaged([](ByteWriter& i) { i.put32(pe32.sectionRawSize(), 0); }).str(); },
                    "lies outside its section's data"},
        HostileCase{"SectionDataPastEnd",
                    [] { return damaged([](ByteWriter& i) { i.put32(pe32.sectionRawPointer(), 0x7FFFFFFF); }).str(); },
                    "ends past the end of the file"},
        HostileCase{"RootEntriesPastEnd",
                    [] { return damaged([](ByteWriter& i) { i.put16(PeLayout::ResourceSection + 14, 0xFFFF); }).str(); },
                    "entries run past the end"},
        HostileCase{"SelfPointingDirectory",
                    [] { return resourceImage(ByteWriter().directory(0, 1).entry(6, Subdirectory | 0)); },
                    "deeper than three levels"},
        HostileCase{"TypeIsData",
                    [] { return resourceImage(ByteWriter().directory(0, 1).entry(6, 0x18).dataEntry(ResourceRva, 4)); },
                    "string-table entry is not a directory"},
        HostileCase{"BlockIsData",
                    [] {
                        return resourceImage(ByteWriter().directory(0, 1).entry(6, Subdirectory | 0x18)
                                                 .directory(0, 1).entry(1, 0x30).dataEntry(ResourceRva, 4));
                    },
                    "string block 1 is not a directory"},
        HostileCase{"DirectoryPastEnd",
                    [] { return resourceImage(ByteWriter().directory(0, 1).entry(6, Subdirectory | 0x7FFFFFF0)); },
                    "directory lies past the end"},
        HostileCase{"DataEntryPastEnd",
                    [] {
                        return resourceImage(ByteWriter().directory(0, 1).entry(6, Subdirectory | 0x18)
                                                 .directory(0, 1).entry(1, Subdirectory | 0x30)
                                                 .directory(0, 1).entry(0x0409, 0x7FFFFFF0));
                    },
                    "data entry lies past the end"},
        HostileCase{"DataOutsideSections",
                    [] {
                        return resourceImage(ByteWriter().directory(0, 1).entry(6, Subdirectory | 0x18)
                                                 .directory(0, 1).entry(1, Subdirectory | 0x30)
                                                 .directory(0, 1).entry(0x0409, 0x48).dataEntry(0x80000000, 34));
                    },
                    "data of string block 1 lies outside every section"},
        HostileCase{"DataPastSection",
                    [] {
                        return resourceImage(ByteWriter().directory(0, 1).entry(6, Subdirectory | 0x18)
                                                 .directory(0, 1).entry(1, Subdirectory | 0x30)
                                                 .directory(0, 1).entry(0x0409, 0x48).dataEntry(ResourceRva, 0x10000));
                    },
                    "data of string block 1 runs past its section's data"},
        HostileCase{"TextPastBlock",
                    [] {
                        return resourceImage(ByteWriter().directory(0, 1).entry(6, Subdirectory | 0x18)
                                                 .directory(0, 1).entry(1, Subdirectory | 0x30)
                                                 .directory(0, 1).entry(0x0409, 0x48)
                                                 .dataEntry(ResourceRva + 0x58, 8).u16(300).u16('a').u16('b').u16('c'));
                    },
                    "a text runs past the block's end"},
        HostileCase{"BlockShort",
                    [] {
                        return resourceImage(ByteWriter().directory(0, 1).entry(6, Subdirectory | 0x18)
                                                 .directory(0, 1).entry(1, Subdirectory | 0x30)
                                                 .directory(0, 1).entry(0x0409, 0x48)
                                                 .dataEntry(ResourceRva + 0x58, 10).u16(1).u16('a').u16(0).u16(0).u16(0));
                    },
                    "ends before its 16 texts"}),
    [](const auto& p) { return std::string(p.param.name); });

TEST(HostileTree, AHugeTreeIsRefusedQuickly)
{
    // 4096 blocks that all share one language directory of 65535 entries.
    ByteWriter rsrc;
    rsrc.directory(0, 1).entry(6, Subdirectory | 0x18).directory(0, 4096);
    const uint32_t languages = 0x18 + 16 + 4096 * 8;
    for (uint32_t block = 1; block <= 4096; ++block)
        rsrc.entry(block, Subdirectory | languages);
    const uint32_t data = languages + 16 + 0xFFFF * 8;
    rsrc.directory(0, 0xFFFF);
    for (uint32_t i = 0; i < 0xFFFF; ++i)
        rsrc.entry(0x0407, data);
    rsrc.dataEntry(ResourceRva + data + 16, 32).block({});

    std::string error;
    EXPECT_EQ(PeStringTable::parse(peImage(rsrc.str()).str(), &error), nullptr);
    EXPECT_NE(error.find("too many directory entries"), std::string::npos) << error;
}

class DllFixture : public ::testing::TestWithParam<const char*> {};

TEST_P(DllFixture, EveryTruncationIsRefused)
{
    const std::string whole = test::readWholeFile(test::langFixture(GetParam()));
    ASSERT_NE(PeStringTable::parse(whole), nullptr);
    for (std::size_t length = 0; length < whole.size(); ++length) {
        std::string error;
        EXPECT_EQ(PeStringTable::parse(std::string_view(whole).substr(0, length), &error), nullptr)
            << "accepted when cut to " << length << " bytes";
        EXPECT_FALSE(error.empty()) << "no reason when cut to " << length << " bytes";
    }
}

TEST_P(DllFixture, CorruptedBytesGiveATableOrAReason)
{
    const std::string whole = test::readWholeFile(test::langFixture(GetParam()));
    std::mt19937 random(20240611);  // fixed seed: the same corruptions every run
    std::uniform_int_distribution<std::size_t> position(0, whole.size() - 1);
    std::uniform_int_distribution<int> value(0, 255);
    int refused = 0;
    for (int round = 0; round < 3000; ++round) {
        std::string image = whole;
        for (int flips = 1 + round % 4; flips > 0; --flips)
            image[position(random)] = static_cast<char>(value(random));
        std::string error;
        const auto table = PeStringTable::parse(image, &error);
        EXPECT_NE(table == nullptr, error.empty()) << "round " << round << ": " << error;
        refused += table == nullptr;
    }
    EXPECT_GT(refused, 0);  // the corruptions did reach the structures
}

INSTANTIATE_TEST_SUITE_P(Fixtures, DllFixture, ::testing::Values("strings32.dll", "strings64.dll"),
                         [](const auto& p) { return std::string(p.param).substr(0, 9); });

}  // namespace
}  // namespace kestrin
