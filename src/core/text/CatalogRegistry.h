#pragma once
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "text/Catalog.h"

namespace kestrin {

// The language libraries a host has opened, each under a nonzero 32-bit handle that the
// host puts into LanguageDLL / CustomLanguageDLL. One registry per host process (or test).
class CatalogRegistry {
public:
    // Larger files are refused before they are read.
    static constexpr std::uintmax_t MaxFileSize = 64u * 1024 * 1024;

    CatalogRegistry() = default;
    CatalogRegistry(const CatalogRegistry&) = delete;
    CatalogRegistry& operator=(const CatalogRegistry&) = delete;

    // Opens a language library: a file starting with "MZ" is read as a Windows DLL,
    // anything else as a UTF-8 text catalog. Gives a new handle, never one given before,
    // or 0 with the reason (naming the file) in error.
    int32_t open(const std::filesystem::path& path, std::string* error = nullptr);

    // Forgets the library; false when the handle is not open.
    bool close(int32_t handle);

    // The library behind handle, or nullptr for 0 or a handle that is not open.
    const Catalog* find(int32_t handle) const;

    // How many libraries are open.
    std::size_t size() const { return m_catalogs.size(); }

private:
    std::map<int32_t, std::unique_ptr<Catalog>> m_catalogs;
    int32_t m_lastHandle = 0;
};

}  // namespace kestrin
