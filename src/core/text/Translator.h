#pragma once
#include <cstdint>
#include <string>
#include <string_view>

#include "TextIds.h"

namespace kestrin {

class CatalogRegistry;

// Finds the text a host shows for a text number: the custom library first, then the
// standard library, then the caller's default, then a fixed marker. Keeps nothing but
// the two handles, so a library opened or closed later is seen at once.
class Translator {
public:
    // What text() gives when no library has the number and there is no default.
    static constexpr std::string_view NotFoundText = "*=*+*";

    explicit Translator(const CatalogRegistry* registry = nullptr);

    int32_t LanguageDLL() const { return m_languageDll; }
    void setLanguageDLL(int32_t handle) { m_languageDll = handle; }
    int32_t CustomLanguageDLL() const { return m_customLanguageDll; }
    void setCustomLanguageDLL(int32_t handle) { m_customLanguageDll = handle; }

    // A zero or unknown handle is skipped; the default is returned as it stands.
    std::string text(int32_t id, std::string_view defaultText = {}) const;
    std::string text(const TextRef& ref) const { return text(ref.id, ref.defaultText); }

private:
    const CatalogRegistry* m_registry;
    int32_t m_languageDll = 0;
    int32_t m_customLanguageDll = 0;
};

}  // namespace kestrin
