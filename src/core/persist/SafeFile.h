#pragma once
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "FileSystem.h"

namespace kestrin {

// A complete file beside its target under a hidden temporary name (".NAME.<n>.tmp"), not yet
// moved into place. The destructor removes it unless it was committed, so a failed save
// leaves nothing behind.
class StagedFile {
public:
    StagedFile() = default;
    StagedFile(StagedFile&& other) noexcept;
    StagedFile& operator=(StagedFile&& other) noexcept;
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;
    ~StagedFile();

    // Writes bytes to a new temporary file in target's folder and flushes it to disk.
    static std::optional<StagedFile> write(FileSystem& files, const std::filesystem::path& target,
                                           std::string_view bytes, std::string* error);
    // A temporary file in target's folder holding source's current content: a second name of
    // source (a hard link), or a flushed copy where the file system has no hard links.
    static std::optional<StagedFile> duplicate(FileSystem& files, const std::filesystem::path& source,
                                               const std::filesystem::path& target, std::string* error);
    // Renames the temporary file over the target in one step. A failed commit keeps the
    // temporary file for the destructor to remove.
    bool commit(std::string* error);
    const std::filesystem::path& tempPath() const { return temp_; }

private:
    void discard();

    FileSystem* files_ = nullptr;
    std::filesystem::path temp_;
    std::filesystem::path target_;
};

// Makes target a second name of source's content (a hard link, or a copy where the file
// system has none), replacing target in one step: it is either the old or the new one.
bool keepAs(FileSystem& files, const std::filesystem::path& source, const std::filesystem::path& target,
            std::string* error);
// Removes the temporary files an interrupted save left beside the targets. Failures are
// ignored: the next save tries again.
void removeLeftoverStagedFiles(FileSystem& files, const std::vector<std::filesystem::path>& targets);
// Whether name is one of the temporary names StagedFile uses for target.
bool isStagedNameOf(std::string_view name, const std::filesystem::path& target);

}  // namespace kestrin
