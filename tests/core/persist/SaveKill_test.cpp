#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <signal.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "persist/FileSystem.h"
#include "persist/HostFields.h"
#include "persist/LayoutSaver.h"
#include "support/Records.h"
#include "support/SavedFiles.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

using namespace kestrin;
using namespace kestrin::test;
namespace fs = std::filesystem;

// Present only in sanitizer builds.
extern "C" __attribute__((weak)) void __sanitizer_purge_allocator();

namespace {

constexpr int kKills = 200;
constexpr const char* kStem = "Card";

// Two large layouts of one-byte fields on a one-page 16 kbit card (blocks 19 on), with
// different names and counts so that every file of one differs from the other's.
struct KillLayouts {
    CIClass card;
    RecordArray records[2];
    HostFieldList fields;
    Translator translator;

    KillLayouts() {
        card.setChipSize(iBigOnePage);
        card.setUseHIDSection(true);
        std::vector<HostField> hostFields;
        const int counts[2] = {1800, 1600};
        for (int which = 0; which < 2; ++which) {
            for (int i = 0; i < counts[which]; ++i) {
                char name[16];
                std::snprintf(name, sizeof name, "%c%04d", which == 0 ? 'A' : 'B', i);
                const int byte = i + which * 200;
                EXPECT_TRUE(records[which].add(field(name, 0, 19 + byte / 8, byte % 8, 1, 0, 0x10000 + i)));
                hostFields.push_back({name, name, "Character", 1, static_cast<int16_t>(hostFields.size()), true});
            }
        }
        fields.setFields(std::move(hostFields));
    }

    SaveOutcome save(const fs::path& folder, int which, FileSystem& files = systemFileSystem()) const {
        RecordingPrompter prompter;
        return saveLayout(folder / (std::string(kStem) + ".IIF"), &card, records[which], fields, prompter, translator,
                          {}, files);
    }
};

// The operating system's file system, running hook once at the first call after the save's
// status checks: the layout is rendered then, and the disk is about to change.
class AfterChecks : public FileSystem {
public:
    explicit AfterChecks(std::function<void()> hook) : hook_(std::move(hook)) {}

    std::error_code status(const fs::path& p, FileStatus& out) override { return os().status(p, out); }
    std::error_code createNew(const fs::path& p, Handle& out) override {
        reached();
        return os().createNew(p, out);
    }
    std::error_code write(Handle h, std::string_view b, std::size_t& n) override {
        reached();
        return os().write(h, b, n);
    }
    std::error_code sync(Handle h) override {
        reached();
        return os().sync(h);
    }
    std::error_code close(Handle h) override {
        reached();
        return os().close(h);
    }
    std::error_code rename(const fs::path& a, const fs::path& b) override {
        reached();
        return os().rename(a, b);
    }
    std::error_code link(const fs::path& a, const fs::path& b) override {
        reached();
        return os().link(a, b);
    }
    std::error_code copy(const fs::path& a, const fs::path& b) override {
        reached();
        return os().copy(a, b);
    }
    std::error_code remove(const fs::path& p) override {
        reached();
        return os().remove(p);
    }
    std::error_code list(const fs::path& p, std::vector<std::string>& n) override {
        reached();
        return os().list(p, n);
    }

private:
    static FileSystem& os() { return systemFileSystem(); }
    void reached() {
        if (hook_) std::exchange(hook_, nullptr)();
    }
    std::function<void()> hook_;
};

bool sendNumber(int fd, int64_t n) {
    return ::write(fd, &n, sizeof n) == static_cast<ssize_t>(sizeof n);  // pipe writes this small are whole
}

bool receiveNumber(int fd, int64_t& n) {
    ssize_t got;
    while ((got = ::read(fd, &n, sizeof n)) < 0 && errno == EINTR) {
    }
    return got == static_cast<ssize_t>(sizeof n);
}

// A process that renders one layout once and then, for every delay asked for, forks a saver
// that finishes writing this layout and goes on saving the two layouts in turn, kills it
// after the delay and answers with its wait status. So every kill falls into the disk part
// of a save without waiting for a render first. A negative delay ends the process.
class KillServer {
public:
    KillServer(const KillLayouts& layouts, const fs::path& folder, int which) {
        int requests[2];
        int replies[2];
        if (::pipe(requests) != 0 || ::pipe(replies) != 0) return;
        pid_ = ::fork();
        if (pid_ == 0) {
            ::close(requests[1]);
            ::close(replies[0]);
            AfterChecks files([&] { serve(requests[0], replies[1]); });
            // Only the forked savers return here, with the first save done.
            if (!layouts.save(folder, which, files).saved) ::_exit(3);
            for (int i = which + 1;; ++i)
                if (!layouts.save(folder, i % 2).saved) ::_exit(3);
        }
        ::close(requests[0]);
        ::close(replies[1]);
        requests_ = requests[1];
        replies_ = replies[0];
    }
    ~KillServer() {
        if (pid_ <= 0) return;
        sendNumber(requests_, -1);
        ::close(requests_);
        ::close(replies_);
        int status = 0;
        ::waitpid(pid_, &status, 0);
    }
    KillServer(const KillServer&) = delete;
    KillServer& operator=(const KillServer&) = delete;

    bool running() const { return pid_ > 0; }
    // The saver's wait status, or -1 when the server is gone.
    int killAfter(std::chrono::microseconds delay) {
        int64_t status = -1;
        if (!sendNumber(requests_, delay.count()) || !receiveNumber(replies_, status)) return -1;
        return static_cast<int>(status);
    }

private:
    static void serve(int requests, int replies) {
        // Under AddressSanitizer the memory the test process freed is held back to catch
        // use after free; giving it back first keeps every saver's fork cheap.
        if (__sanitizer_purge_allocator) __sanitizer_purge_allocator();
        int64_t delay = 0;
        while (receiveNumber(requests, delay) && delay >= 0) {
            const pid_t saver = ::fork();
            if (saver == 0) return;
            if (saver > 0) {
                std::this_thread::sleep_for(std::chrono::microseconds(delay));
                ::kill(saver, SIGKILL);
            }
            int status = -1;
            if (saver > 0) ::waitpid(saver, &status, 0);
            sendNumber(replies, status);
        }
        ::_exit(0);
    }

    pid_t pid_ = -1;
    int requests_ = -1;
    int replies_ = -1;
};

unsigned chooseSeed() {
    if (const char* given = std::getenv("KESTRIN_KILL_SEED"))
        return static_cast<unsigned>(std::strtoul(given, nullptr, 10));
    return std::random_device{}();
}

TEST(SaveKill, AKilledSaveLeavesEveryFileComplete) {
    const unsigned seed = chooseSeed();
    SCOPED_TRACE("seed " + std::to_string(seed) + " (set KESTRIN_KILL_SEED to repeat the run)");
    std::mt19937 rng(seed);
    const KillLayouts layouts;
    ASSERT_FALSE(HasFailure());

    KnownContents contents;
    for (int which = 0; which < 2; ++which) {
        TempDir one;
        ASSERT_TRUE(layouts.save(one.path(), which).saved);
        const SavedFiles files = SavedFiles::read(one.path(), kStem);
        const std::string letter(1, which == 0 ? 'A' : 'B');
        contents.add("layout " + letter, files.layout);
        contents.add("chip encode file " + letter, files.encode);
    }

    // The folder holds both layouts saved once, so a backup is there. The delays spread over
    // half again the time the disk part of a save takes, so some kills hit the next save.
    TempDir work;
    ASSERT_TRUE(layouts.save(work.path(), 0).saved);
    std::chrono::steady_clock::time_point diskPartStart;
    AfterChecks timing([&] { diskPartStart = std::chrono::steady_clock::now(); });
    ASSERT_TRUE(layouts.save(work.path(), 1, timing).saved);
    const auto diskPart = std::chrono::steady_clock::now() - diskPartStart;
    std::uniform_int_distribution<int64_t> delay(
        0, std::chrono::duration_cast<std::chrono::microseconds>(diskPart).count() * 3 / 2);

    KillServer servers[2] = {{layouts, work.path(), 0}, {layouts, work.path(), 1}};
    ASSERT_TRUE(servers[0].running() && servers[1].running());
    int leftovers = 0;
    for (int kill = 0; kill < kKills; ++kill) {
        const int status = servers[kill % 2].killAfter(std::chrono::microseconds(delay(rng)));
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)
            << "kill " << kill << ": the saving process was not killed but ended with status " << status;

        const SavedFiles now = SavedFiles::read(work.path(), kStem);
        const std::string layout = contents.nameOf(now.layout);
        const std::string encode = contents.nameOf(now.encode);
        const std::string backup = contents.nameOf(now.backup);
        ASSERT_TRUE(layout == "layout A" || layout == "layout B")
            << "kill " << kill << ": the layout file is " << layout;
        ASSERT_TRUE(encode == "chip encode file A" || encode == "chip encode file B")
            << "kill " << kill << ": the chip encode file is " << encode;
        ASSERT_TRUE(backup == "layout A" || backup == "layout B") << "kill " << kill << ": the backup is " << backup;
        leftovers += hiddenTempFiles(work.path()).empty() ? 0 : 1;
    }
    RecordProperty("killsLeavingTemporaryFiles", leftovers);

    // The next save removes whatever the killed saves left behind.
    ASSERT_TRUE(layouts.save(work.path(), 0).saved);
    EXPECT_EQ(hiddenTempFiles(work.path()), std::vector<std::string>{});
    EXPECT_EQ(contents.nameOf(SavedFiles::read(work.path(), kStem).layout), "layout A");
}

}  // namespace
