#include <gtest/gtest.h>

#include <climits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "support/TestSupport.h"
#include "text/TextCatalog.h"

namespace kestrin {
namespace {

std::string repeated(std::string_view piece, std::size_t count)
{
    std::string out;
    for (std::size_t i = 0; i < count; ++i)
        out += piece;
    return out;
}

TEST(TextCatalog, GivesTheTextsAsWritten)
{
    const std::string emoji = "\xF0\x9F\x98\x80";
    const struct {
        const char* name;
        std::string content;
        std::vector<std::pair<int32_t, std::optional<std::string>>> expected;
    } cases[] = {
        {"LineEnds", "3106=Value\r\n3107=Step\n1=a\r\r\n2=no final newline",
         {{3106, "Value"}, {3107, "Step"}, {1, "a\r"}, {2, "no final newline"}, {3108, std::nullopt}}},
        {"BomOnlyAtStart", "\xEF\xBB\xBF" "3106=Value\n1=\xEF\xBB\xBFx\n",
         {{3106, "Value"}, {1, "\xEF\xBB\xBFx"}}},
        {"CommentsAndBlanks", "# header\n\n   \n\t# indented comment\n  \t42 \t=text\n#2=two\n",
         {{42, "text"}, {2, std::nullopt}}},
        {"TextKeptAsWritten", "1= leading and trailing  \n2=a = b # not a comment\n3=#hash\n",
         {{1, " leading and trailing  "}, {2, "a = b # not a comment"}, {3, "#hash"}}},
        {"Escapes", "1=Line one\\nLine two\n2=a\\tb\\rc\n3=C:\\\\layouts\\old\n4=ends\\\n5=\\\\n\n",
         {{1, "Line one\nLine two"}, {2, "a\tb\rc"}, {3, "C:\\layouts\\old"}, {4, "ends\\"}, {5, "\\n"}}},
        {"LaterLineWins", "1=first\n1=second\n2=first\n2=\n3=\n",
         {{1, "second"}, {2, std::nullopt}, {3, std::nullopt}}},
        {"Ids", "007=agent\n0=zero\n65535=last\n32=x\n",  // only the low 16 bits of a lookup count
         {{7, "agent"}, {0, "zero"}, {65535, "last"}, {-1, "last"}, {65536, "zero"},
          {65536 * 3 + 32, "x"}, {INT32_MIN, "zero"}}},
        {"NonAscii", "1=Gr\xC3\xB6\xC3\x9F" "e \xE6\x97\xA5 \xF4\x8F\xBF\xBF\n",
         {{1, "Gr\xC3\xB6\xC3\x9F" "e \xE6\x97\xA5 \xF4\x8F\xBF\xBF"}}},
        {"CutAt255Units",
         "1=" + std::string(300, 'x') + "\n2=" + repeated("\xC3\xA4", 300) + "\n3=" +
             std::string(254, 'a') + emoji + "\n4=" + std::string(253, 'a') + emoji + "z\n5=" +
             repeated("\\n", 300),
         {{1, std::string(255, 'x')}, {2, repeated("\xC3\xA4", 255)}, {3, std::string(254, 'a')},
          {4, std::string(253, 'a') + emoji}, {5, std::string(255, '\n')}}},
        {"Empty", "", {{0, std::nullopt}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::string error;
        const auto catalog = TextCatalog::parse(c.content, &error);
        ASSERT_NE(catalog, nullptr) << error;
        EXPECT_TRUE(catalog->warnings().empty());
        for (const auto& [id, text] : c.expected)
            EXPECT_EQ(catalog->lookup(id), text) << "id " << id;
    }
}

TEST(TextCatalogWarnings, ListEachMalformedLineAndKeepTheRest)
{
    std::string content =
        "\xEF\xBB\xBF# the catalog\n"  // 1: a comment once the byte order mark is skipped
        "1=one\n"                      // 2
        "no equals sign\n"             // 3
        "=no id\n"                     // 4
        "12a=letters\n"                // 5
        "-1=negative\n"                // 6
        "65536=too big\n"              // 7
        "+5=plus\n"                    // 8
        "1 2=two numbers\n"            // 9
        "4=four\r\n";                  // 10
    // Lines 11-19, not UTF-8: Windows-1252, overlong forms, a surrogate, above U+10FFFF,
    // cut short, a stray continuation byte, a lead byte that never starts a character.
    for (const char* text : {"Gr\xF6\xDF" "e", "\xC0\x80", "\xE0\x80\x80", "\xF0\x80\x80\x80", "\xED\xA0\x80",
                             "\xF4\x90\x80\x80", "ab\xE2\x82", "\x80" "a", "\xF5\x80\x80\x80"}) {
        content += "3=";
        content += text;
        content += '\n';
    }
    std::string error;
    const auto catalog = TextCatalog::parse(content, &error);
    ASSERT_NE(catalog, nullptr) << error;

    std::vector<std::size_t> lines;
    for (const auto& warning : catalog->warnings())
        lines.push_back(warning.line);
    ASSERT_EQ(lines, (std::vector<std::size_t>{3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 14, 15, 16, 17, 18, 19}));
    EXPECT_EQ(catalog->size(), 2u);
    EXPECT_EQ(catalog->lookup(1), "one");
    EXPECT_EQ(catalog->lookup(3), std::nullopt);
    EXPECT_EQ(catalog->lookup(4), "four");
    EXPECT_NE(catalog->warnings()[0].message.find("'='"), std::string::npos);
    EXPECT_NE(catalog->warnings()[2].message.find("\"12a\""), std::string::npos);
    EXPECT_NE(catalog->warnings()[7].message.find("UTF-8"), std::string::npos);
}

TEST(TextCatalog, RefusesWhatIsNoUtf8Text)
{
    const std::pair<std::string, const char*> cases[] = {
        {std::string("\xFF\xFE" "1\0=\0a\0", 8), "UTF-16"},
        {std::string("\xFE\xFF\0" "1\0=\0a", 8), "UTF-16"},
        {std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16), "NUL"},
    };
    for (const auto& [content, reason] : cases) {
        std::string error;
        EXPECT_EQ(TextCatalog::parse(content, &error), nullptr) << reason;
        EXPECT_NE(error.find(reason), std::string::npos) << error;
    }
}

TEST(ExampleCatalog, ReadsCleanlyAndHasAProperTextForEveryBundledId)
{
    std::string error;
    const auto path = std::filesystem::path(KESTRIN_EXAMPLES) / "lang" / "kestrin-en.txt";
    const auto catalog = TextCatalog::parse(test::readBytes(path), &error);
    ASSERT_NE(catalog, nullptr) << error;
    for (const auto& warning : catalog->warnings())
        ADD_FAILURE() << "line " << warning.line << ": " << warning.message;
    for (const int32_t id : {3104, 3105, 3106, 3107, 3108, 3109, 3112, 3113, 3115, 3116, 3117, 3118, 3119,
                             3120, 3146, 4606, 4607, 4642, 3250, 3264, 3265}) {
        const auto text = catalog->lookup(id);
        ASSERT_TRUE(text) << "id " << id;
        EXPECT_EQ(text->find_first_of("<>"), std::string::npos) << "id " << id << ": " << *text;
    }
    EXPECT_EQ(catalog->lookup(3105)->back(), '?');
    // 3264 and 3265 are shown around a file name.
    const std::string readOnly = *catalog->lookup(3264) + " layout file " + *catalog->lookup(3265);
    EXPECT_EQ(readOnly.find("  "), std::string::npos) << readOnly;
    EXPECT_EQ(readOnly.back(), '.') << readOnly;
}

}  // namespace
}  // namespace kestrin
