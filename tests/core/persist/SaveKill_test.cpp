// A saving process killed at random moments (SIGKILL) must leave the layout, its chip encode
// file and the backup each equal to one complete file. Windows: SaveTerminate in WindowsSave_test.cpp.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <random>
#include <thread>

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "support/FaultyFileSystem.h"
#include "support/SavedFiles.h"

using namespace kestrin;
using namespace kestrin::test;
namespace fs = std::filesystem;

// Present only in sanitizer builds.
extern "C" __attribute__((weak)) void __sanitizer_purge_allocator();

namespace {

bool send(int fd, int64_t n) { return ::write(fd, &n, sizeof n) == static_cast<ssize_t>(sizeof n); }
bool receive(int fd, int64_t& n) {
    ssize_t got;
    do got = ::read(fd, &n, sizeof n);
    while (got < 0 && errno == EINTR);
    return got == static_cast<ssize_t>(sizeof n);
}

// A process that renders one layout once and then, for every delay asked for, forks a saver
// that goes on from the disk part of that save (and then saves both layouts in turn), kills
// it after the delay and answers with its wait status. A negative delay ends the process.
class KillServer {
public:
    KillServer(const TwoLayouts& layouts, const fs::path& folder, int which) {
        int requests[2], replies[2];
        if (::pipe(requests) != 0 || ::pipe(replies) != 0) return;
        pid_ = ::fork();
        ::close(pid_ == 0 ? requests[1] : requests[0]);  // a server gone is then seen as an end of file
        ::close(pid_ == 0 ? replies[0] : replies[1]);
        if (pid_ == 0) {
            FaultyFileSystem files(folder, folder);
            files.beforeChange = [&] { serve(requests[0], replies[1]); };
            // Only the forked savers get here.
            if (!layouts.save(folder, which, files).saved) ::_exit(3);
            for (int i = which + 1;; ++i)
                if (!layouts.save(folder, i % 2).saved) ::_exit(3);
        }
        requests_ = requests[1], replies_ = replies[0];
    }
    ~KillServer() {
        if (pid_ > 0) send(requests_, -1), ::waitpid(pid_, nullptr, 0);
    }
    int killAfter(int64_t microseconds) {
        int64_t status = -1;
        return send(requests_, microseconds) && receive(replies_, status) ? static_cast<int>(status) : -1;
    }

private:
    static void serve(int requests, int replies) {
        // ASan holds freed memory back; giving it back first keeps every fork cheap.
        if (__sanitizer_purge_allocator) __sanitizer_purge_allocator();
        int64_t delay = 0;
        while (receive(requests, delay) && delay >= 0) {
            const pid_t saver = ::fork();
            if (saver == 0) return;
            int status = -1;
            if (saver > 0) {
                std::this_thread::sleep_for(std::chrono::microseconds(delay));
                ::kill(saver, SIGKILL);
                ::waitpid(saver, &status, 0);
            }
            send(replies, status);
        }
        ::_exit(0);
    }
    pid_t pid_ = -1;
    int requests_ = -1, replies_ = -1;
};

TEST(SaveKill, AKilledSaveLeavesEveryFileComplete) {
    const char* given = std::getenv("KESTRIN_KILL_SEED");
    const auto seed = given ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device{}();
    SCOPED_TRACE("seed " + std::to_string(seed) + " (KESTRIN_KILL_SEED repeats the run)");
    std::mt19937 rng(seed);
    const TwoLayouts layouts(1800, 1600);
    // Both layouts saved once, so a backup is there. The delays spread over half again the
    // time the disk part of a save takes, so some kills hit the next save.
    TempDir work;
    ASSERT_TRUE(layouts.save(work.path(), 0).saved);
    FaultyFileSystem timing(work.path(), work.path());
    std::chrono::steady_clock::time_point diskPartStart;
    timing.beforeChange = [&] { diskPartStart = std::chrono::steady_clock::now(); };
    ASSERT_TRUE(layouts.save(work.path(), 1, timing).saved);
    const auto diskPart = std::chrono::steady_clock::now() - diskPartStart;
    std::uniform_int_distribution<int64_t> delay(
        0, std::chrono::duration_cast<std::chrono::microseconds>(diskPart).count() * 3 / 2);

    KillServer servers[2] = {{layouts, work.path(), 0}, {layouts, work.path(), 1}};
    for (int kill = 0; kill < 200; ++kill) {
        const int status = servers[kill % 2].killAfter(delay(rng));
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << kill << ": saver ended with " << status;
        ASSERT_EQ(layouts.incomplete(work.path()), "") << kill;
    }
    // The next save removes whatever the killed saves left behind.
    ASSERT_TRUE(layouts.save(work.path(), 0).saved);
    EXPECT_EQ(hiddenTempFiles(work.path()), std::vector<std::string>{});
    EXPECT_EQ(layouts.contents.nameOf(SavedFiles::read(work.path(), "Card").layout), "layout A");
}

// A write that a signal interrupts before it stores a byte goes on: every byte arrives. The
// pipe is full, so the write waits until the reader starts, after the signals.
TEST(FileSystem, AWriteInterruptedByASignalGoesOn) {
    int pipeEnds[2];
    ASSERT_EQ(::pipe(pipeEnds), 0);
    struct sigaction interrupt {}, before {};
    interrupt.sa_handler = [](int) {};  // without SA_RESTART a waiting write ends with EINTR
    ASSERT_EQ(::sigaction(SIGUSR1, &interrupt, &before), 0);
    ::fcntl(pipeEnds[1], F_SETFL, O_NONBLOCK);
    std::string expected;
    for (const std::string block(4096, 'f'); ::write(pipeEnds[1], block.data(), block.size()) > 0;) expected += block;
    ::fcntl(pipeEnds[1], F_SETFL, 0);
    const std::string bytes(100000, 'k');
    expected += bytes;
    std::string received;
    std::thread reader([&, writer = ::pthread_self()] {
        for (int i = 0; i < 10; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(20)), ::pthread_kill(writer, SIGUSR1);
        char buffer[65536];
        for (ssize_t n; (n = ::read(pipeEnds[0], buffer, sizeof buffer)) > 0;) received.append(buffer, static_cast<size_t>(n));
    });
    std::error_code error;
    for (std::string_view rest = bytes; !rest.empty() && !error;) {
        std::size_t written = 0;
        error = systemFileSystem().write(pipeEnds[1], rest, written);
        rest.remove_prefix(written);
    }
    ::close(pipeEnds[1]);
    reader.join();
    ::close(pipeEnds[0]), ::sigaction(SIGUSR1, &before, nullptr);
    EXPECT_TRUE(!error && received == expected) << error.message() << ", " << received.size() << " of " << expected.size();
}

// A copy works when the file it copies gets descriptor 0, as it does while standard input is closed.
TEST(FileSystem, ACopyWorksWhileStandardInputIsClosed) {
    TempDir dir;
    writeBytes(dir / "From.IIF", "[GENERAL]\r\n");
    const int input = ::dup(0);
    ::close(0);
    const std::error_code error = systemFileSystem().copy(dir / "From.IIF", dir / "To.IIF");
    if (input >= 0) ::dup2(input, 0), ::close(input);
    EXPECT_EQ(std::tuple(error, readBytes(dir / "To.IIF")), std::tuple(std::error_code{}, "[GENERAL]\r\n"));
}

}  // namespace
