#include "SafeFile.h"

#include <algorithm>
#include <cerrno>
#include <random>
#include <system_error>
#include <utility>

namespace kestrin {

namespace fs = std::filesystem;

namespace {

fs::path folderOf(const fs::path& file) { return file.has_parent_path() ? file.parent_path() : fs::path("."); }

std::string describe(const std::string& what, const fs::path& p, const std::error_code& ec) {
    return what + " " + pathText(p) + ": " + ec.message();
}

// Tries hidden names ".NAME.<n>.tmp" beside target until make(name) does not report the
// name as taken; temp is the last name tried.
template <class Make>
std::error_code withFreeName(const fs::path& target, fs::path& temp, Make make) {
    static thread_local std::mt19937 rng{std::random_device{}()};
    const fs::path folder = folderOf(target);
    std::error_code ec;
    for (int attempt = 0; attempt < 16; ++attempt) {
        fs::path name = ".";
        name += target.filename();
        name += "." + std::to_string(rng() % 1000000) + ".tmp";
        temp = folder / name;
        ec = make(temp);
        if (ec != std::errc::file_exists) return ec;
    }
    return ec;
}

// Writes all of bytes; a write that makes no progress means the disk is full.
std::error_code writeAll(FileSystem& files, FileSystem::Handle file, std::string_view bytes) {
    while (!bytes.empty()) {
        std::size_t written = 0;
        if (auto ec = files.write(file, bytes, written)) return ec;
        if (written == 0) return std::make_error_code(std::errc::no_space_on_device);
        bytes.remove_prefix(std::min(written, bytes.size()));
    }
    return {};
}

}  // namespace

StagedFile::StagedFile(StagedFile&& other) noexcept
    : files_(std::exchange(other.files_, nullptr)),
      temp_(std::exchange(other.temp_, {})),
      target_(std::exchange(other.target_, {})) {}

StagedFile& StagedFile::operator=(StagedFile&& other) noexcept {
    if (this != &other) {
        discard();
        files_ = std::exchange(other.files_, nullptr);
        temp_ = std::exchange(other.temp_, {});
        target_ = std::exchange(other.target_, {});
    }
    return *this;
}

StagedFile::~StagedFile() { discard(); }

void StagedFile::discard() {
    if (files_ != nullptr && !temp_.empty()) files_->remove(temp_);
    temp_.clear();
}

std::optional<StagedFile> StagedFile::write(FileSystem& files, const fs::path& target, std::string_view bytes,
                                            std::string* error) {
    StagedFile staged;
    FileSystem::Handle handle = -1;
    if (auto ec = withFreeName(target, staged.temp_, [&](const fs::path& p) { return files.createNew(p, handle); })) {
        if (error) *error = describe("cannot create a file in", folderOf(target), ec);
        return std::nullopt;
    }
    staged.files_ = &files;
    staged.target_ = target;
    std::error_code ec = writeAll(files, handle, bytes);
    if (!ec) ec = files.sync(handle);
    const std::error_code closed = files.close(handle);
    if (!ec) ec = closed;
    if (ec) {
        if (error) *error = describe("cannot write", staged.temp_, ec);
        return std::nullopt;  // staged removes the partial file
    }
    return staged;
}

std::optional<StagedFile> StagedFile::duplicate(FileSystem& files, const fs::path& source, const fs::path& target,
                                                std::string* error) {
    StagedFile staged;
    std::error_code ec =
        withFreeName(target, staged.temp_, [&](const fs::path& p) { return files.link(source, p); });
    // No hard link (a file system without them, too many links): a copy does the same.
    if (ec) ec = withFreeName(target, staged.temp_, [&](const fs::path& p) { return files.copy(source, p); });
    if (ec) {
        if (error) *error = describe("cannot keep a copy of", source, ec);
        return std::nullopt;
    }
    staged.files_ = &files;
    staged.target_ = target;
    return staged;
}

bool StagedFile::commit(std::string* error) {
    if (files_ == nullptr || temp_.empty()) return false;
    if (auto ec = files_->rename(temp_, target_)) {
        if (error) *error = describe("cannot replace", target_, ec);
        return false;
    }
    temp_.clear();
    return true;
}

bool keepAs(FileSystem& files, const fs::path& source, const fs::path& target, std::string* error) {
    auto staged = StagedFile::duplicate(files, source, target, error);
    if (!staged) return false;
    const fs::path temp = staged->tempPath();
    if (!staged->commit(error)) return false;
    // When target already is a name of source's file (a failed save left the layout and its
    // backup as one file), rename does nothing and the temporary name stays.
    files.remove(temp);
    return true;
}

bool isStagedNameOf(std::string_view name, const fs::path& target) {
    const std::string prefix = "." + pathText(target.filename()) + ".";
    constexpr std::string_view suffix = ".tmp";
    if (name.size() <= prefix.size() + suffix.size() || !name.starts_with(prefix) || !name.ends_with(suffix))
        return false;
    const std::string_view middle = name.substr(prefix.size(), name.size() - prefix.size() - suffix.size());
    // "link" is the fixed name earlier saves gave the backup's hard link.
    return middle == "link" || std::all_of(middle.begin(), middle.end(), [](char c) { return c >= '0' && c <= '9'; });
}

void removeLeftoverStagedFiles(FileSystem& files, const std::vector<fs::path>& targets) {
    std::vector<fs::path> listed;
    std::vector<std::string> names;
    for (const fs::path& target : targets) {
        const fs::path folder = folderOf(target);
        if (std::find(listed.begin(), listed.end(), folder) != listed.end()) continue;
        listed.push_back(folder);
        if (files.list(folder, names)) continue;
        for (const std::string& name : names)
            for (const fs::path& other : targets)
                if (folderOf(other) == folder && isStagedNameOf(name, other)) {
                    files.remove(folder / name);
                    break;
                }
    }
}

}  // namespace kestrin
