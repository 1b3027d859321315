#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "persist/FileSystem.h"
#include "support/TestSupport.h"

using namespace kestrin;
using namespace kestrin::test;
namespace fs = std::filesystem;

namespace {

struct StatusCase {
    const char* what;
    std::string path;  // below the test folder, which holds "file" and "readonly"
    bool error;
    bool exists;
    bool readOnly;
};

TEST(SystemFileSystem, StatusTellsMissingFilesFromFilesThatCannotBeLookedAt) {
    TempDir dir;
    writeBytes(dir / "file", "x");
    writeBytes(dir / "readonly", "x");
    fs::permissions(dir / "readonly", fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    const StatusCase cases[] = {
        {"a writable file", "file", false, true, false},
        {"a read-only file", "readonly", false, true, true},
        {"a missing file", "missing", false, false, false},
        {"a file below a missing folder", "missing/file", false, false, false},
        {"a file below a file", "file/inner", false, false, false},
#ifdef _WIN32
        // Wine reports an overlong name as missing; a name with "<" Windows refuses to look up.
        {"a name Windows cannot hold", "bad<name", true, false, false},
#else
        {"a name too long to look up", std::string(300, 'n'), true, false, false},
#endif
    };
    for (const auto& c : cases) {
        FileStatus status{true, true};
        const std::error_code ec = systemFileSystem().status(dir / c.path, status);
        EXPECT_EQ(static_cast<bool>(ec), c.error) << c.what << ": " << ec.message();
        EXPECT_EQ(status.exists, c.exists) << c.what;
        EXPECT_EQ(status.readOnly, c.readOnly) << c.what;
    }
}

TEST(SystemFileSystem, CopyMakesANewFileAndNeverOverwrites) {
    TempDir dir;
    const std::string content(200000, 'c');
    writeBytes(dir / "source", content);
    writeBytes(dir / "taken", "mine");
    FileSystem& files = systemFileSystem();
    EXPECT_FALSE(files.copy(dir / "source", dir / "copy"));
    EXPECT_EQ(readBytes(dir / "copy"), content);
    EXPECT_EQ(files.copy(dir / "source", dir / "taken"), std::errc::file_exists);
    EXPECT_EQ(readBytes(dir / "taken"), "mine");
    EXPECT_EQ(files.copy(dir / "missing", dir / "other"), std::errc::no_such_file_or_directory);
    EXPECT_FALSE(fs::exists(dir / "other"));
}

}  // namespace
