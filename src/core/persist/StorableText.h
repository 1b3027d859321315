#pragma once
#include <optional>
#include <string>
#include <string_view>

namespace kestrin {

class RecordArray;

// Why a text cannot be stored in a layout file so that it reads back the same, or nothing.
// Names become keys: they must not be empty, start or end with blanks, start with "[" or
// ";", or hold "=" or a line break. Values must hold no line break and no "/@" (which reads
// back as a double quote). Both must be Windows-1252 characters.
std::optional<std::string> unstorableName(std::string_view name);
std::optional<std::string> unstorableValue(std::string_view value);

// The operator's message for the first item whose name or value cannot be stored (or that is
// not a function but named "Checksum", which the file keeps for checksums), or nothing.
std::optional<std::string> unstorableItem(const RecordArray& records);

}  // namespace kestrin
