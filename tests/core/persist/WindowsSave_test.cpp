// What a save meets only on Windows: the read-only attribute and files another program holds
// open.
#ifdef _WIN32
#include <gtest/gtest.h>
#include <windows.h>

#include "support/SavedFiles.h"

using namespace kestrin;
using namespace kestrin::test;
namespace fs = std::filesystem;

namespace {

// Only the read-only attribute refuses a file; hidden, system and archived files are saved.
TEST(WindowsSave, TheReadOnlyAttributeAloneRefusesAFile) {
    TempDir dir;
    const TwoLayouts layouts(900, 800);
    ASSERT_TRUE(layouts.save(dir.path(), 0).saved);
    for (const DWORD attributes : {FILE_ATTRIBUTE_NORMAL, FILE_ATTRIBUTE_ARCHIVE, FILE_ATTRIBUTE_HIDDEN,
                                   FILE_ATTRIBUTE_READONLY, FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN})
        for (const char* name : {"Card.IIF", "Card.CHP"}) {
            ASSERT_TRUE(SetFileAttributesW((dir / name).c_str(), attributes));
            EXPECT_EQ(layouts.save(dir.path(), 1).saved, !(attributes & FILE_ATTRIBUTE_READONLY))
                << name << " " << attributes;
            SetFileAttributesW((dir / name).c_str(), FILE_ATTRIBUTE_NORMAL);
        }
}

// A layout open in another program that does not share it for deleting cannot be replaced:
// the save is refused with a message and leaves every file as it was and no temporary file.
TEST(WindowsSave, ALayoutHeldOpenElsewhereIsRefusedAndKeptWhole) {
    TempDir dir;
    const TwoLayouts layouts(900, 800);
    ASSERT_TRUE(layouts.save(dir.path(), 0).saved);
    ASSERT_TRUE(layouts.save(dir.path(), 0).saved);
    const SavedFiles saved = SavedFiles::read(dir.path(), "Card");
    const HANDLE held =
        CreateFileW((dir / "Card.IIF").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    const SaveOutcome refused = layouts.save(dir.path(), 1);
    CloseHandle(held);
    EXPECT_FALSE(refused.saved);
    EXPECT_NE(refused.message.find("could not be saved"), std::string::npos) << refused.message;
    const SavedFiles after = SavedFiles::read(dir.path(), "Card");
    EXPECT_TRUE(after.layout == saved.layout && after.encode == saved.encode && after.backup == saved.layout);
    EXPECT_EQ(hiddenTempFiles(dir.path()), std::vector<std::string>{});
    ASSERT_TRUE(layouts.save(dir.path(), 1).saved);
}

}  // namespace
#endif  // _WIN32
