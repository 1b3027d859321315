#include "Pages.h"

#include "base/KestrinError.h"

namespace kestrin {

namespace {
constexpr const char* kSource = "Pages";

[[noreturn]] void subscriptOutOfRange() {
    throw KestrinError(kErrSubscriptOutOfRange, kSource, "Subscript out of range");
}
[[noreturn]] void invalidKey() {
    throw KestrinError(kErrInvalidCall, kSource, "Invalid procedure call or argument");
}
}  // namespace

Pages::Pages(const Pages& other) {
    *this = other;
}

Pages& Pages::operator=(const Pages& other) {
    if (this == &other) return *this;
    std::vector<Entry> copy;
    copy.reserve(other.entries_.size());
    for (const auto& e : other.entries_) copy.push_back({e.key, std::make_unique<CPage>(*e.page)});
    entries_ = std::move(copy);
    return *this;
}

CPage& Pages::Add(const std::string& Key, int32_t PageNumber, const std::string& sKey) {
    if (!sKey.empty() && find(sKey) != nullptr)
        throw KestrinError(457, kSource, "This key is already associated with an element of this collection");
    auto page = std::make_unique<CPage>();
    page->Key = Key;
    page->PageNumber = PageNumber;
    entries_.push_back({sKey, std::move(page)});
    return *entries_.back().page;
}

size_t Pages::indexOf(int32_t position) const {
    if (position < 1 || position > Count()) subscriptOutOfRange();
    return static_cast<size_t>(position - 1);
}

size_t Pages::indexOf(const std::string& key) const {
    for (size_t i = 0; i < entries_.size(); ++i)
        if (!entries_[i].key.empty() && entries_[i].key == key) return i;
    invalidKey();
}

CPage& Pages::Item(int32_t position) { return *entries_[indexOf(position)].page; }
const CPage& Pages::Item(int32_t position) const { return *entries_[indexOf(position)].page; }
CPage& Pages::Item(const std::string& key) { return *entries_[indexOf(key)].page; }
const CPage& Pages::Item(const std::string& key) const { return *entries_[indexOf(key)].page; }

CPage* Pages::find(const std::string& key) {
    for (auto& e : entries_)
        if (!e.key.empty() && e.key == key) return e.page.get();
    return nullptr;
}

const CPage* Pages::find(const std::string& key) const {
    return const_cast<Pages*>(this)->find(key);
}

void Pages::Remove(int32_t position) {
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(indexOf(position)));
}

void Pages::Remove(const std::string& key) {
    entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(indexOf(key)));
}

std::vector<CPage*> Pages::list() {
    std::vector<CPage*> out;
    for (auto& e : entries_) out.push_back(e.page.get());
    return out;
}

std::vector<const CPage*> Pages::list() const {
    std::vector<const CPage*> out;
    for (const auto& e : entries_) out.push_back(e.page.get());
    return out;
}

}  // namespace kestrin
