#pragma once
#include <QString>
#include <cstdint>

#include "text/LanguageHandle.h"

namespace kestrin {

class CatalogRegistry;

// The language libraries of the process, as a Windows program's loaded modules: a host loads a
// library once and hands its handle to any control in LanguageDLL or CustomLanguageDLL.
// On Windows a language DLL (a file starting with "MZ") is loaded by Windows as a resource
// library and the handle is its module handle, as every Windows host hands it over; a text
// catalog, and on other systems a DLL too, is opened in the process's registry and the handle
// is a small positive number. Gives 0 with the reason (naming the file) in error when the file
// cannot be loaded.
LanguageHandle loadLanguageLibrary(const QString& file, QString* error = nullptr);
// Unloads a library loadLanguageLibrary loaded; controls that still hold its handle fall back to
// their other library and the built-in English texts. False when the handle is not loaded.
bool freeLanguageLibrary(LanguageHandle handle);

// The registry behind the handles of text catalogs, which every control reads by default.
CatalogRegistry& processLanguageLibraries();

}  // namespace kestrin
