#pragma once
#include <cstdint>
#include <string_view>

namespace kestrin {

// A text of the language libraries: its number and the English default the code shows when
// no library has it.
struct TextRef {
    int32_t id;
    std::string_view defaultText;
};

// Texts shown in more than one place: the grids, the item dialogs, the preview.
inline constexpr TextRef kTextValue{3106, "<Value>"};
inline constexpr TextRef kTextStep{3107, "<Step>"};
inline constexpr TextRef kTextDecimal{3108, "<Decimal>"};
inline constexpr TextRef kTextField{3111, "<Field>"};
inline constexpr TextRef kTextFunction{3112, "<Function>"};
inline constexpr TextRef kTextBlock{3115, "Block"};
inline constexpr TextRef kTextBeginByte{3116, "<Begin Byte>"};
inline constexpr TextRef kTextNoOfBytes{3117, "<No. of Bytes>"};
inline constexpr TextRef kTextFunctionProperties{3120, "<Function properties>"};
inline constexpr TextRef kTextFields{3137, "<Fields>"};
inline constexpr TextRef kTextAddTo{3138, "<Add to>"};
inline constexpr TextRef kTextStartValue{3146, "<Start value>"};
inline constexpr TextRef kTextNumber{3147, "<Number>"};
inline constexpr TextRef kTextApply{3153, "<&Apply>"};
inline constexpr TextRef kTextFieldName{3154, "<Field Name>"};
inline constexpr TextRef kTextMotorola{3168, "<Motorola dec.(HiByte-LoByte)>"};
inline constexpr TextRef kTextFieldTypeColumn{3184, "<Field Type>"};
inline constexpr TextRef kTextPage{4606, "<Page>"};
inline constexpr TextRef kTextBeginBit{4607, "<Begin Bit>"};
inline constexpr TextRef kTextPages{4621, "<Pages>"};
inline constexpr TextRef kTextPrintToFile{4635, "<Print to &file>"};
inline constexpr TextRef kTextNoOfBits{4642, "<No of Bits>"};

}  // namespace kestrin
