// Texts by id: the custom library, then the standard one, then the caller's default or the
// not-found marker; and the upper-casing of texts shown as headings.
#include <gtest/gtest.h>

#include "text/CatalogRegistry.h"
#include "text/Translator.h"
#include "text/UpperCase.h"

namespace kestrin {
namespace {

const std::string NotFound(Translator::NotFoundText);
const std::string StandardText = "Standard: select an item first.";
const std::string CustomText = "Custom: W\xC3\xA4hlen Sie zuerst ein Element.";

int32_t openOrFail(CatalogRegistry& registry, const char* name) {
    std::string error;
    const int32_t handle = registry.open(std::filesystem::path(KESTRIN_FIXTURES) / "lang" / name, &error);
    EXPECT_NE(handle, 0) << error;
    return handle;
}

TEST(Translator, WithoutLibrariesGivesTheDefaultOrTheMarker) {
    CatalogRegistry registry;
    Translator noRegistry, unknownHandles(&registry);
    EXPECT_EQ(std::tuple(noRegistry.LanguageDLL(), noRegistry.CustomLanguageDLL()), std::tuple(0, 0));
    unknownHandles.setLanguageDLL(7);
    unknownHandles.setCustomLanguageDLL(-9);
    EXPECT_EQ(std::tuple(unknownHandles.LanguageDLL(), unknownHandles.CustomLanguageDLL()), std::tuple(7, -9));
    for (const Translator* translator : {&noRegistry, &unknownHandles}) {
        EXPECT_EQ(translator->text(3106), "*=*+*");
        EXPECT_EQ(translator->text(3106, ""), "*=*+*");
        EXPECT_EQ(translator->text(3106, "<Value>"), "<Value>");
        EXPECT_EQ(translator->text(0, " "), " ");
    }
}

// The standard and custom library as DLLs (true) or as text catalogs (false).
class TranslatorFallback : public ::testing::TestWithParam<bool> {
protected:
    const char* customFile() const { return GetParam() ? "custom.dll" : "custom.txt"; }
    void SetUp() override {
        standard = openOrFail(registry, GetParam() ? "standard.dll" : "standard.txt");
        custom = openOrFail(registry, customFile());
        ASSERT_TRUE(standard && custom);
        translator.setLanguageDLL(standard);
        translator.setCustomLanguageDLL(custom);
    }
    CatalogRegistry registry;
    Translator translator{&registry};
    int32_t standard = 0, custom = 0;
};

TEST_P(TranslatorFallback, TriesCustomThenStandardThenDefault) {
    std::string digits;
    for (int i = 0; i < 30; ++i) digits += "0123456789";
    const std::tuple<int32_t, const char*, std::string> cases[] = {
        {3104, "<Remove>", CustomText},  // in both: custom wins
        {3105, "<Remove?>", "Only in the standard library"}, {3106, "<Value>", "Only in the custom library"},
        {3107, "<Step>", "<Step>"}, {3107, "", NotFound},  // in neither
        {3108, "", "Standard text behind an empty custom one"},  // empty counts as none
        {3109, "", digits.substr(0, 255)},                       // 300 characters, cut
        {3110, "", "Standard: two lines\nGr\xC3\xB6\xC3\x9F" "e"}, {3104 + 65536, "", CustomText}};
    for (const auto& [id, defaultText, expected] : cases) EXPECT_EQ(translator.text(id, defaultText), expected) << "id " << id;
}

TEST_P(TranslatorFallback, SkipsALibraryThatIsNotOpen) {
    ASSERT_TRUE(registry.close(custom));  // seen at once: the translator keeps nothing but handles
    EXPECT_EQ(translator.text(3104), StandardText);
    EXPECT_EQ(translator.text(3106, "<Value>"), "<Value>");
    translator.setCustomLanguageDLL(openOrFail(registry, customFile()));
    EXPECT_EQ(translator.text(3106), "Only in the custom library");
    translator.setLanguageDLL(0);
    EXPECT_EQ(translator.text(3104), CustomText);
    EXPECT_EQ(translator.text(3105), NotFound);
}

INSTANTIATE_TEST_SUITE_P(Libraries, TranslatorFallback, ::testing::Bool(), [](const auto& p) { return std::string(p.param ? "Dlls" : "TextCatalogs"); });

TEST(UpperCase, CapitalisesTheLettersOfTheWesternCodePage) {
    // The last row has no single capital (ß) or is no letter of the code page.
    const std::pair<const char*, const char*> cases[] = {
        {"<Pages> 1-2", "<PAGES> 1-2"}, {"páginas çà", "PÁGINAS ÇÀ"}, {"ÿ š œ ž", "Ÿ Š Œ Ž"}, {"÷ ß µ € 日本", "÷ ß µ € 日本"}};
    for (auto [text, upper] : cases) EXPECT_EQ(upperCase(text), upper) << text;
}

}  // namespace
}  // namespace kestrin
