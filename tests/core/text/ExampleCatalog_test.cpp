#include <gtest/gtest.h>

#include <string>

#include "TextTestSupport.h"
#include "text/CatalogRegistry.h"
#include "text/TextCatalog.h"
#include "text/Translator.h"

namespace kestrin {
namespace {

// The bundled English catalog, found beside the test fixtures in the source tree.
std::filesystem::path englishCatalog()
{
    return std::filesystem::path(KESTRIN_FIXTURES).parent_path().parent_path() / "examples" / "lang" /
           "kestrin-en.txt";
}

TEST(ExampleCatalog, ReadsWithoutWarnings)
{
    std::string error;
    const auto catalog = TextCatalog::parse(test::readWholeFile(englishCatalog()), &error);
    ASSERT_NE(catalog, nullptr) << error;
    for (const auto& warning : catalog->warnings())
        ADD_FAILURE() << "line " << warning.line << ": " << warning.message;
}

TEST(ExampleCatalog, GivesAProperTextForEveryBundledId)
{
    CatalogRegistry registry;
    std::string error;
    Translator translator(&registry);
    translator.setLanguageDLL(registry.open(englishCatalog(), &error));
    ASSERT_NE(translator.LanguageDLL(), 0) << error;

    for (const int32_t id : {3104, 3105, 3106, 3107, 3108, 3109, 3112, 3113, 3115, 3116, 3117, 3118, 3119,
                             3120, 3146, 4606, 4607, 4642, 3250, 3264, 3265}) {
        const std::string text = translator.text(id, "<missing>");
        EXPECT_NE(text, "<missing>") << "id " << id;
        EXPECT_EQ(text.find_first_of("<>"), std::string::npos) << "id " << id << ": " << text;
    }
    EXPECT_EQ(translator.text(3105).back(), '?');
    const std::string readOnly = translator.text(3264) + " layout file " + translator.text(3265);
    EXPECT_EQ(readOnly.find("  "), std::string::npos) << readOnly;
    EXPECT_EQ(readOnly.back(), '.') << readOnly;
}

}  // namespace
}  // namespace kestrin
