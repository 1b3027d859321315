// What a save meets only on Windows: the read-only attribute, files another program holds
// open, and a saving process ended by TerminateProcess (Windows has no fork and no SIGKILL).
#ifdef _WIN32
#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <cstdlib>
#include <random>
#include <thread>

#include "support/SavedFiles.h"

using namespace kestrin;
using namespace kestrin::test;
namespace fs = std::filesystem;

namespace {

// Started with KESTRIN_SAVER_FOLDER set, this program saves the two layouts in turn until it
// is ended, after telling through a "ready" file that it begins.
const bool kSaver = [] {
    const char* folder = std::getenv("KESTRIN_SAVER_FOLDER");
    if (folder == nullptr) return false;
    const TwoLayouts layouts(900, 800);
    writeBytes(fs::path(folder) / "ready", "");
    for (int i = 0;; ++i)
        if (!layouts.save(folder, i % 2).saved) std::_Exit(3);
}();

HANDLE startSaver(const fs::path& folder) {
    wchar_t program[MAX_PATH];
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    SetEnvironmentVariableW(L"KESTRIN_SAVER_FOLDER", folder.c_str());
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process{};
    const BOOL started = CreateProcessW(program, nullptr, nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process);
    SetEnvironmentVariableW(L"KESTRIN_SAVER_FOLDER", nullptr);
    if (!started) return nullptr;
    CloseHandle(process.hThread);
    return process.hProcess;
}

TEST(SaveTerminate, AnEndedSaveLeavesEveryFileComplete) {
    const unsigned seed = std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 rng(seed);
    const TwoLayouts layouts(900, 800);
    TempDir work;
    ASSERT_TRUE(layouts.save(work.path(), 0).saved);
    const auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE(layouts.save(work.path(), 1).saved);
    const auto oneSave = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
    std::uniform_int_distribution<int64_t> delay(0, oneSave.count() * 3);
    for (int n = 0; n < 40; ++n) {
        const HANDLE saver = startSaver(work.path());
        ASSERT_NE(saver, nullptr);
        while (!fs::exists(work / "ready") && WaitForSingleObject(saver, 1) == WAIT_TIMEOUT) continue;
        std::this_thread::sleep_for(std::chrono::microseconds(delay(rng)));
        DWORD exitCode = 0;
        GetExitCodeProcess(saver, &exitCode);
        EXPECT_EQ(exitCode, STILL_ACTIVE) << "the saver ended by itself with " << exitCode;
        TerminateProcess(saver, 9);
        WaitForSingleObject(saver, INFINITE);
        CloseHandle(saver);
        fs::remove(work / "ready");
        ASSERT_EQ(layouts.incomplete(work.path()), "") << n;
    }
    ASSERT_TRUE(layouts.save(work.path(), 0).saved);
    EXPECT_EQ(hiddenTempFiles(work.path()), std::vector<std::string>{});
}

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
