#pragma once
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

// A file written completely beside its target and not yet moved into place. The
// destructor removes it unless it was committed, so a failed save leaves nothing behind.
class StagedFile {
public:
    StagedFile() = default;
    StagedFile(StagedFile&& other) noexcept;
    StagedFile& operator=(StagedFile&& other) noexcept;
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;
    ~StagedFile();

    // Writes bytes to a new temporary file in target's folder and flushes it to disk.
    static std::optional<StagedFile> write(const std::filesystem::path& target, std::string_view bytes,
                                           std::string* error);
    // Renames the temporary file over the target in one step.
    bool commit(std::string* error);
    const std::filesystem::path& tempPath() const { return temp_; }

private:
    std::filesystem::path temp_;
    std::filesystem::path target_;
};

// A file that exists and carries no owner write permission (the read-only attribute).
bool isReadOnlyFile(const std::filesystem::path& file);
// Makes target a second name of source's content (a hard link, or a copy where the file
// system has none), replacing target in one step: it is either the old or the new one.
bool keepAs(const std::filesystem::path& source, const std::filesystem::path& target, std::string* error);
// Copies source over target through a staged file, so target is either the old or the new copy.
bool replaceWithCopy(const std::filesystem::path& source, const std::filesystem::path& target, std::string* error);
// Reads a whole file of at most maxBytes.
std::optional<std::string> readWholeFile(const std::filesystem::path& file, uintmax_t maxBytes, std::string* error);

}  // namespace kestrin
