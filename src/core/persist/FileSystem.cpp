#ifndef _WIN32
#include "FileSystem.h"

#include <cerrno>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrin {

namespace fs = std::filesystem;

namespace {

std::error_code lastError() { return {errno, std::generic_category()}; }

// Writes all of bytes, retrying short writes; a write that makes no progress is a full disk.
std::error_code writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t n = ::write(fd, bytes.data(), bytes.size());
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return lastError();
        if (n == 0) return {ENOSPC, std::generic_category()};
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
    return {};
}

std::error_code copyContent(int from, int to) {
    char buffer[64 * 1024];
    for (;;) {
        const ssize_t n = ::read(from, buffer, sizeof buffer);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) return lastError();
        if (n == 0) return {};
        if (auto ec = writeAll(to, {buffer, static_cast<std::size_t>(n)})) return ec;
    }
}

class PosixFileSystem final : public FileSystem {
public:
    std::error_code status(const fs::path& path, FileStatus& out) override {
        out = {};
        struct stat st {};
        if (::stat(path.c_str(), &st) == 0) {
            out.exists = true;
            out.readOnly = (st.st_mode & S_IWUSR) == 0;
            return {};
        }
        // A missing name, or a folder on the way that is a file: nothing there.
        if (errno == ENOENT || errno == ENOTDIR) return {};
        return lastError();
    }

    std::error_code createNew(const fs::path& path, Handle& out) override {
        out = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        return out < 0 ? lastError() : std::error_code{};
    }

    std::error_code write(Handle file, std::string_view bytes, std::size_t& written) override {
        for (;;) {
            const ssize_t n = ::write(file, bytes.data(), bytes.size());
            if (n < 0 && errno == EINTR) continue;
            if (n < 0) return lastError();
            written = static_cast<std::size_t>(n);
            return {};
        }
    }

    std::error_code sync(Handle file) override { return ::fsync(file) == 0 ? std::error_code{} : lastError(); }

    // Linux releases the descriptor even when close reports an error, so it is never retried.
    std::error_code close(Handle file) override { return ::close(file) == 0 ? std::error_code{} : lastError(); }

    std::error_code rename(const fs::path& from, const fs::path& to) override {
        return ::rename(from.c_str(), to.c_str()) == 0 ? std::error_code{} : lastError();
    }

    std::error_code link(const fs::path& existing, const fs::path& newName) override {
        return ::link(existing.c_str(), newName.c_str()) == 0 ? std::error_code{} : lastError();
    }

    std::error_code copy(const fs::path& existing, const fs::path& newFile) override {
        const int from = ::open(existing.c_str(), O_RDONLY | O_CLOEXEC);
        if (from < 0) return lastError();
        Handle to = -1;
        std::error_code ec = createNew(newFile, to);
        if (!ec) {
            ec = copyContent(from, to);
            if (!ec) ec = sync(to);
            const std::error_code closed = close(to);
            if (!ec) ec = closed;
            if (ec) ::unlink(newFile.c_str());
        }
        ::close(from);
        return ec;
    }

    std::error_code remove(const fs::path& path) override {
        return ::unlink(path.c_str()) == 0 ? std::error_code{} : lastError();
    }

    std::error_code list(const fs::path& folder, std::vector<std::string>& names) override {
        names.clear();
        DIR* dir = ::opendir(folder.c_str());
        if (dir == nullptr) return lastError();
        errno = 0;
        while (const dirent* entry = ::readdir(dir)) {
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..") names.emplace_back(name);
        }
        const std::error_code ec = errno != 0 ? lastError() : std::error_code{};
        ::closedir(dir);
        return ec;
    }
};

}  // namespace

FileSystem& systemFileSystem() {
    static PosixFileSystem instance;
    return instance;
}

}  // namespace kestrin

#endif  // _WIN32
