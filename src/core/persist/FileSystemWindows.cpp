#ifdef _WIN32
#include <cerrno>
#include <algorithm>
#include <chrono>
#include <climits>
#include <thread>

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <windows.h>

#include "FileSystem.h"

namespace kestrin {

namespace fs = std::filesystem;

namespace {

std::error_code crtError() { return {errno, std::generic_category()}; }

// Windows error numbers as the errno values the interface promises.
std::error_code windowsError(DWORD code) {
    int value = EIO;
    switch (code) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND: value = ENOENT; break;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS: value = EEXIST; break;
    case ERROR_ACCESS_DENIED: value = EACCES; break;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION: value = EBUSY; break;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL: value = ENOSPC; break;
    case ERROR_NOT_SUPPORTED:
    case ERROR_INVALID_FUNCTION: value = ENOTSUP; break;
    case ERROR_NOT_SAME_DEVICE: value = EXDEV; break;
    case ERROR_TOO_MANY_LINKS: value = EMLINK; break;
    case ERROR_FILENAME_EXCED_RANGE: value = ENAMETOOLONG; break;
    case ERROR_INVALID_NAME:
    case ERROR_DIRECTORY: value = EINVAL; break;
    default: break;
    }
    return {value, std::generic_category()};
}

std::error_code lastWindowsError() { return windowsError(GetLastError()); }

// Virus scanners and indexers hold a file for a moment after it was written; a file that
// another program keeps open stays refused after the last try.
template <class Call>
BOOL retryWhileBusy(Call call) {
    DWORD pause = 20;
    for (int attempt = 0;; ++attempt, pause *= 2) {
        if (call()) return TRUE;
        const DWORD code = GetLastError();
        const bool busy = code == ERROR_SHARING_VIOLATION || code == ERROR_LOCK_VIOLATION || code == ERROR_ACCESS_DENIED;
        if (!busy || attempt == 4) return FALSE;
        std::this_thread::sleep_for(std::chrono::milliseconds(pause));
        SetLastError(code);
    }
}

std::error_code writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto chunk = static_cast<unsigned>(std::min<std::size_t>(bytes.size(), INT_MAX));
        const int n = ::_write(fd, bytes.data(), chunk);
        if (n < 0) return crtError();
        if (n == 0) return {ENOSPC, std::generic_category()};
        bytes.remove_prefix(static_cast<std::size_t>(n));
    }
    return {};
}

std::error_code copyContent(int from, int to) {
    char buffer[64 * 1024];
    for (;;) {
        const int n = ::_read(from, buffer, sizeof buffer);
        if (n < 0) return crtError();
        if (n == 0) return {};
        if (auto ec = writeAll(to, {buffer, static_cast<std::size_t>(n)})) return ec;
    }
}

class WindowsFileSystem final : public FileSystem {
public:
    std::error_code status(const fs::path& path, FileStatus& out) override {
        out = {};
        const DWORD attributes = GetFileAttributesW(path.c_str());
        if (attributes != INVALID_FILE_ATTRIBUTES) {
            out.exists = true;
            out.readOnly = (attributes & FILE_ATTRIBUTE_READONLY) != 0;
            return {};
        }
        // A missing name, or a folder on the way that is a file: nothing there.
        const DWORD code = GetLastError();
        if (code == ERROR_FILE_NOT_FOUND || code == ERROR_PATH_NOT_FOUND || code == ERROR_DIRECTORY) return {};
        return windowsError(code);
    }

    std::error_code createNew(const fs::path& path, Handle& out) override {
        out = ::_wopen(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
        return out < 0 ? crtError() : std::error_code{};
    }

    std::error_code write(Handle file, std::string_view bytes, std::size_t& written) override {
        written = 0;
        const auto chunk = static_cast<unsigned>(std::min<std::size_t>(bytes.size(), INT_MAX));
        const int n = ::_write(file, bytes.data(), chunk);
        if (n < 0) return crtError();
        written = static_cast<std::size_t>(n);
        return {};
    }

    std::error_code sync(Handle file) override { return ::_commit(file) == 0 ? std::error_code{} : crtError(); }

    std::error_code close(Handle file) override { return ::_close(file) == 0 ? std::error_code{} : crtError(); }

    // MoveFileEx replaces an existing target in one step, as rename does on Linux.
    std::error_code rename(const fs::path& from, const fs::path& to) override {
        const BOOL moved = retryWhileBusy([&] {
            return MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH);
        });
        return moved ? std::error_code{} : lastWindowsError();
    }

    // FAT and many network shares have no hard links; the caller copies then. A file that
    // another program holds open without letting others delete it cannot be renamed under
    // any of its names, so a second name of it would be of no use: that is refused too.
    std::error_code link(const fs::path& existing, const fs::path& newName) override {
        const HANDLE probe = CreateFileW(existing.c_str(), DELETE, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                         nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (probe == INVALID_HANDLE_VALUE) return lastWindowsError();
        CloseHandle(probe);
        return CreateHardLinkW(newName.c_str(), existing.c_str(), nullptr) ? std::error_code{} : lastWindowsError();
    }

    std::error_code copy(const fs::path& existing, const fs::path& newFile) override {
        const int from = ::_wopen(existing.c_str(), _O_RDONLY | _O_BINARY | _O_NOINHERIT);
        if (from < 0) return crtError();
        Handle to = -1;
        std::error_code ec = createNew(newFile, to);
        if (!ec) {
            ec = copyContent(from, to);
            if (!ec) ec = sync(to);
            const std::error_code closed = close(to);
            if (!ec) ec = closed;
            if (ec) DeleteFileW(newFile.c_str());
        }
        ::_close(from);
        return ec;
    }

    std::error_code remove(const fs::path& path) override {
        return retryWhileBusy([&] { return DeleteFileW(path.c_str()); }) ? std::error_code{} : lastWindowsError();
    }

    std::error_code list(const fs::path& folder, std::vector<std::string>& names) override {
        names.clear();
        WIN32_FIND_DATAW entry;
        const HANDLE search = FindFirstFileW((folder / L"*").c_str(), &entry);
        if (search == INVALID_HANDLE_VALUE) return lastWindowsError();
        do {
            const std::wstring_view name = entry.cFileName;
            if (name != L"." && name != L"..") names.push_back(pathText(fs::path(name)));
        } while (FindNextFileW(search, &entry));
        const DWORD code = GetLastError();
        FindClose(search);
        return code == ERROR_NO_MORE_FILES ? std::error_code{} : windowsError(code);
    }
};

}  // namespace

FileSystem& systemFileSystem() {
    static WindowsFileSystem instance;
    return instance;
}

}  // namespace kestrin

#endif  // _WIN32
