#include <gtest/gtest.h>

#include <climits>
#include <optional>
#include <string>

#include "PeTestImage.h"
#include "TextTestSupport.h"
#include "text/PeStringTable.h"

namespace kestrin {
namespace {

using test::ByteWriter;
using test::langFixture;
using test::peImage;
using test::readWholeFile;
using test::stringTableSection;
using test::Subdirectory;

std::string repeated(std::string_view piece, std::size_t count)
{
    std::string out;
    for (std::size_t i = 0; i < count; ++i)
        out += piece;
    return out;
}

std::unique_ptr<PeStringTable> parseOrFail(const std::string& image)
{
    std::string error;
    auto table = PeStringTable::parse(image, &error);
    EXPECT_NE(table, nullptr) << error;
    return table;
}

// --- the DLLs built from strings.rc, one PE32 and one PE32+ ---

struct DllFile {
    const char* name;
    PeStringTable::Format format;
};

void PrintTo(const DllFile& f, std::ostream* out) { *out << f.name; }

class StringsDll : public ::testing::TestWithParam<DllFile> {
protected:
    void SetUp() override
    {
        table = parseOrFail(readWholeFile(langFixture(GetParam().name)));
        ASSERT_NE(table, nullptr);
    }
    std::unique_ptr<PeStringTable> table;
};

struct Expected {
    int32_t id;
    std::optional<std::string> text;
};

TEST_P(StringsDll, IsReadInItsFormat)
{
    EXPECT_EQ(table->format(), GetParam().format);
    EXPECT_EQ(table->size(), 14u);  // every non-empty text of strings.rc
}

TEST_P(StringsDll, AnswersLikeTheHostsStringLoader)
{
    const std::string digits = repeated("0123456789", 30);
    const Expected cases[] = {
        {0, "Zero"},
        {1, "Gr\xC3\xB6\xC3\x9F" "e: 10 \xC3\x97 20 mm"},
        {2, "\xCE\x95\xCE\xBB\xCE\xBB\xCE\xB7\xCE\xBD\xCE\xB9\xCE\xBA\xCE\xAC \xD0\xB8 "
            "\xD1\x80\xD1\x83\xD1\x81\xD1\x81\xD0\xBA\xD0\xB8\xD0\xB9"},
        {3, "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xE3\x81\xAE\xE3\x83\x86\xE3\x82\xAD\xE3\x82\xB9\xE3\x83\x88"},
        {4, "Emoji \xF0\x9F\x98\x80 outside the BMP"},
        {5, digits.substr(0, 255)},                        // 300 characters, cut to 255
        {6, std::nullopt},                                 // empty slot
        {7, std::nullopt},                                 // slot never written, same block
        {8, std::string(254, 'a')},                        // the cut would split an emoji
        {9, "Two lines\nsecond line"},
        {10, repeated("\xC3\xA4", 255)},                   // cut counts UTF-16 units, not bytes
        {15, "Fifteen"},
        {16, std::nullopt},                                // block 2 does not exist
        {32, "English"},                                   // German and English: English
        {33, std::nullopt},                                // only in the German block: not chosen
        {48, "Neutral"},                                   // German, English, neutral: neutral
        {64, "Fran\xC3\xA7" "ais"},                        // French only: the first language
        {5000, std::nullopt},                              // missing block
        {65535, "Last id"},
        {-1, "Last id"},                                   // only the low 16 bits count
        {65536, "Zero"},
        {65536 * 7 + 32, "English"},
        {INT32_MIN, "Zero"},
    };
    for (const Expected& c : cases)
        EXPECT_EQ(table->lookup(c.id), c.text) << "id " << c.id;
}

INSTANTIATE_TEST_SUITE_P(Fixtures, StringsDll,
                         ::testing::Values(DllFile{"strings32.dll", PeStringTable::Format::Pe32},
                                           DllFile{"strings64.dll", PeStringTable::Format::Pe32Plus}),
                         [](const auto& p) { return p.param.format == PeStringTable::Format::Pe32
                                                    ? std::string("Pe32") : std::string("Pe32Plus"); });

// --- images built here, for what a resource compiler never writes ---

class BuiltImage : public ::testing::TestWithParam<bool> {};

TEST_P(BuiltImage, ChoosesTheLanguageByBlockWhateverTheEntryOrder)
{
    const auto image = peImage(stringTableSection({
        {1, {{0x0409, {u"en-1"}}, {0x0407, {u"de-1"}}, {0x0000, {u"neutral-1"}}}},
        {2, {{0x0407, {u"de-2"}}, {0x0409, {u"en-2"}}}},
        {3, {{0x040C, {u"fr-3"}}, {0x0407, {u"de-3"}}}},
        {4, {{0x0411, {}}, {0x0409, {u"en-4"}}}},  // the first is empty, English still wins
    }), GetParam());
    const auto table = parseOrFail(image.str());
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->format(), GetParam() ? PeStringTable::Format::Pe32Plus : PeStringTable::Format::Pe32);
    EXPECT_EQ(table->lookup(0), "neutral-1");
    EXPECT_EQ(table->lookup(16), "en-2");
    EXPECT_EQ(table->lookup(32), "fr-3");
    EXPECT_EQ(table->lookup(48), "en-4");
}

TEST_P(BuiltImage, ReplacesUnpairedSurrogates)
{
    const auto image = peImage(stringTableSection({{1, {{0x0409, {
        std::u16string{u'a', 0xD800},
        std::u16string{0xDC00, u'b'},
        std::u16string{0xD83D, 0xDE00, 0xD83D},
    }}}}}), GetParam());
    const auto table = parseOrFail(image.str());
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->lookup(0), "a\xEF\xBF\xBD");
    EXPECT_EQ(table->lookup(1), "\xEF\xBF\xBD" "b");
    EXPECT_EQ(table->lookup(2), "\xF0\x9F\x98\x80\xEF\xBF\xBD");
}

TEST_P(BuiltImage, TakesTheFirstEntryOfARepeatedBlock)
{
    const auto image = peImage(stringTableSection({
        {5, {{0x0409, {u"first"}}}},
        {5, {{0x0000, {u"second"}}}},
    }), GetParam());
    const auto table = parseOrFail(image.str());
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->lookup(64), "first");
}

TEST_P(BuiltImage, SkipsNamedEntriesAndBlocksNoIdReaches)
{
    // Root: a named type and the string type; string type: a named block, block 0, block 1.
    ByteWriter rsrc;
    rsrc.directory(1, 1).entry(Subdirectory | 0x200, Subdirectory | 0x30).entry(6, Subdirectory | 0x60);
    rsrc.zerosTo(0x30).directory(0, 1).entry(1, Subdirectory | 0x90);  // a named type's own tree
    rsrc.zerosTo(0x60).directory(1, 2).entry(Subdirectory | 0x200, Subdirectory | 0x90)
        .entry(0, Subdirectory | 0x90).entry(1, Subdirectory | 0x90);
    rsrc.zerosTo(0x90).directory(0, 1).entry(0x0409, 0xB0);
    rsrc.zerosTo(0xB0).dataEntry(test::ResourceRva + 0xC0, 36);
    rsrc.zerosTo(0xC0).block({u"ok"});
    rsrc.zerosTo(0x200).u16(4).bytes(std::string_view("N\0A\0M\0E\0", 8));
    const auto table = parseOrFail(peImage(rsrc.str(), GetParam()).str());
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(table->size(), 1u);
    EXPECT_EQ(table->lookup(0), "ok");
}

TEST_P(BuiltImage, WithoutStringTablesHasNoTexts)
{
    const bool plus = GetParam();
    const test::PeLayout layout{plus};
    ByteWriter otherTypes;  // icons only (type 3), pointing nowhere useful
    otherTypes.directory(0, 1).entry(3, Subdirectory | 0x18).directory(0, 0);

    ByteWriter noDirectory = peImage(stringTableSection({{1, {{0x0409, {u"x"}}}}}), plus);
    noDirectory.put32(layout.resourceDirectory(), 0);
    ByteWriter twoDirectories = peImage(stringTableSection({{1, {{0x0409, {u"x"}}}}}), plus);
    twoDirectories.put32(layout.rvaCount(), 2);  // the resource entry is not counted
    ByteWriter emptyLanguages;
    emptyLanguages.directory(0, 1).entry(6, Subdirectory | 0x18).directory(0, 1).entry(1, Subdirectory | 0x30);
    emptyLanguages.zerosTo(0x30).directory(0, 0);

    for (const std::string& image : {peImage(otherTypes.str(), plus).str(), noDirectory.str(), twoDirectories.str(),
                                     peImage(emptyLanguages.str(), plus).str()}) {
        const auto table = parseOrFail(image);
        ASSERT_NE(table, nullptr);
        EXPECT_EQ(table->size(), 0u);
        EXPECT_EQ(table->lookup(0), std::nullopt);
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, BuiltImage, ::testing::Bool(),
                         [](const auto& p) { return p.param ? std::string("Pe32Plus") : std::string("Pe32"); });

}  // namespace
}  // namespace kestrin
