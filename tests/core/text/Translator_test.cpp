#include <gtest/gtest.h>

#include <string>

#include "TextTestSupport.h"
#include "text/CatalogRegistry.h"
#include "text/Translator.h"

namespace kestrin {
namespace {

using test::langFixture;

int32_t openOrFail(CatalogRegistry& registry, const char* name)
{
    std::string error;
    const int32_t handle = registry.open(langFixture(name), &error);
    EXPECT_NE(handle, 0) << error;
    return handle;
}

const std::string NotFound(Translator::NotFoundText);

TEST(Translator, WithoutLibrariesGivesTheDefaultOrTheMarker)
{
    CatalogRegistry registry;
    const Translator noRegistry;
    const Translator noHandles(&registry);
    for (const Translator* translator : {&noRegistry, &noHandles}) {
        EXPECT_EQ(translator->text(3106), "*=*+*");
        EXPECT_EQ(translator->text(3106, ""), "*=*+*");
        EXPECT_EQ(translator->text(3106, "<Value>"), "<Value>");
        EXPECT_EQ(translator->text(0, " "), " ");
    }
}

TEST(Translator, HandlesAreKeptAsSet)
{
    Translator translator;
    EXPECT_EQ(translator.LanguageDLL(), 0);
    EXPECT_EQ(translator.CustomLanguageDLL(), 0);
    translator.setLanguageDLL(7);
    translator.setCustomLanguageDLL(-9);
    EXPECT_EQ(translator.LanguageDLL(), 7);
    EXPECT_EQ(translator.CustomLanguageDLL(), -9);
    EXPECT_EQ(translator.text(3104, "<Default>"), "<Default>");  // no registry to look them up in
}

struct LibraryPair {
    const char* name;
    const char* standard;
    const char* custom;
};

void PrintTo(const LibraryPair& p, std::ostream* out) { *out << p.name; }

class TranslatorFallback : public ::testing::TestWithParam<LibraryPair> {
protected:
    void SetUp() override
    {
        standard = openOrFail(registry, GetParam().standard);
        custom = openOrFail(registry, GetParam().custom);
        ASSERT_NE(standard, 0);
        ASSERT_NE(custom, 0);
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
    struct Case {
        int32_t id;
        const char* defaultText;
        std::string expected;
    };
    std::string digits;
    for (int i = 0; i < 30; ++i)
        digits += "0123456789";
    const Case cases[] = {
        {3104, "<Remove>", "Custom: W\xC3\xA4hlen Sie zuerst ein Element."},  // in both: custom wins
        {3105, "<Remove?>", "Only in the standard library"},
        {3106, "<Value>", "Only in the custom library"},
        {3107, "<Step>", "<Step>"},                                           // in neither
        {3107, "", NotFound},
        {3108, "", "Standard text behind an empty custom one"},                // empty counts as none
        {3109, "", digits.substr(0, 255)},                                   // 300 characters, cut
        {3110, "", "Standard: two lines\nGr\xC3\xB6\xC3\x9F" "e"},
        {3104 + 65536, "", "Custom: W\xC3\xA4hlen Sie zuerst ein Element."},
    };
    for (const Case& c : cases)
        EXPECT_EQ(translator.text(c.id, c.defaultText), c.expected) << "id " << c.id;
}

TEST_P(TranslatorFallback, OnlyTheStandardLibrary)
{
    translator.setCustomLanguageDLL(0);
    EXPECT_EQ(translator.text(3104), "Standard: select an item first.");
    EXPECT_EQ(translator.text(3106, "<Value>"), "<Value>");
}

TEST_P(TranslatorFallback, OnlyTheCustomLibrary)
{
    translator.setLanguageDLL(0);
    EXPECT_EQ(translator.text(3104), "Custom: W\xC3\xA4hlen Sie zuerst ein Element.");
    EXPECT_EQ(translator.text(3105), NotFound);
}

TEST_P(TranslatorFallback, AnUnknownHandleFallsThrough)
{
    translator.setCustomLanguageDLL(custom + standard + 1000);
    EXPECT_EQ(translator.text(3104), "Standard: select an item first.");
    translator.setLanguageDLL(-5);
    EXPECT_EQ(translator.text(3104, "<Default>"), "<Default>");
}

TEST_P(TranslatorFallback, SeesALibraryClosedOrOpenedLater)
{
    EXPECT_EQ(translator.text(3106), "Only in the custom library");
    ASSERT_TRUE(registry.close(custom));
    EXPECT_EQ(translator.text(3106), NotFound);
    EXPECT_EQ(translator.text(3104), "Standard: select an item first.");

    const int32_t reopened = openOrFail(registry, GetParam().custom);
    translator.setCustomLanguageDLL(reopened);
    EXPECT_EQ(translator.text(3106), "Only in the custom library");
}

INSTANTIATE_TEST_SUITE_P(Pairs, TranslatorFallback,
                         ::testing::Values(LibraryPair{"Dlls", "standard.dll", "custom.dll"},
                                           LibraryPair{"TextCatalogs", "standard.txt", "custom.txt"},
                                           LibraryPair{"DllAndText", "standard.dll", "custom.txt"},
                                           LibraryPair{"TextAndDll", "standard.txt", "custom.dll"}),
                         [](const auto& p) { return std::string(p.param.name); });

}  // namespace
}  // namespace kestrin
