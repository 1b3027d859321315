#include "text/Translator.h"

#include "text/CatalogRegistry.h"
#include "text/ModuleStrings.h"

namespace kestrin {

Translator::Translator(const CatalogRegistry* registry) : m_registry(registry) {}

std::string Translator::text(int32_t id, std::string_view defaultText) const
{
    for (const LanguageHandle handle : {m_customLanguageDll, m_languageDll}) {
        if (handle == 0)
            continue;
        const Catalog* catalog = m_registry ? m_registry->find(handle) : nullptr;
        if (auto found = catalog ? catalog->lookup(id) : moduleString(handle, id); found && !found->empty())
            return std::move(*found);
    }
    return std::string(defaultText.empty() ? NotFoundText : defaultText);
}

}  // namespace kestrin
