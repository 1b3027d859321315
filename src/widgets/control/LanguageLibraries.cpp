#include "LanguageLibraries.h"

#include <filesystem>
#include <string>

#include "text/CatalogRegistry.h"

namespace kestrin {

CatalogRegistry& processLanguageLibraries() {
    static CatalogRegistry libraries;
    return libraries;
}

int32_t loadLanguageLibrary(const QString& file, QString* error) {
    std::string why;
    const int32_t handle = processLanguageLibraries().open(std::filesystem::path(file.toStdU16String()), &why);
    if (error) *error = QString::fromStdString(why);
    return handle;
}

bool freeLanguageLibrary(int32_t handle) {
    return processLanguageLibraries().close(handle);
}

}  // namespace kestrin
