#include "text/TextCatalog.h"

#include "text/UtfConvert.h"

namespace kestrin {
namespace {

constexpr uint32_t HighestId = 0xFFFF;

bool isBlank(char c) { return c == ' ' || c == '\t'; }

std::string_view trimBlanks(std::string_view text)
{
    while (!text.empty() && isBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

// The decimal id, or nothing when it is not one in 0-65535.
std::optional<uint16_t> parseId(std::string_view digits)
{
    if (digits.empty())
        return std::nullopt;
    uint32_t value = 0;
    for (const char c : digits) {
        if (c < '0' || c > '9')
            return std::nullopt;
        value = value * 10 + static_cast<uint32_t>(c - '0');
        if (value > HighestId)
            return std::nullopt;
    }
    return static_cast<uint16_t>(value);
}

// Turns \n, \r, \t and \\ into their characters; any other backslash stays as written,
// so that paths and the like need no doubling.
std::string unescape(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = i + 1 < text.size() ? text[i + 1] : '\0';
        if (text[i] == '\\' && (next == 'n' || next == 'r' || next == 't' || next == '\\')) {
            out += next == 'n' ? '\n' : next == 'r' ? '\r' : next == 't' ? '\t' : '\\';
            ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

}  // namespace

std::unique_ptr<TextCatalog> TextCatalog::parse(std::string_view content, std::string* error)
{
    const auto fail = [&](const char* reason) {
        if (error)
            *error = reason;
        return std::unique_ptr<TextCatalog>();
    };
    if (content.starts_with("\xFF\xFE") || content.starts_with("\xFE\xFF"))
        return fail("a UTF-16 text file; save the catalog as UTF-8");
    if (content.find('\0') != std::string_view::npos)
        return fail("a binary file (it holds NUL bytes), neither a Windows DLL nor a UTF-8 text catalog");
    if (content.starts_with("\xEF\xBB\xBF"))
        content.remove_prefix(3);

    std::unique_ptr<TextCatalog> catalog(new TextCatalog());
    std::size_t lineNumber = 0;
    while (!content.empty()) {
        ++lineNumber;
        const std::size_t end = content.find('\n');
        std::string_view line = content.substr(0, end);
        content.remove_prefix(end == std::string_view::npos ? content.size() : end + 1);
        if (line.ends_with('\r'))
            line.remove_suffix(1);

        const std::string_view trimmed = trimBlanks(line);
        if (trimmed.empty() || trimmed.front() == '#')
            continue;
        const auto warn = [&](std::string message) {
            catalog->m_warnings.push_back({lineNumber, std::move(message)});
        };
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) {
            warn("no '=' between id and text");
            continue;
        }
        const std::string_view idText = trimBlanks(line.substr(0, equals));
        const auto id = parseId(idText);
        if (!id) {
            warn("the id \"" + std::string(idText) + "\" is not a number from 0 to 65535");
            continue;
        }
        const std::string_view text = line.substr(equals + 1);
        if (!isValidUtf8(text)) {
            warn("the text is not valid UTF-8 (save the catalog as UTF-8)");
            continue;
        }
        std::string value(cutUtf8(unescape(text)));
        if (value.empty())
            catalog->m_texts.erase(*id);  // a later empty text still wins: the id has none
        else
            catalog->m_texts.insert_or_assign(*id, std::move(value));
    }
    return catalog;
}

std::optional<std::string> TextCatalog::lookup(int32_t id) const
{
    const auto found = m_texts.find(static_cast<uint16_t>(id));
    if (found == m_texts.end())
        return std::nullopt;
    return found->second;
}

}  // namespace kestrin
