#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "CPage.h"

namespace kestrin {

// The card's ordered collection of pages, addressed by 1-based position or by text key.
// Lookups that miss raise KestrinError as the collection's run-time errors.
class Pages {
public:
    Pages() = default;
    Pages(const Pages& other);
    Pages& operator=(const Pages& other);
    Pages(Pages&&) noexcept = default;
    Pages& operator=(Pages&&) noexcept = default;

    // Adds a page with Key and PageNumber, under the text key sKey when it is not empty.
    CPage& Add(const std::string& Key, int32_t PageNumber, const std::string& sKey = {});
    CPage& Item(int32_t position);
    const CPage& Item(int32_t position) const;
    CPage& Item(const std::string& key);
    const CPage& Item(const std::string& key) const;
    CPage* find(const std::string& key);
    const CPage* find(const std::string& key) const;
    int32_t Count() const { return static_cast<int32_t>(entries_.size()); }
    void Remove(int32_t position);
    void Remove(const std::string& key);
    void clear() { entries_.clear(); }

    // Enumeration in insertion order, as for-each over the collection gives it.
    template <class Fn>
    void forEach(Fn&& fn) const {
        for (const auto& e : entries_) fn(*e.page);
    }
    std::vector<CPage*> list();
    std::vector<const CPage*> list() const;

private:
    struct Entry {
        std::string key;  // empty when added without a key
        std::unique_ptr<CPage> page;
    };
    size_t indexOf(int32_t position) const;
    size_t indexOf(const std::string& key) const;

    std::vector<Entry> entries_;
};

}  // namespace kestrin
