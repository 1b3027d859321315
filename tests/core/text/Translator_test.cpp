#include <gtest/gtest.h>

#include <string>

#include "text/CatalogRegistry.h"
#include "text/Translator.h"

namespace kestrin {
namespace {

const std::string NotFound(Translator::NotFoundText);
const std::string StandardText = "Standard: select an item first.";
const std::string CustomText = "Custom: W\xC3\xA4hlen Sie zuerst ein Element.";

int32_t openOrFail(CatalogRegistry& registry, const char* name)
{
    std::string error;
    const int32_t handle = registry.open(std::filesystem::path(KESTRIN_FIXTURES) / "lang" / name, &error);
    EXPECT_NE(handle, 0) << error;
    return handle;
}

TEST(Translator, WithoutLibrariesGivesTheDefaultOrTheMarker)
{
    CatalogRegistry registry;
    Translator noRegistry;
    Translator unknownHandles(&registry);
    EXPECT_EQ(noRegistry.LanguageDLL(), 0);
    EXPECT_EQ(noRegistry.CustomLanguageDLL(), 0);
    unknownHandles.setLanguageDLL(7);
    unknownHandles.setCustomLanguageDLL(-9);
    EXPECT_EQ(unknownHandles.LanguageDLL(), 7);
    EXPECT_EQ(unknownHandles.CustomLanguageDLL(), -9);
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
    void SetUp() override
    {
        standard = openOrFail(registry, GetParam() ? "standard.dll" : "standard.txt");
        custom = openOrFail(registry, customFile());
        ASSERT_TRUE(standard && custom);
        translator.setLanguageDLL(standard);
        translator.setCustomLanguageDLL(custom);
    }
    CatalogRegistry registry;
    Translator translator{&registry};
    int32_t standard = 0;
    int32_t custom = 0;
};

TEST_P(TranslatorFallback, TriesCustomThenStandardThenDefault)
{
    std::string digits;
    for (int i = 0; i < 30; ++i)
        digits += "0123456789";
    const struct {
        int32_t id;
        const char* defaultText;
        std::string expected;
    } cases[] = {
        {3104, "<Remove>", CustomText},  // in both: custom wins
        {3105, "<Remove?>", "Only in the standard library"},
        {3106, "<Value>", "Only in the custom library"},
        {3107, "<Step>", "<Step>"},  // in neither
        {3107, "", NotFound},
        {3108, "", "Standard text behind an empty custom one"},  // empty counts as none
        {3109, "", digits.substr(0, 255)},                       // 300 characters, cut
        {3110, "", "Standard: two lines\nGr\xC3\xB6\xC3\x9F" "e"},
        {3104 + 65536, "", CustomText},
    };
    for (const auto& c : cases)
        EXPECT_EQ(translator.text(c.id, c.defaultText), c.expected) << "id " << c.id;
}

TEST_P(TranslatorFallback, SkipsALibraryThatIsNotOpen)
{
    ASSERT_TRUE(registry.close(custom));  // seen at once: the translator keeps nothing but handles
    EXPECT_EQ(translator.text(3104), StandardText);
    EXPECT_EQ(translator.text(3106, "<Value>"), "<Value>");
    translator.setCustomLanguageDLL(openOrFail(registry, customFile()));
    EXPECT_EQ(translator.text(3106), "Only in the custom library");
    translator.setLanguageDLL(0);
    EXPECT_EQ(translator.text(3104), CustomText);
    EXPECT_EQ(translator.text(3105), NotFound);
}

INSTANTIATE_TEST_SUITE_P(Libraries, TranslatorFallback, ::testing::Bool(),
                         [](const auto& p) { return std::string(p.param ? "Dlls" : "TextCatalogs"); });

}  // namespace
}  // namespace kestrin
