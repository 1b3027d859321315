#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <set>
#include <string>

#include "TextTestSupport.h"
#include "text/CatalogRegistry.h"
#include "text/PeStringTable.h"
#include "text/TextCatalog.h"

namespace kestrin {
namespace {

using test::langFixture;
using test::readWholeFile;
using test::ScratchDir;

int32_t openOrFail(CatalogRegistry& registry, const std::filesystem::path& path)
{
    std::string error;
    const int32_t handle = registry.open(path, &error);
    EXPECT_NE(handle, 0) << error;
    EXPECT_TRUE(error.empty()) << error;
    return handle;
}

std::optional<std::string> lookupIn(const CatalogRegistry& registry, int32_t handle, int32_t id)
{
    const Catalog* catalog = registry.find(handle);
    if (!catalog)
        return "(no catalog)";
    return catalog->lookup(id);
}

TEST(CatalogRegistry, OpensBothKindsUnderTheirOwnHandles)
{
    CatalogRegistry registry;
    const int32_t dll32 = openOrFail(registry, langFixture("strings32.dll"));
    const int32_t dll64 = openOrFail(registry, langFixture("strings64.dll"));
    const int32_t text = openOrFail(registry, langFixture("standard.txt"));
    EXPECT_EQ(std::set<int32_t>({dll32, dll64, text, 0}).size(), 4u);
    EXPECT_EQ(registry.size(), 3u);
    EXPECT_EQ(lookupIn(registry, dll32, 0), "Zero");
    EXPECT_EQ(lookupIn(registry, dll64, 32), "English");
    EXPECT_EQ(lookupIn(registry, text, 3105), "Only in the standard library");
}

TEST(CatalogRegistry, TellsTheKindByContentNotByName)
{
    ScratchDir dir;
    CatalogRegistry registry;
    const int32_t dllNamedTxt =
        openOrFail(registry, dir.file("strings.txt", readWholeFile(langFixture("strings32.dll"))));
    const int32_t textNamedDll = openOrFail(registry, dir.file("texts.dll", "0=From a text catalog\n"));
    const int32_t noExtension = openOrFail(registry, dir.file("LANGUAGE", "0=No extension\n"));
    EXPECT_EQ(lookupIn(registry, dllNamedTxt, 0), "Zero");
    EXPECT_EQ(lookupIn(registry, textNamedDll, 0), "From a text catalog");
    EXPECT_EQ(lookupIn(registry, noExtension, 0), "No extension");
}

TEST(CatalogRegistry, FindsNothingForZeroOrUnknownHandles)
{
    CatalogRegistry registry;
    EXPECT_EQ(registry.find(0), nullptr);
    EXPECT_EQ(registry.find(1), nullptr);
    const int32_t handle = openOrFail(registry, langFixture("standard.txt"));
    EXPECT_NE(registry.find(handle), nullptr);
    for (const int32_t other : {0, -1, handle + 1, handle - 1, -handle, INT32_MAX, INT32_MIN})
        EXPECT_EQ(registry.find(other), nullptr) << other;
}

TEST(CatalogRegistry, CloseForgetsAHandleForGood)
{
    CatalogRegistry registry;
    const int32_t first = openOrFail(registry, langFixture("standard.txt"));
    EXPECT_FALSE(registry.close(0));
    EXPECT_FALSE(registry.close(first + 100));
    EXPECT_TRUE(registry.close(first));
    EXPECT_EQ(registry.find(first), nullptr);
    EXPECT_FALSE(registry.close(first));
    EXPECT_EQ(registry.size(), 0u);

    std::set<int32_t> seen{first};
    for (int i = 0; i < 20; ++i) {
        const int32_t handle = openOrFail(registry, langFixture(i % 2 ? "custom.dll" : "standard.txt"));
        EXPECT_TRUE(seen.insert(handle).second) << "handle " << handle << " given twice";
        if (i % 3 == 0) {
            EXPECT_TRUE(registry.close(handle));
        }
    }
}

TEST(CatalogRegistry, RegistriesDoNotShareLibraries)
{
    CatalogRegistry one;
    CatalogRegistry two;
    const int32_t handle = openOrFail(one, langFixture("standard.txt"));
    EXPECT_EQ(two.find(handle), nullptr);
    EXPECT_FALSE(two.close(handle));
    EXPECT_NE(one.find(handle), nullptr);
}

struct RefusedFile {
    const char* name;
    std::function<std::filesystem::path(const ScratchDir&)> make;
    const char* reason;
};

void PrintTo(const RefusedFile& c, std::ostream* out) { *out << c.name; }

class CatalogRegistryRefuses : public ::testing::TestWithParam<RefusedFile> {};

TEST_P(CatalogRegistryRefuses, WithAMessageNamingTheFile)
{
    ScratchDir dir;
    const auto path = GetParam().make(dir);
    CatalogRegistry registry;
    std::string error;
    EXPECT_EQ(registry.open(path, &error), 0);
    EXPECT_NE(error.find(path.string()), std::string::npos) << error;
    EXPECT_NE(error.find(GetParam().reason), std::string::npos) << error;
    EXPECT_EQ(registry.size(), 0u);
    EXPECT_EQ(registry.open(path), 0);  // the error text is optional
}

INSTANTIATE_TEST_SUITE_P(
    Cases, CatalogRegistryRefuses,
    ::testing::Values(
        RefusedFile{"Missing", [](const ScratchDir& d) { return d.path() / "absent.dll"; }, "no such file"},
        RefusedFile{"Folder", [](const ScratchDir& d) { return d.path(); }, "a folder"},
        RefusedFile{"TooLarge",
                    [](const ScratchDir& d) {
                        const auto path = d.file("huge.txt", "1=one\n");
                        std::filesystem::resize_file(path, CatalogRegistry::MaxFileSize + 1);
                        return path;
                    },
                    "larger than 64 MiB"},
        RefusedFile{"DosProgram", [](const ScratchDir& d) { return d.file("x.exe", "MZ" + std::string(200, '\0')); },
                    "no PE signature"},
        RefusedFile{"TruncatedDll",
                    [](const ScratchDir& d) {
                        return d.file("cut.dll", readWholeFile(langFixture("strings64.dll")).substr(0, 700));
                    },
                    "truncated"},
        RefusedFile{"Binary", [](const ScratchDir& d) { return d.file("x.png", std::string("\x89PNG\r\n\x1A\n\0\0", 10)); },
                    "NUL"},
        RefusedFile{"Utf16", [](const ScratchDir& d) { return d.file("x.txt", std::string("\xFF\xFE" "1\0=\0a\0", 8)); },
                    "UTF-16"}),
    [](const auto& p) { return std::string(p.param.name); });

TEST(CatalogRegistry, OpensAFileOfExactly64MiB)
{
    ScratchDir dir;
    std::string content = "1=one\n#";
    content.resize(CatalogRegistry::MaxFileSize, 'x');
    CatalogRegistry registry;
    const int32_t handle = openOrFail(registry, dir.file("big.txt", content));
    EXPECT_EQ(lookupIn(registry, handle, 1), "one");
}

TEST(CatalogRegistry, HandsOutTheReaderOfEachKind)
{
    ScratchDir dir;
    CatalogRegistry registry;
    const int32_t text = openOrFail(registry, dir.file("w.txt", "1=one\nbroken\n"));
    const int32_t dll = openOrFail(registry, langFixture("strings32.dll"));

    const auto* catalog = dynamic_cast<const TextCatalog*>(registry.find(text));
    ASSERT_NE(catalog, nullptr);
    ASSERT_EQ(catalog->warnings().size(), 1u);  // a host can show what was skipped
    EXPECT_EQ(catalog->warnings()[0].line, 2u);
    EXPECT_NE(dynamic_cast<const PeStringTable*>(registry.find(dll)), nullptr);
}

}  // namespace
}  // namespace kestrin
