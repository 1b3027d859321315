#include "text/CatalogRegistry.h"

#include <fstream>
#include <limits>
#include <optional>

#include "base/PathText.h"
#include "text/PeStringTable.h"
#include "text/TextCatalog.h"

namespace kestrin {
namespace {

// The whole file, or nothing with the reason in reason.
std::optional<std::string> readLibraryFile(const std::filesystem::path& path, std::string& reason)
{
    std::error_code code;
    const auto status = std::filesystem::status(path, code);
    if (status.type() == std::filesystem::file_type::not_found) {
        reason = "no such file";
        return std::nullopt;
    }
    if (code) {
        reason = "cannot be reached (" + code.message() + ")";
        return std::nullopt;
    }
    if (std::filesystem::is_directory(status)) {
        reason = "a folder, not a file";
        return std::nullopt;
    }
    const std::uintmax_t size = std::filesystem::file_size(path, code);
    if (code) {
        reason = "cannot read its size (" + code.message() + ")";
        return std::nullopt;
    }
    if (size > CatalogRegistry::MaxFileSize) {
        reason = "larger than 64 MiB, too large for a language library";
        return std::nullopt;
    }
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        reason = "cannot be opened for reading";
        return std::nullopt;
    }
    // Reads one byte more than allowed so that a file grown since the size check is caught.
    std::string content(static_cast<std::size_t>(size) + 1, '\0');
    in.read(content.data(), static_cast<std::streamsize>(content.size()));
    if (in.bad()) {
        reason = "a read error";
        return std::nullopt;
    }
    content.resize(static_cast<std::size_t>(in.gcount()));
    if (content.size() > CatalogRegistry::MaxFileSize) {
        reason = "larger than 64 MiB, too large for a language library";
        return std::nullopt;
    }
    return content;
}

}  // namespace

int32_t CatalogRegistry::open(const std::filesystem::path& path, std::string* error)
{
    std::string reason;
    std::unique_ptr<Catalog> catalog;
    if (m_lastHandle == std::numeric_limits<int32_t>::max()) {
        reason = "no handles left in this session";
    } else if (const auto content = readLibraryFile(path, reason)) {
        if (content->starts_with("MZ"))
            catalog = PeStringTable::parse(*content, &reason);
        else
            catalog = TextCatalog::parse(*content, &reason);
    }
    if (!catalog) {
        if (error)
            *error = "Cannot open the language library \"" + pathText(path) + "\": " + reason + ".";
        return 0;
    }
    const int32_t handle = ++m_lastHandle;
    m_catalogs.emplace(handle, std::move(catalog));
    return handle;
}

bool CatalogRegistry::close(LanguageHandle handle)
{
    return m_catalogs.erase(handle) != 0;
}

const Catalog* CatalogRegistry::find(LanguageHandle handle) const
{
    const auto found = m_catalogs.find(handle);
    return found == m_catalogs.end() ? nullptr : found->second.get();
}

}  // namespace kestrin
