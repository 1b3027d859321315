#pragma once
#include <QString>
#include <cstdint>

namespace kestrin {

class CatalogRegistry;

// The language libraries of the process, as a Windows program's loaded modules: a host loads a
// library once (a Windows language DLL or a text catalog) and hands its handle to any control in
// LanguageDLL or CustomLanguageDLL. Gives a handle that is never 0 and never given before, or 0
// with the reason (naming the file) in error.
int32_t loadLanguageLibrary(const QString& file, QString* error = nullptr);
// Forgets a library; controls that still hold its handle fall back to their other library and
// the built-in English texts. False when the handle is not loaded.
bool freeLanguageLibrary(int32_t handle);

// The registry behind those handles, which every control reads by default.
CatalogRegistry& processLanguageLibraries();

}  // namespace kestrin
