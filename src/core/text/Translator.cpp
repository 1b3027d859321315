#include "text/Translator.h"

#include "text/CatalogRegistry.h"

namespace kestrin {

Translator::Translator(const CatalogRegistry* registry) : m_registry(registry) {}

std::string Translator::text(int32_t id, std::string_view defaultText) const
{
    if (m_registry) {
        for (const int32_t handle : {m_customLanguageDll, m_languageDll}) {
            if (const Catalog* catalog = m_registry->find(handle))
                if (auto found = catalog->lookup(id); found && !found->empty())
                    return std::move(*found);
        }
    }
    return std::string(defaultText.empty() ? NotFoundText : defaultText);
}

}  // namespace kestrin
