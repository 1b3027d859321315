#pragma once
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <string>

#include "text/Catalog.h"
#include "text/LanguageHandle.h"

namespace kestrin {

// The language libraries a host has opened, each under a small positive handle that the
// host puts into LanguageDLL / CustomLanguageDLL. The handles it gives fit 32 bits, what a
// 32-bit host keeps in such a property; any LanguageHandle may be looked up, so a module
// handle is never cut to one of them. One registry per host process (or test).
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
    bool close(LanguageHandle handle);

    // The library behind handle, or nullptr for 0 or a handle that is not open.
    const Catalog* find(LanguageHandle handle) const;

    // How many libraries are open.
    std::size_t size() const { return m_catalogs.size(); }

private:
    std::map<LanguageHandle, std::unique_ptr<Catalog>> m_catalogs;
    int32_t m_lastHandle = 0;
};

}  // namespace kestrin
