// Text catalogs (id=text lines), the registry that opens catalogs and language libraries by
// content and hands out handles, the translator that looks texts up in the custom library,
// then the standard one, then takes the caller's default, and the upper-casing of headings.
#include <gtest/gtest.h>

#include <climits>
#include <optional>
#include <set>

#include "support/TestSupport.h"
#include "text/CatalogRegistry.h"
#include "text/PeStringTable.h"
#include "text/TextCatalog.h"
#include "text/Translator.h"
#include "text/UpperCase.h"

namespace kestrin::test {
namespace {

const std::filesystem::path Lang = std::filesystem::path(KESTRIN_FIXTURES) / "lang";
const std::string kEmoji = "\xF0\x9F\x98\x80";

using Texts = std::vector<std::pair<int32_t, std::optional<std::string>>>;

TEST(TextCatalog, GivesTheTextsAsWritten) {
    const std::tuple<const char*, std::string, Texts> cases[] = {
        {"LineEnds", "3106=Value\r\n3107=Step\n1=a\r\r\n2=no final newline",
         {{3106, "Value"}, {3107, "Step"}, {1, "a\r"}, {2, "no final newline"}, {3108, std::nullopt}}},
        {"BomOnlyAtStart", "\xEF\xBB\xBF" "3106=Value\n1=\xEF\xBB\xBFx\n", {{3106, "Value"}, {1, "\xEF\xBB\xBFx"}}},
        {"CommentsAndBlanks", "# header\n\n   \n\t# indented comment\n  \t42 \t=text\n#2=two\n",
         {{42, "text"}, {2, std::nullopt}}},
        {"TextKeptAsWritten", "1= leading and trailing  \n2=a = b # not a comment\n3=#hash\n",
         {{1, " leading and trailing  "}, {2, "a = b # not a comment"}, {3, "#hash"}}},
        {"Escapes", "1=Line one\\nLine two\n2=a\\tb\\rc\n3=C:\\\\layouts\\old\n4=ends\\\n5=\\\\n\n",
         {{1, "Line one\nLine two"}, {2, "a\tb\rc"}, {3, "C:\\layouts\\old"}, {4, "ends\\"}, {5, "\\n"}}},
        {"LaterLineWins", "1=first\n1=second\n2=first\n2=\n3=\n", {{1, "second"}, {2, std::nullopt}, {3, std::nullopt}}},
        // Only the low 16 bits of a looked-up id count.
        {"Ids", "007=agent\n0=zero\n65535=last\n32=x\n",
         {{7, "agent"}, {0, "zero"}, {65535, "last"}, {-1, "last"}, {65536, "zero"}, {65536 * 3 + 32, "x"}, {INT32_MIN, "zero"}}},
        {"NonAscii",  // with the lowest and highest two-byte leads and the lowest four-byte one
         "1=\xC2\xA9\xDF\xBF Gr\xC3\xB6\xC3\x9F" "e \xE6\x97\xA5 \xF0\x90\x80\x80 \xF4\x8F\xBF\xBF\n",
         {{1, "\xC2\xA9\xDF\xBF Gr\xC3\xB6\xC3\x9F" "e \xE6\x97\xA5 \xF0\x90\x80\x80 \xF4\x8F\xBF\xBF"}}},
        {"CutAt255Units",
         "1=" + std::string(300, 'x') + "\n2=" + repeated("\xC3\xA4", 300) + "\n3=" + std::string(254, 'a') + kEmoji +
             "\n4=" + std::string(253, 'a') + kEmoji + "z\n5=" + repeated("\\n", 300),
         {{1, std::string(255, 'x')}, {2, repeated("\xC3\xA4", 255)}, {3, std::string(254, 'a')},
          {4, std::string(253, 'a') + kEmoji}, {5, std::string(255, '\n')}}},
        {"Empty", "", {{0, std::nullopt}}}};
    for (const auto& [name, content, expected] : cases) {
        SCOPED_TRACE(name);
        std::string error;
        const auto catalog = TextCatalog::parse(content, &error);
        ASSERT_NE(catalog, nullptr) << error;
        EXPECT_TRUE(catalog->warnings().empty());
        for (const auto& [id, text] : expected) EXPECT_EQ(catalog->lookup(id), text) << "id " << id;
    }
}

TEST(TextCatalog, ListsEachMalformedLineAndKeepsTheRest) {
    // Line 1 is a comment once the byte order mark is skipped; lines 11-19 are no UTF-8:
    // Windows-1252, overlong forms, a surrogate, above U+10FFFF, cut short, a stray
    // continuation byte, a lead byte that never starts a character.
    std::string content = "\xEF\xBB\xBF# the catalog\n1=one\nno equals sign\n=no id\n12a=letters\n-1=negative\n65536=too big\n"
                          "+5=plus\n1 2=two numbers\n4=four\r\n";
    for (const char* text : {"Gr\xF6\xDF" "e", "\xC0\x80", "\xE0\x80\x80", "\xF0\x80\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                             "ab\xE2\x82", "\x80" "a", "\xF5\x80\x80\x80"})
        content += std::string("3=") + text + "\n";
    std::string error;
    const auto catalog = TextCatalog::parse(content, &error);
    ASSERT_NE(catalog, nullptr) << error;
    std::vector<std::size_t> lines;
    for (const auto& warning : catalog->warnings()) lines.push_back(warning.line);
    ASSERT_EQ(lines, (std::vector<std::size_t>{3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 14, 15, 16, 17, 18, 19}));
    EXPECT_EQ(std::tuple(catalog->size(), catalog->lookup(1), catalog->lookup(3), catalog->lookup(4)),
              std::tuple(2u, "one", std::nullopt, "four"));
    for (const auto& [index, part] : {std::pair(0, "'='"), {2, "\"12a\""}, {7, "UTF-8"}})
        EXPECT_NE(catalog->warnings()[index].message.find(part), std::string::npos) << part;
}

int32_t openOrFail(CatalogRegistry& registry, const std::filesystem::path& path) {
    std::string error;
    const int32_t handle = registry.open(path, &error);
    EXPECT_NE(handle, 0) << error;
    return handle;
}

// A library is told by its content, not its name, up to the size limit; what is no library nor
// UTF-8 text is refused with a message naming the file.
TEST(CatalogRegistry, TellsTheKindByContentUpToTheSizeLimitAndRefusesTheRestNamingTheFile) {
    TempDir dir;
    writeBytes(dir / "strings.txt", readBytes(Lang / "strings64.dll"));
    writeBytes(dir / "texts.dll", "0=From a text catalog\nbroken\n");
    writeBytes(dir / "big.dll", readBytes(Lang / "strings32.dll"));
    std::filesystem::resize_file(dir / "big.dll", CatalogRegistry::MaxFileSize);  // zeros after the image
    CatalogRegistry registry;
    const auto* dll = dynamic_cast<const PeStringTable*>(registry.find(openOrFail(registry, dir / "strings.txt")));
    const auto* text = dynamic_cast<const TextCatalog*>(registry.find(openOrFail(registry, dir / "texts.dll")));
    const auto* big = dynamic_cast<const PeStringTable*>(registry.find(openOrFail(registry, dir / "big.dll")));
    ASSERT_TRUE(dll && text && big);
    ASSERT_EQ(text->warnings().size(), 1u);  // a host can show what was skipped
    EXPECT_EQ(std::tuple(registry.size(), dll->lookup(32), text->lookup(0), big->lookup(0), text->warnings()[0].line),
              std::tuple(3u, "English", "From a text catalog", "Zero", 2u));
    writeBytes(dir / "cut.dll", readBytes(Lang / "strings64.dll").substr(0, 700));
    writeBytes(dir / "x.png", std::string("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16));
    writeBytes(dir / "le.txt", std::string("\xFF\xFE" "1\0=\0a\0", 8));
    writeBytes(dir / "be.txt", std::string("\xFE\xFF\0" "1\0=\0a", 8));
    writeBytes(dir / "huge.txt", "1=one\n");
    std::filesystem::resize_file(dir / "huge.txt", CatalogRegistry::MaxFileSize + 1);  // sparse, quick to make
    const std::pair<std::filesystem::path, const char*> cases[] = {
        {dir / "absent.dll", "no such file"}, {dir.path(), "a folder"}, {dir / "huge.txt", "larger than 64 MiB"},
        {dir / "cut.dll", "truncated"}, {dir / "x.png", "NUL"}, {dir / "le.txt", "UTF-16"}, {dir / "be.txt", "UTF-16"}};
    for (const auto& [path, reason] : cases) {
        std::string error;
        EXPECT_EQ(std::tuple(registry.open(path, &error), registry.open(path)), std::tuple(0, 0)) << path;  // error optional
        EXPECT_TRUE(error.find(path.string()) != std::string::npos && error.find(reason) != std::string::npos) << error;
    }
    EXPECT_EQ(registry.size(), 3u);  // the refused ones are not kept
}

TEST(CatalogRegistry, GivesEachLibraryAHandleNeverGivenBefore) {
    CatalogRegistry registry, other;
    EXPECT_EQ(std::tuple(registry.find(0), registry.find(1)), std::tuple(nullptr, nullptr));
    const int32_t first = openOrFail(registry, Lang / "standard.txt");
    ASSERT_NE(registry.find(first), nullptr);
    EXPECT_EQ(registry.find(first)->lookup(3105), "Only in the standard library");
    // The last shares its low 32 bits with first on 64-bit builds, as a module handle may.
    const LanguageHandle wide = first + (LanguageHandle{1} << (sizeof(LanguageHandle) * 8 - 2));
    for (const LanguageHandle unknown :
         std::initializer_list<LanguageHandle>{0, -1, first + 1, first - 1, -first, INT32_MAX, INT32_MIN, wide})
        EXPECT_EQ(registry.find(unknown), nullptr) << unknown;
    EXPECT_EQ(std::tuple(other.find(first), other.close(first)), std::tuple(nullptr, false));  // registries share nothing
    const bool none = registry.close(0), closed = registry.close(first), again = registry.close(first);  // in this order
    EXPECT_EQ(std::tuple(none, closed, again, registry.find(first), registry.size()), std::tuple(false, true, false, nullptr, 0u));
    std::set<int32_t> seen{first};
    for (const char* name : {"custom.dll", "standard.txt", "custom.dll"}) {
        const int32_t handle = openOrFail(registry, Lang / name);
        EXPECT_TRUE(seen.insert(handle).second) << "handle " << handle << " given twice";
        EXPECT_TRUE(registry.close(handle));
    }
}

const std::string CustomText = "Custom: W\xC3\xA4hlen Sie zuerst ein Element.";

// The standard and custom library as DLLs (true) or as text catalogs (false).
class TranslatorFallback : public ::testing::TestWithParam<bool> {};

TEST_P(TranslatorFallback, TriesCustomThenStandardThenDefault) {
    CatalogRegistry registry;
    Translator translator{&registry};
    translator.setLanguageDLL(openOrFail(registry, Lang / (GetParam() ? "standard.dll" : "standard.txt")));
    translator.setCustomLanguageDLL(openOrFail(registry, Lang / (GetParam() ? "custom.dll" : "custom.txt")));
    const std::tuple<int32_t, const char*, std::string> cases[] = {
        {3104, "<Remove>", CustomText},  // in both: custom wins
        {3105, "<Remove?>", "Only in the standard library"}, {3106, "<Value>", "Only in the custom library"},
        {3107, "<Step>", "<Step>"}, {3107, "", std::string(Translator::NotFoundText)},  // in neither
        {3108, "", "Standard text behind an empty custom one"},  // empty counts as none
        {3110, "", "Standard: two lines\nGr\xC3\xB6\xC3\x9F" "e"}, {3104 + 65536, "", CustomText}};
    for (const auto& [id, defaultText, expected] : cases) EXPECT_EQ(translator.text(id, defaultText), expected) << "id " << id;
}

INSTANTIATE_TEST_SUITE_P(Libraries, TranslatorFallback, ::testing::Bool(),
                         [](const auto& p) { return std::string(p.param ? "Dlls" : "TextCatalogs"); });

TEST(UpperCase, CapitalisesTheLettersOfTheWesternCodePage) {
    // The last rows have no single capital (ß), are no letters of the code page, or are capitals already.
    const std::pair<const char*, const char*> cases[] = {
        {"<Pages> 1-2", "<PAGES> 1-2"}, {"páginas çà", "PÁGINAS ÇÀ"}, {"ÿ š œ ž", "Ÿ Š Œ Ž"}, {"÷ ß µ € 日本", "÷ ß µ € 日本"},
        {"ē ł ő Ł Ó Ş", "ē ł ő Ł Ó Ş"}};
    for (auto [text, upper] : cases) EXPECT_EQ(upperCase(text), upper) << text;
}

}  // namespace
}  // namespace kestrin::test
