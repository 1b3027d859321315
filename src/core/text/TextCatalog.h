#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "text/Catalog.h"

namespace kestrin {

// A language library written as plain UTF-8 text, one "id=text" a line.
// Ids are 0-65535; like a DLL, a lookup counts only the low 16 bits of the number asked
// for, and a text longer than 255 UTF-16 units comes cut, so both kinds behave alike.
class TextCatalog final : public Catalog {
public:
    struct Warning {
        std::size_t line;     // 1-based
        std::string message;  // says what is wrong with the line; the line itself was skipped
    };

    // Reads the whole catalog. Malformed lines are skipped and reported in warnings().
    // Content that cannot be a UTF-8 text file (NUL bytes, a UTF-16 byte order mark)
    // gives nullptr and, when error is given, the reason. Throws only std::bad_alloc.
    static std::unique_ptr<TextCatalog> parse(std::string_view content, std::string* error = nullptr);

    std::optional<std::string> lookup(int32_t id) const override;

    const std::vector<Warning>& warnings() const { return m_warnings; }
    // How many ids have a non-empty text.
    std::size_t size() const { return m_texts.size(); }

private:
    TextCatalog() = default;

    std::unordered_map<uint16_t, std::string> m_texts;
    std::vector<Warning> m_warnings;
};

}  // namespace kestrin
