#pragma once
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "text/Catalog.h"

namespace kestrin {

// The string-table resources of a Windows language DLL (32- or 64-bit), read from the
// file's bytes on any OS and answered the way a host's LoadStringA would answer them.
class PeStringTable final : public Catalog {
public:
    enum class Format { Pe32, Pe32Plus };

    // Reads every string table of the image at once. A file that is not a usable PE
    // image gives nullptr and, when error is given, the reason. Throws only std::bad_alloc.
    static std::unique_ptr<PeStringTable> parse(std::string_view image, std::string* error = nullptr);

    // Only the low 16 bits of id count; a text longer than 255 UTF-16 units comes cut.
    std::optional<std::string> lookup(int32_t id) const override;

    Format format() const { return m_format; }
    // How many ids have a non-empty text.
    std::size_t size() const { return m_texts.size(); }

private:
    PeStringTable(Format format, std::unordered_map<uint16_t, std::string> texts);

    Format m_format;
    std::unordered_map<uint16_t, std::string> m_texts;
};

}  // namespace kestrin
