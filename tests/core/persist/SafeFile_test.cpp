#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "persist/SafeFile.h"
#include "support/TestSupport.h"

using namespace kestrin;
using namespace kestrin::test;
namespace fs = std::filesystem;

namespace {

std::vector<std::string> namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

struct LeftoverCase {
    const char* name;
    bool removed;
};

TEST(SafeFile, OnlyTheTemporaryNamesOfTheTargetsCountAsLeftovers) {
    TempDir dir;
    fs::create_directories(dir / "encode");
    const fs::path layout = dir / "Card.IIF";
    const fs::path encode = dir / "encode" / "Card.CHP";
    const LeftoverCase cases[] = {
        {".Card.IIF.123456.tmp", true},      {".Card.IIF.0.tmp", true},
        {".Card.IIF.BAK.42.tmp", true},      {".Card.IIF.BAK.link.tmp", true},
        {".Card.IIF.tmp", false},            {".Card.IIF..tmp", false},
        {".Card.IIF.12a.tmp", false},        {".Card.IIF.BAK.notes.tmp", false},
        {"Card.IIF.123.tmp", false},         {".card.IIF.123.tmp", false},
        {".Other.IIF.123.tmp", false},       {".Card.CHP.77.tmp", false},  // the chip encode file is elsewhere
        {"Card.IIF", false},                 {".Card.IIF.123.tmp.keep", false},
    };
    for (const auto& c : cases) writeBytes(dir / c.name, "x");
    writeBytes(dir / "encode" / ".Card.CHP.77.tmp", "x");
    writeBytes(dir / "encode" / ".Card.IIF.88.tmp", "x");

    removeLeftoverStagedFiles(systemFileSystem(), {layout, dir / "Card.IIF.BAK", encode});

    std::vector<std::string> kept{"encode"};
    for (const auto& c : cases)
        if (!c.removed) kept.push_back(c.name);
    std::sort(kept.begin(), kept.end());
    EXPECT_EQ(namesIn(dir.path()), kept);
    EXPECT_EQ(namesIn(dir / "encode"), std::vector<std::string>{".Card.IIF.88.tmp"});
}

TEST(SafeFile, AStagedFileIsRemovedUnlessCommitted) {
    TempDir dir;
    std::string error;
    fs::path temp;
    {
        auto staged = StagedFile::write(systemFileSystem(), dir / "Card.IIF", "new", &error);
        ASSERT_TRUE(staged) << error;
        temp = staged->tempPath();
        EXPECT_TRUE(isStagedNameOf(temp.filename().string(), dir / "Card.IIF")) << temp;
        EXPECT_EQ(readBytes(temp), "new");
        EXPECT_FALSE(fs::exists(dir / "Card.IIF"));
    }
    EXPECT_FALSE(fs::exists(temp));

    auto staged = StagedFile::write(systemFileSystem(), dir / "Card.IIF", "new", &error);
    ASSERT_TRUE(staged && staged->commit(&error)) << error;
    EXPECT_EQ(namesIn(dir.path()), std::vector<std::string>{"Card.IIF"});
    EXPECT_EQ(readBytes(dir / "Card.IIF"), "new");
}

TEST(SafeFile, KeepingAFileUnderANameItAlreadyHasLeavesNoTemporaryName) {
    TempDir dir;
    writeBytes(dir / "Card.IIF", "layout");
    std::string error;
    ASSERT_TRUE(keepAs(systemFileSystem(), dir / "Card.IIF", dir / "Card.IIF.BAK", &error)) << error;
    // The backup now is a second name of the layout's file; keeping it again must not leave
    // the temporary link behind.
    ASSERT_TRUE(keepAs(systemFileSystem(), dir / "Card.IIF", dir / "Card.IIF.BAK", &error)) << error;
    EXPECT_EQ(namesIn(dir.path()), (std::vector<std::string>{"Card.IIF", "Card.IIF.BAK"}));
    EXPECT_EQ(readBytes(dir / "Card.IIF.BAK"), "layout");
}

}  // namespace
