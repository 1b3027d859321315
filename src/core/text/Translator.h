#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "TextIds.h"
#include "text/LanguageHandle.h"

namespace kestrin {

class CatalogRegistry;

// Finds the text a host shows for a text number: the custom library first, then the
// standard library, then the caller's default, then a fixed marker. A handle is looked up
// in the registry first; one the registry does not know may be a library the host loaded
// itself (a module handle on Windows). Keeps nothing but the two handles, so a library
// opened, loaded or freed later is seen at once.
class Translator {
public:
    // What text() gives when no library has the number and there is no default.
    static constexpr std::string_view NotFoundText = "*=*+*";

    explicit Translator(const CatalogRegistry* registry = nullptr);

    LanguageHandle LanguageDLL() const { return m_languageDll; }
    void setLanguageDLL(LanguageHandle handle) { m_languageDll = handle; }
    LanguageHandle CustomLanguageDLL() const { return m_customLanguageDll; }
    void setCustomLanguageDLL(LanguageHandle handle) { m_customLanguageDll = handle; }

    // A zero handle, or one that names no library, is skipped; the default is returned as it stands.
    std::string text(int32_t id, std::string_view defaultText = {}) const;
    std::string text(const TextRef& ref) const { return text(ref.id, ref.defaultText); }

private:
    const CatalogRegistry* m_registry;
    LanguageHandle m_languageDll = 0;
    LanguageHandle m_customLanguageDll = 0;
};

}  // namespace kestrin
