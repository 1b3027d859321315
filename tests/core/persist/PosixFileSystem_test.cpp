// The operating system's file system where the layout saves meet it on Linux: signals and
// closed standard streams. (A save stopped at any call is checked in SaveFaults_test.cpp.)
#include <gtest/gtest.h>

#include <chrono>
#include <thread>

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <unistd.h>

#include "persist/FileSystem.h"
#include "support/TestSupport.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

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

// A copy whose source opens but cannot be read (a folder) reports the error and leaves no new file.
TEST(FileSystem, ACopyThatCannotReadItsSourceFailsAndLeavesNothing) {
    TempDir dir;
    std::filesystem::create_directory(dir / "Folder.IIF");
    const std::error_code error = systemFileSystem().copy(dir / "Folder.IIF", dir / "To.IIF");
    EXPECT_EQ(std::tuple(error, std::filesystem::exists(dir / "To.IIF")),
              std::tuple(std::make_error_code(std::errc::is_a_directory), false));
}

}  // namespace
