#pragma once
#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "base/PathText.h"

namespace kestrin {

// What a save needs to know of a path before it writes.
struct FileStatus {
    bool exists = false;
    // Exists and may not be written: no owner write permission on Linux, the read-only
    // attribute on Windows.
    bool readOnly = false;
};

// Every file system call a save makes. A save goes through this interface only, so a test
// can put in an implementation that fails any one call. Calls never throw; they return the
// error (errno values in the generic category), or an empty error code when they succeeded.
class FileSystem {
public:
    using Handle = int;

    virtual ~FileSystem() = default;

    // A path that is not there is reported as exists == false without an error; any other
    // problem (no permission to look, an I/O error) is an error.
    virtual std::error_code status(const std::filesystem::path& path, FileStatus& out) = 0;
    // Creates a new file for writing; fails with EEXIST when the name is taken.
    virtual std::error_code createNew(const std::filesystem::path& path, Handle& out) = 0;
    // Writes at most bytes.size() bytes; written may come back smaller (a full disk).
    virtual std::error_code write(Handle file, std::string_view bytes, std::size_t& written) = 0;
    // Flushes the file's content to the disk.
    virtual std::error_code sync(Handle file) = 0;
    // Releases the handle, also when it reports an error.
    virtual std::error_code close(Handle file) = 0;
    // Moves from over to in one step, replacing what to named.
    virtual std::error_code rename(const std::filesystem::path& from, const std::filesystem::path& to) = 0;
    // Gives existing's file a second name; fails with EEXIST when the name is taken.
    virtual std::error_code link(const std::filesystem::path& existing, const std::filesystem::path& newName) = 0;
    // Copies existing's content into a new file flushed to disk; fails with EEXIST when the
    // name is taken. A copy that fails part way removes what it wrote.
    virtual std::error_code copy(const std::filesystem::path& existing, const std::filesystem::path& newFile) = 0;
    virtual std::error_code remove(const std::filesystem::path& path) = 0;
    // The names of the entries of folder, as pathText gives them.
    virtual std::error_code list(const std::filesystem::path& folder, std::vector<std::string>& names) = 0;
};

// The operating system's file system, which saves use unless told otherwise.
FileSystem& systemFileSystem();

}  // namespace kestrin
