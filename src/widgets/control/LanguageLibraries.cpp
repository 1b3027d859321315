#include "LanguageLibraries.h"

#include <filesystem>
#include <string>

#include "text/CatalogRegistry.h"

#ifdef _WIN32
#include <windows.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <set>
#endif

namespace kestrin {

CatalogRegistry& processLanguageLibraries() {
    static CatalogRegistry libraries;
    return libraries;
}

#ifdef _WIN32
namespace {

// The modules loadLanguageLibrary loaded (one entry a load), so that only those are ever freed.
std::multiset<LanguageHandle>& loadedModules() {
    static std::multiset<LanguageHandle> modules;
    return modules;
}

bool isWindowsImage(const QString& file) {
    QFile in(file);
    return in.open(QIODevice::ReadOnly) && in.read(2) == "MZ";
}

// Loaded as a data file and image resource, as Windows loads resource-only libraries: no code of
// the file runs, it needs no free place at its preferred address, and a 32-bit library serves a
// 64-bit host as well. LoadString reads the sections as mapped.
LanguageHandle loadModule(const QString& file, QString* error) {
    const QString path = QDir::toNativeSeparators(QFileInfo(file).absoluteFilePath());
    const HMODULE module = LoadLibraryExW(reinterpret_cast<const wchar_t*>(path.utf16()), nullptr,
                                          LOAD_LIBRARY_AS_DATAFILE | LOAD_LIBRARY_AS_IMAGE_RESOURCE);
    if (!module) {
        const auto code = static_cast<int>(GetLastError());
        QString reason = qt_error_string(code).trimmed();
        if (reason.endsWith(u'.')) reason.chop(1);
        if (error)
            *error = QStringLiteral("Cannot open the language library \"%1\": Windows cannot load it (error %2: %3).")
                         .arg(path, QString::number(code), reason);
        return 0;
    }
    const auto handle = reinterpret_cast<LanguageHandle>(module);
    loadedModules().insert(handle);
    if (error) error->clear();
    return handle;
}

}  // namespace
#endif

LanguageHandle loadLanguageLibrary(const QString& file, QString* error) {
#ifdef _WIN32
    if (isWindowsImage(file)) return loadModule(file, error);
#endif
    std::string why;
    const int32_t handle = processLanguageLibraries().open(std::filesystem::path(file.toStdU16String()), &why);
    if (error) *error = QString::fromStdString(why);
    return handle;
}

bool freeLanguageLibrary(LanguageHandle handle) {
#ifdef _WIN32
    if (const auto loaded = loadedModules().find(handle); loaded != loadedModules().end()) {
        loadedModules().erase(loaded);
        return FreeLibrary(reinterpret_cast<HMODULE>(handle)) != 0;
    }
#endif
    return processLanguageLibraries().close(handle);
}

}  // namespace kestrin
