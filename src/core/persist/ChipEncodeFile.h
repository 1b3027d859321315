#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestrin {

class HostFieldList;

inline constexpr std::string_view kChipEncodeVersion = "7.0.0";
inline constexpr std::string_view kEncoderLibrary = "MORVATH.DLL";

// The host fields that a save's used-field list names, in the host's field order. A field
// counts only where its name stands right after ")" and runs up to the next "(", so that
// Name is not taken for used because of the keys FirstName(1) or Names(1). A field is found
// by its display name or by its database field name.
std::vector<std::string> usedHostFields(std::string_view usedFieldList, const HostFieldList& fields);

// The chip encode file for the host's encoder library, Windows-1252.
std::string renderChipEncodeFile(std::string_view usedFieldList, const std::vector<int16_t>& bigItemNumbers,
                                 const HostFieldList& fields);

}  // namespace kestrin
