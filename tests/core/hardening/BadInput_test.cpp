// Malformed and hostile input of every kind the control reads. Each family builds its cases
// from the bundled files, counts them, and checks that nothing crashes, that what opens
// saves and opens again to the same items, and that the operator hears of what was refused.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <random>

#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "persist/InputLimits.h"
#include "persist/LayoutReader.h"
#include "persist/LayoutRenderer.h"
#include "persist/LayoutSaver.h"
#include "support/Records.h"
#include "text/Translator.h"
#include "support/TestSupport.h"
#include "text/CatalogRegistry.h"
#include "text/PeStringTable.h"
#include "text/TextCatalog.h"

namespace kestrin {
namespace {

using test::readBytes;
using test::RecordingPrompter;
using test::TempDir;
using test::writeBytes;

const std::filesystem::path kExamples = KESTRIN_EXAMPLES;
const std::filesystem::path kFixtures = KESTRIN_FIXTURES;

std::vector<std::string> sampleLayouts() {
    return {readBytes(kExamples / "layouts/Staff.IIF"), readBytes(kExamples / "layouts/Visitors16K.IIF")};
}

void report(const char* family, size_t cases) {
    std::printf("bad input: %s: %zu cases\n", family, cases);
}

// Opens bytes as a layout; when they open, the layout saved from them opens to the same items.
void expectOpensSafely(const std::string& bytes, const std::string& what) {
    RecordingPrompter prompter;
    CIClass card;
    RecordArray records;
    const LayoutReadResult result = readLayoutBytes(bytes, card, records, prompter);
    if (!result.opened) return;
    const RenderedLayout saved = renderLayoutFile(card, records, HostFieldList{});
    CIClass again;
    RecordArray reread;
    ASSERT_TRUE(readLayoutBytes(saved.bytes, again, reread, prompter).opened) << what;
    ASSERT_EQ(reread.size(), records.size()) << what;
    for (const ItemRecord& r : records)
        ASSERT_NE(std::find(reread.begin(), reread.end(), r), reread.end()) << what << ": item " << r.name << " lost";
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find("\r\n", start);
        if (end == std::string::npos) end = text.size();
        out.push_back(text.substr(start, end - start));
        start = end + 2;
    }
    return out;
}

std::string join(const std::vector<std::string>& ls) {
    std::string out;
    for (const auto& l : ls) out += l + "\r\n";
    return out;
}

TEST(BadInput, TruncatedFilesOfEveryKind) {
    size_t cases = 0;
    for (const std::string& layout : sampleLayouts())
        for (size_t n = 0; n < layout.size(); ++n, ++cases) expectOpensSafely(layout.substr(0, n), "prefix");
    const std::string project = readBytes(kExamples / "project/Sample.ini");
    for (size_t n = 0; n < project.size(); ++n, ++cases) {
        HostFieldList list;
        list.fetchFromBytes(project.substr(0, n));
        EXPECT_LE(list.count(), 8);  // its NUMCOLUMNS; a cut TagField lets the tag column in
    }
    for (const char* dll : {"strings32.dll", "strings64.dll"}) {
        const std::string image = readBytes(kFixtures / "lang" / dll);
        for (size_t n = 0; n < image.size(); ++n, ++cases) {
            std::string error;
            if (!PeStringTable::parse(std::string_view(image).substr(0, n), &error)) {
                EXPECT_FALSE(error.empty());
            }
        }
    }
    const std::string catalog = readBytes(kExamples / "lang/kestrin-en.txt");
    for (size_t n = 0; n < catalog.size(); ++n, ++cases) (void)TextCatalog::parse(std::string_view(catalog).substr(0, n));
    report("truncated", cases);
    EXPECT_GT(cases, 10000u);
}

TEST(BadInput, RandomBinaryBytes) {
    std::mt19937 rng(20261121);
    size_t cases = 0;
    for (int i = 0; i < 500; ++i, ++cases) {
        std::string bytes(rng() % 4096, '\0');
        for (char& c : bytes) c = static_cast<char>(rng());
        if (i % 2) bytes.replace(0, std::min<size_t>(bytes.size(), 2), "MZ");
        expectOpensSafely(bytes, "binary " + std::to_string(i));
        HostFieldList list;
        list.fetchFromBytes(bytes);
        std::string error;
        if (!PeStringTable::parse(bytes, &error)) {
            EXPECT_FALSE(error.empty());
        }
        (void)TextCatalog::parse(bytes, &error);
    }
    report("binary", cases);
}

TEST(BadInput, HugeLinesAreCutAndTold) {
    const std::string big(8u << 20, 'x');
    const std::string layouts[] = {
        test::crlf({"[CARDDESIGN]", "Size=2K", "[INITCARD]", "1Value=Constant(\"" + big + "\")", "1Place=0,19,0,8"}),
        test::crlf({"[ENCODE]", big + "(1)=0,19,0,8,0"}),
        test::crlf({"[SETTINGS]", "Font=" + big}),
        "[" + big + "]\r\nA=1\r\n",
        big,
    };
    size_t cases = 0;
    for (const std::string& layout : layouts) {
        RecordingPrompter prompter;
        CIClass card;
        RecordArray records;
        const LayoutReadResult result = readLayoutBytes(layout, card, records, prompter);
        EXPECT_TRUE(result.opened);
        for (const ItemRecord& r : records)
            for (const std::string* p : {&r.param1, &r.param2, &r.param3}) EXPECT_LE(p->size(), kMaxValueChars);
        if (!result.limitsExceeded.empty()) {
            ASSERT_EQ(prompter.messages.size(), 1u);
            EXPECT_NE(prompter.messages[0].text.find("longer than 1023 characters"), std::string::npos);
        }
        ++cases;
    }
    report("huge lines", cases);
}

TEST(BadInput, FilesBeyondTheSizeLimitsAreRefusedWithAMessage) {
    TempDir dir;
    const auto huge = dir / "huge.IIF";
    writeBytes(huge, "[GENERAL]\r\n");
    std::filesystem::resize_file(huge, 100u << 20);  // 100 MiB, sparse

    RecordingPrompter prompter;
    CIClass card;
    RecordArray records;
    const LayoutReadResult result = readLayout(huge, card, records, prompter);
    EXPECT_FALSE(result.opened);
    ASSERT_EQ(prompter.messages.size(), 1u);
    EXPECT_NE(prompter.messages[0].text.find("too large"), std::string::npos);
    EXPECT_EQ(std::filesystem::file_size(huge), 100u << 20);

    HostFieldList fields;
    std::vector<std::string> warnings;
    fields.fetch(huge, &warnings);
    EXPECT_EQ(fields.count(), 0);
    ASSERT_EQ(warnings.size(), 1u);
    EXPECT_NE(warnings[0].find("too large"), std::string::npos);

    CatalogRegistry registry;
    std::string error;
    EXPECT_EQ(registry.open(huge, &error), 0);
    EXPECT_NE(error.find("too large"), std::string::npos);
    report("100 MB files", 3);
}

TEST(BadInput, AbsurdAndNegativeNumbers) {
    const char* absurd[] = {"-1",          "-32768",      "-32769",       "32767",  "32768",
                            "65536",       "2147483647",  "2147483648",   "-2147483649",
                            "99999999999999999999999",    "0x7fffffff",   "0b101",  "-0", "1e9", ""};
    size_t cases = 0;
    for (const std::string& layout : sampleLayouts()) {
        const std::vector<std::string> original = lines(layout);
        for (size_t i = 0; i < original.size(); ++i) {
            const std::string& line = original[i];
            // Every run of digits in the line, replaced by each absurd number in turn.
            for (size_t start = line.find_first_of("0123456789"); start != std::string::npos;) {
                const size_t end = std::min(line.find_first_not_of("0123456789", start), line.size());
                for (const char* value : absurd) {
                    std::vector<std::string> changed = original;
                    changed[i] = line.substr(0, start) + value + line.substr(end);
                    expectOpensSafely(join(changed), changed[i]);
                    ++cases;
                }
                start = line.find_first_of("0123456789", end);
            }
        }
    }
    report("absurd and negative numbers", cases);
    EXPECT_GT(cases, 2000u);
}

TEST(BadInput, DuplicateAndMissingSectionsAndKeys) {
    size_t duplicates = 0, missing = 0;
    for (const std::string& layout : sampleLayouts()) {
        const std::vector<std::string> original = lines(layout);
        for (size_t i = 0; i < original.size(); ++i) {
            std::vector<std::string> twice = original;
            twice.insert(twice.begin() + static_cast<std::ptrdiff_t>(i), original[i]);
            expectOpensSafely(join(twice), "line twice: " + original[i]);
            std::vector<std::string> without = original;
            without.erase(without.begin() + static_cast<std::ptrdiff_t>(i));
            expectOpensSafely(join(without), "line missing: " + original[i]);
            duplicates += 1, missing += 1;
            if (original[i].empty() || original[i][0] != '[') continue;
            // The whole section, once more at the end and left out.
            size_t end = i + 1;
            while (end < original.size() && (original[end].empty() || original[end][0] != '[')) ++end;
            std::vector<std::string> section(original.begin() + static_cast<std::ptrdiff_t>(i),
                                             original.begin() + static_cast<std::ptrdiff_t>(end));
            std::vector<std::string> again = original;
            again.insert(again.end(), section.begin(), section.end());
            expectOpensSafely(join(again), "section twice: " + original[i]);
            std::vector<std::string> gone = original;
            gone.erase(gone.begin() + static_cast<std::ptrdiff_t>(i), gone.begin() + static_cast<std::ptrdiff_t>(end));
            expectOpensSafely(join(gone), "section missing: " + original[i]);
            duplicates += 1, missing += 1;
        }
    }
    report("duplicate sections and keys", duplicates);
    report("missing sections and keys", missing);
}

TEST(BadInput, LanguageLibrariesWithBrokenResourceOffsets) {
    const uint32_t values[] = {0u, 1u, 0x7fffffffu, 0xffffffffu, 0x10000u, 0xfffffff0u};
    size_t cases = 0, refused = 0;
    for (const char* dll : {"strings32.dll", "strings64.dll", "standard.dll", "custom.dll"}) {
        const std::string image = readBytes(kFixtures / "lang" / dll);
        // Every aligned 32-bit word of the image (headers, directories, offsets, sizes) broken in turn.
        for (size_t at = 0; at + 4 <= image.size(); at += 4)
            for (uint32_t v : values) {
                std::string broken = image;
                for (int b = 0; b < 4; ++b) broken[at + static_cast<size_t>(b)] = static_cast<char>(v >> (8 * b));
                std::string error;
                const auto table = PeStringTable::parse(broken, &error);
                if (!table) {
                    EXPECT_FALSE(error.empty());
                    ++refused;
                }
                ++cases;
            }
    }
    report("language DLLs with broken offsets", cases);
    std::printf("bad input: language DLLs refused with a reason: %zu\n", refused);
    EXPECT_GT(refused, 0u);
}

TEST(BadInput, ProjectsWithAbsurdColumnCounts) {
    struct Case {
        const char* numColumns;
        bool read;  // false: the count is out of range and no field is read, with a warning
    };
    const Case cases[] = {{"32767", true}, {"32768", false}, {"-1", true}, {"2147483647", false}, {"-32769", false}};
    for (const Case& c : cases) {
        HostFieldList list;
        std::vector<std::string> warnings;
        list.fetchFromBytes(test::crlf({"[DATABASE]", std::string("NUMCOLUMNS=") + c.numColumns, "[COLUMN1]",
                                        "DbFIELD=NAME", "NAME=Name", "FIELDTYPE=Character", "FIELDSIZE=30"}),
                            &warnings);
        EXPECT_EQ(warnings.empty(), c.read) << c.numColumns;
        if (!c.read) {
            EXPECT_EQ(list.count(), 0) << c.numColumns;
        } else if (std::string(c.numColumns) == "32767") {
            ASSERT_GE(list.count(), 1);
            EXPECT_EQ(list.fields().front().dbField, "NAME");
        }
    }
    report("project column counts", std::size(cases));
}

TEST(BadInput, NamesWithSpecialCharactersSaveRightOrAreRefused) {
    const std::string specials[] = {"[", "]", "=", ";", "\"", "'", "\x01", "\t", "\r", "\n", "\x7F", "/@", " [+] "};
    TempDir dir;
    const auto file = dir / "Names.IIF";
    const Translator translator;
    CIClass card;
    size_t cases = 0, saved = 0, refused = 0;
    for (const std::string& special : specials)
        for (const std::string& name : {special + "Name", "Na" + special + "me", "Name" + special}) {
            RecordArray first;
            first.add(test::field("Before", 0, 19, 0, 8));
            RecordingPrompter prompter;
            ASSERT_TRUE(saveLayout(file, &card, first, HostFieldList{}, prompter, translator).saved);
            const std::string before = readBytes(file);

            RecordArray records;
            records.add(test::field(name, 0, 19, 0, 8));
            records.add(test::function("Constant", "\"" + name + "\"", "", "", 0, 20, 0, 8));
            const SaveOutcome outcome = saveLayout(file, &card, records, HostFieldList{}, prompter, translator);
            ++cases;
            if (!outcome.saved) {
                // Refused: the operator is told why and the files stay as they were.
                ++refused;
                ASSERT_EQ(prompter.messages.size(), 1u) << name;
                EXPECT_NE(prompter.messages[0].text.find("cannot hold"), std::string::npos) << name;
                EXPECT_EQ(readBytes(file), before) << name;
                continue;
            }
            ++saved;
            CIClass opened;
            RecordArray reread;
            ASSERT_TRUE(readLayout(file, opened, reread, prompter).opened);
            ASSERT_EQ(reread.size(), 2) << name;
            EXPECT_EQ(reread[0].name, name);
            EXPECT_EQ(reread[1].param1, records[1].param1);
        }
    report("names with [ = ; quotes and control characters", cases);
    std::printf("bad input: names saved and read back the same: %zu, refused with a message: %zu\n", saved, refused);
    EXPECT_GT(saved, 0u);
    EXPECT_GT(refused, 0u);
}

}  // namespace
}  // namespace kestrin
