#include <gtest/gtest.h>

#include <climits>
#include <set>
#include <string>
#include <utility>

#include "support/TestSupport.h"
#include "text/CatalogRegistry.h"
#include "text/PeStringTable.h"
#include "text/TextCatalog.h"

namespace kestrin {
namespace {

using test::readBytes;
using test::TempDir;
using test::writeBytes;

const std::filesystem::path Lang = std::filesystem::path(KESTRIN_FIXTURES) / "lang";

int32_t openOrFail(CatalogRegistry& registry, const std::filesystem::path& path)
{
    std::string error;
    const int32_t handle = registry.open(path, &error);
    EXPECT_NE(handle, 0) << error;
    return handle;
}

TEST(CatalogRegistry, TellsTheKindByContentNotByName)
{
    TempDir dir;
    writeBytes(dir / "strings.txt", readBytes(Lang / "strings64.dll"));
    writeBytes(dir / "texts.dll", "0=From a text catalog\nbroken\n");
    CatalogRegistry registry;
    const auto* dll = dynamic_cast<const PeStringTable*>(registry.find(openOrFail(registry, dir / "strings.txt")));
    const auto* text = dynamic_cast<const TextCatalog*>(registry.find(openOrFail(registry, dir / "texts.dll")));
    ASSERT_TRUE(dll && text);
    EXPECT_EQ(registry.size(), 2u);
    EXPECT_EQ(dll->lookup(32), "English");
    EXPECT_EQ(text->lookup(0), "From a text catalog");
    ASSERT_EQ(text->warnings().size(), 1u);  // a host can show what was skipped
    EXPECT_EQ(text->warnings()[0].line, 2u);
}

TEST(CatalogRegistry, GivesEachLibraryAHandleNeverGivenBefore)
{
    CatalogRegistry registry;
    CatalogRegistry other;
    EXPECT_EQ(registry.find(0), nullptr);
    EXPECT_EQ(registry.find(1), nullptr);
    const int32_t first = openOrFail(registry, Lang / "standard.txt");
    ASSERT_NE(registry.find(first), nullptr);
    EXPECT_EQ(registry.find(first)->lookup(3105), "Only in the standard library");
    for (const int32_t unknown : {0, -1, first + 1, first - 1, -first, INT32_MAX, INT32_MIN})
        EXPECT_EQ(registry.find(unknown), nullptr) << unknown;
    EXPECT_EQ(other.find(first), nullptr);  // registries share nothing
    EXPECT_FALSE(other.close(first));

    EXPECT_FALSE(registry.close(0));
    EXPECT_TRUE(registry.close(first));
    EXPECT_FALSE(registry.close(first));
    EXPECT_EQ(registry.find(first), nullptr);
    EXPECT_EQ(registry.size(), 0u);
    std::set<int32_t> seen{first};
    for (const char* name : {"custom.dll", "standard.txt", "custom.dll"}) {
        const int32_t handle = openOrFail(registry, Lang / name);
        EXPECT_TRUE(seen.insert(handle).second) << "handle " << handle << " given twice";
        EXPECT_TRUE(registry.close(handle));
    }
}

TEST(CatalogRegistry, RefusesWithAMessageNamingTheFile)
{
    TempDir dir;
    writeBytes(dir / "cut.dll", readBytes(Lang / "strings64.dll").substr(0, 700));
    writeBytes(dir / "x.png", std::string("\x89PNG\r\n\x1A\n\0\0", 10));
    writeBytes(dir / "huge.txt", "1=one\n");
    std::filesystem::resize_file(dir / "huge.txt", CatalogRegistry::MaxFileSize + 1);  // sparse, quick to make
    const std::pair<std::filesystem::path, const char*> cases[] = {
        {dir / "absent.dll", "no such file"}, {dir.path(), "a folder"}, {dir / "huge.txt", "larger than 64 MiB"},
        {dir / "cut.dll", "truncated"},       {dir / "x.png", "NUL"},
    };
    CatalogRegistry registry;
    for (const auto& [path, reason] : cases) {
        std::string error;
        EXPECT_EQ(registry.open(path, &error), 0) << path;
        EXPECT_NE(error.find(path.string()), std::string::npos) << error;
        EXPECT_NE(error.find(reason), std::string::npos) << error;
        EXPECT_EQ(registry.open(path), 0);  // the error text is optional
    }
    EXPECT_EQ(registry.size(), 0u);
}

TEST(CatalogRegistry, OpensAFileOfExactlyTheSizeLimit)
{
    TempDir dir;
    writeBytes(dir / "big.dll", readBytes(Lang / "strings32.dll"));
    std::filesystem::resize_file(dir / "big.dll", CatalogRegistry::MaxFileSize);  // zeros after the image
    CatalogRegistry registry;
    const Catalog* catalog = registry.find(openOrFail(registry, dir / "big.dll"));
    ASSERT_NE(catalog, nullptr);
    EXPECT_EQ(catalog->lookup(0), "Zero");
}

}  // namespace
}  // namespace kestrin
