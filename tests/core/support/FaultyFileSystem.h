#pragma once
#include <algorithm>
#include <array>
#include <cerrno>
#include <functional>
#include <utility>

#include "persist/FileSystem.h"

namespace kestrin::test {

enum class Call { Status, CreateNew, Write, Sync, Close, Rename, Link, Copy, Remove, List };

inline const char* callName(Call c) {
    return std::array{"status", "createNew", "write", "sync", "close", "rename", "link", "copy", "remove", "list"}[int(c)];
}

// How the chosen call fails. Error: it returns the given errno (a close still releases its
// handle). ShortWrite: a write stores only part of its bytes and says so; later writes succeed.
// DiskFull: a write stores part of its bytes; every later write or copy fails with ENOSPC.
// NoProgress: a write stores nothing yet reports no error; later writes succeed.
enum class Fault { Error, ShortWrite, DiskFull, NoProgress };

// The operating system's file system seen under another folder name, counting every call and
// failing the ones chosen. The save is handed paths under virtualRoot, which does not exist:
// a call that bypassed this class would not find the files.
class FaultyFileSystem : public FileSystem {
public:
    FaultyFileSystem(std::filesystem::path virtualRoot, std::filesystem::path realRoot)
        : virtual_(std::move(virtualRoot)), real_(std::move(realRoot)) {}

    // Fails call number index (from 0); calling it again adds a further failing call.
    void failCall(int index, Fault fault, int error = 0) {
        failAt_.push_back(index);
        fault_ = fault;
        errno_ = error;
    }

    bool hardLinks = true;  // false: every link fails with EPERM, as on file systems without them
    std::vector<Call> calls;
    bool injected = false;
    std::filesystem::path failedPath;  // the real path the failed call was about (empty for handles)
    int openHandles = 0;
    // Runs before every call that may change the disk (any call but status): where a save
    // killed at that moment would stop.
    std::function<void()> beforeChange;

    std::error_code status(const std::filesystem::path& path, FileStatus& out) override {
        return guarded(Call::Status, path, [&] { return os().status(map(path), out); });
    }
    std::error_code createNew(const std::filesystem::path& path, Handle& out) override {
        return guarded(Call::CreateNew, path, [&] {
            const auto ec = os().createNew(map(path), out);
            openHandles += !ec;
            return ec;
        });
    }
    std::error_code write(Handle file, std::string_view bytes, std::size_t& written) override {
        const bool chosen = next(Call::Write);
        if (diskFull_ || (chosen && fault_ == Fault::Error)) return error(diskFull_ ? ENOSPC : errno_);
        diskFull_ = chosen && fault_ == Fault::DiskFull;
        if (chosen) bytes = bytes.substr(0, fault_ == Fault::NoProgress ? 0 : std::max<std::size_t>(bytes.size() / 2, 1));
        return os().write(file, bytes, written);
    }
    std::error_code sync(Handle file) override { return next(Call::Sync) ? error(errno_) : os().sync(file); }
    std::error_code close(Handle file) override {
        --openHandles;
        const auto ec = os().close(file);  // changes no file a save names: beforeChange may run after it
        return next(Call::Close) ? error(errno_) : ec;
    }
    std::error_code rename(const std::filesystem::path& from, const std::filesystem::path& to) override {
        return guarded(Call::Rename, to, [&] { return os().rename(map(from), map(to)); });
    }
    std::error_code link(const std::filesystem::path& existing, const std::filesystem::path& newName) override {
        return guarded(Call::Link, newName, [&] { return !hardLinks ? error(EPERM) : os().link(map(existing), map(newName)); });
    }
    std::error_code copy(const std::filesystem::path& existing, const std::filesystem::path& newFile) override {
        return guarded(Call::Copy, newFile, [&] { return diskFull_ ? error(ENOSPC) : os().copy(map(existing), map(newFile)); });
    }
    std::error_code remove(const std::filesystem::path& path) override {
        return guarded(Call::Remove, path, [&] { return os().remove(map(path)); });
    }
    std::error_code list(const std::filesystem::path& folder, std::vector<std::string>& names) override {
        return guarded(Call::List, folder, [&] { return os().list(map(folder), names); });
    }

private:
    static FileSystem& os() { return systemFileSystem(); }
    static std::error_code error(int e) { return {e, std::generic_category()}; }

    std::filesystem::path map(const std::filesystem::path& p) const {
        const auto rel = p.lexically_relative(virtual_);
        return rel.empty() || *rel.begin() == ".." ? p : real_ / rel;
    }
    // Counts a call; true when it is the one to fail.
    bool next(Call c) {
        if (c != Call::Status && beforeChange) beforeChange();
        calls.push_back(c);
        const bool chosen = std::find(failAt_.begin(), failAt_.end(), static_cast<int>(calls.size()) - 1) != failAt_.end();
        injected = injected || chosen;
        return chosen;
    }
    // Counts a call about path: the error when it is the one to fail, else what call() returns.
    template <class Then>
    std::error_code guarded(Call c, const std::filesystem::path& path, Then call) {
        if (!next(c)) return call();
        failedPath = map(path);
        return error(errno_);
    }

    std::filesystem::path virtual_, real_;
    std::vector<int> failAt_;
    Fault fault_ = Fault::Error;
    int errno_ = 0;
    bool diskFull_ = false;
};

}  // namespace kestrin::test
