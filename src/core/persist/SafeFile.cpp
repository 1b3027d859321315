#include "SafeFile.h"

#include <cerrno>
#include <cstring>
#include <fstream>
#include <random>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

namespace kestrin {

namespace fs = std::filesystem;

namespace {

std::string errnoText(const std::string& what, const fs::path& p) {
    return what + " " + p.string() + ": " + std::strerror(errno);
}

bool writeAll(int fd, std::string_view bytes) {
    size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        done += static_cast<size_t>(n);
    }
    return true;
}

// ".NAME.suffix": a temporary name beside the target that folder listings hide.
std::string hiddenName(const fs::path& target, const std::string& suffix) {
    std::string name(1, '.');
    name += target.filename().string();
    name += '.';
    name += suffix;
    return name;
}

}  // namespace

StagedFile::StagedFile(StagedFile&& other) noexcept
    : temp_(std::exchange(other.temp_, {})), target_(std::exchange(other.target_, {})) {}

StagedFile& StagedFile::operator=(StagedFile&& other) noexcept {
    if (this != &other) {
        std::error_code ec;
        if (!temp_.empty()) fs::remove(temp_, ec);
        temp_ = std::exchange(other.temp_, {});
        target_ = std::exchange(other.target_, {});
    }
    return *this;
}

StagedFile::~StagedFile() {
    std::error_code ec;
    if (!temp_.empty()) fs::remove(temp_, ec);
}

std::optional<StagedFile> StagedFile::write(const fs::path& target, std::string_view bytes, std::string* error) {
    static thread_local std::mt19937 rng{std::random_device{}()};
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    for (int attempt = 0; attempt < 16; ++attempt) {
        const fs::path temp = folder / hiddenName(target, std::to_string(rng() % 1000000) + ".tmp");
        const int fd = ::open(temp.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        if (fd < 0) {
            if (errno == EEXIST) continue;
            if (error) *error = errnoText("cannot create a file in", folder);
            return std::nullopt;
        }
        StagedFile staged;
        staged.temp_ = temp;
        staged.target_ = target;
        const bool ok = writeAll(fd, bytes) && ::fsync(fd) == 0;
        const int savedErrno = errno;
        const bool closed = ::close(fd) == 0;
        if (!ok || !closed) {
            errno = ok ? errno : savedErrno;
            if (error) *error = errnoText("cannot write", temp);
            return std::nullopt;  // staged's destructor removes the partial file
        }
        return staged;
    }
    if (error) *error = "cannot find a free temporary name in " + folder.string();
    return std::nullopt;
}

bool StagedFile::commit(std::string* error) {
    if (temp_.empty()) return false;
    if (::rename(temp_.c_str(), target_.c_str()) != 0) {
        if (error) *error = errnoText("cannot replace", target_);
        return false;
    }
    temp_.clear();
    return true;
}

bool isReadOnlyFile(const fs::path& file) {
    std::error_code ec;
    const fs::file_status st = fs::status(file, ec);
    if (ec || !fs::exists(st)) return false;
    return (st.permissions() & fs::perms::owner_write) == fs::perms::none;
}

std::optional<std::string> readWholeFile(const fs::path& file, uintmax_t maxBytes, std::string* error) {
    std::error_code ec;
    const uintmax_t size = fs::file_size(file, ec);
    if (ec) {
        if (error) *error = "cannot read " + file.string() + ": " + ec.message();
        return std::nullopt;
    }
    if (size > maxBytes) {
        if (error) *error = file.string() + " is too large";
        return std::nullopt;
    }
    std::ifstream in(file, std::ios::binary);
    std::string bytes(static_cast<size_t>(size), '\0');
    if (!in.read(bytes.data(), static_cast<std::streamsize>(size))) {
        if (error) *error = "cannot read " + file.string();
        return std::nullopt;
    }
    return bytes;
}

bool keepAs(const fs::path& source, const fs::path& target, std::string* error) {
    const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
    const fs::path temp = folder / hiddenName(target, "link.tmp");
    std::error_code ec;
    fs::remove(temp, ec);
    if (::link(source.c_str(), temp.c_str()) == 0) {
        if (::rename(temp.c_str(), target.c_str()) == 0) return true;
        fs::remove(temp, ec);
    }
    return replaceWithCopy(source, target, error);
}

bool replaceWithCopy(const fs::path& source, const fs::path& target, std::string* error) {
    auto bytes = readWholeFile(source, UINTMAX_MAX, error);
    if (!bytes) return false;
    auto staged = StagedFile::write(target, *bytes, error);
    return staged && staged->commit(error);
}

}  // namespace kestrin
