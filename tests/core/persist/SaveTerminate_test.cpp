// Windows has no fork and no SIGKILL: a saving process started from this test program is
// ended with TerminateProcess at random moments instead, and every file must stay complete.
#ifdef _WIN32
#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>

#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "persist/LayoutSaver.h"
#include "support/Records.h"
#include "support/SavedFiles.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

using namespace kestrin;
using namespace kestrin::test;
namespace fs = std::filesystem;

namespace {

constexpr int kTerminations = 40;
constexpr const char* kSaverVariable = "KESTRIN_SAVER_FOLDER";

// Two large layouts of one-byte fields with different names and counts.
struct Layouts {
    CIClass card;
    RecordArray records[2];
    HostFieldList fields;
    Translator translator;

    Layouts() {
        card.setChipSize(iBigOnePage);
        const int counts[2] = {900, 800};
        for (int which = 0; which < 2; ++which)
            for (int i = 0; i < counts[which]; ++i) {
                char name[16];
                std::snprintf(name, sizeof name, "%c%04d", which == 0 ? 'A' : 'B', i);
                records[which].add(field(name, 0, 19 + i / 8, i % 8, 1, 0, 0x10000 + i));
            }
    }
    bool save(const fs::path& folder, int which) const {
        RecordingPrompter prompter;
        return saveLayout(folder / "Card.IIF", &card, records[which], fields, prompter, translator).saved;
    }
};

// Started with the saver variable set, this program saves the two layouts in turn until it is
// ended, after telling through a "ready" file that it begins.
const bool kSaver = [] {
    const char* folder = std::getenv(kSaverVariable);
    if (folder == nullptr) return false;
    const Layouts layouts;
    writeBytes(fs::path(folder) / "ready", "");
    for (int i = 0;; ++i)
        if (!layouts.save(folder, i % 2)) std::_Exit(3);
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
    const Layouts layouts;
    KnownContents contents;
    for (int which = 0; which < 2; ++which) {
        TempDir one;
        ASSERT_TRUE(layouts.save(one.path(), which));
        const SavedFiles files = SavedFiles::read(one.path(), "Card");
        contents.add(which == 0 ? "layout A" : "layout B", files.layout);
        contents.add(which == 0 ? "encode A" : "encode B", files.encode);
    }
    TempDir work;
    ASSERT_TRUE(layouts.save(work.path(), 0));
    const auto start = std::chrono::steady_clock::now();
    ASSERT_TRUE(layouts.save(work.path(), 1));
    const auto oneSave = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - start);
    std::uniform_int_distribution<int64_t> delay(0, oneSave.count() * 3);

    int leftovers = 0;
    for (int n = 0; n < kTerminations; ++n) {
        const HANDLE saver = startSaver(work.path());
        ASSERT_NE(saver, nullptr);
        while (!fs::exists(work / "ready") && WaitForSingleObject(saver, 1) == WAIT_TIMEOUT) {
        }
        std::this_thread::sleep_for(std::chrono::microseconds(delay(rng)));
        DWORD exitCode = 0;
        GetExitCodeProcess(saver, &exitCode);
        EXPECT_EQ(exitCode, STILL_ACTIVE) << "the saver ended by itself with " << exitCode;
        TerminateProcess(saver, 9);
        WaitForSingleObject(saver, INFINITE);
        CloseHandle(saver);
        fs::remove(work / "ready");

        const SavedFiles now = SavedFiles::read(work.path(), "Card");
        const std::string layout = contents.nameOf(now.layout), encode = contents.nameOf(now.encode),
                          backup = contents.nameOf(now.backup);
        ASSERT_TRUE(layout == "layout A" || layout == "layout B") << n << ": the layout is " << layout;
        ASSERT_TRUE(encode == "encode A" || encode == "encode B") << n << ": the chip encode file is " << encode;
        ASSERT_TRUE(backup == "layout A" || backup == "layout B") << n << ": the backup is " << backup;
        leftovers += hiddenTempFiles(work.path()).empty() ? 0 : 1;
    }
    RecordProperty("terminationsLeavingTemporaryFiles", leftovers);
    // The next save removes whatever the ended saves left behind.
    ASSERT_TRUE(layouts.save(work.path(), 0));
    EXPECT_EQ(hiddenTempFiles(work.path()), std::vector<std::string>{});
}

}  // namespace
#endif  // _WIN32
