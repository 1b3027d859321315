#pragma once
#include <cstdint>
#include <string>
#include <string_view>

namespace kestrin {

class Prompter;
class Translator;

inline constexpr int32_t kTextOutOfRange = 3189;
inline constexpr int32_t kTextNotANumber = 3190;
inline constexpr int32_t kTextNotExactly = 3288;

// The outcome of a number box check: the message the operator sees when it fails.
struct NumberCheck {
    bool ok = true;
    int32_t textId = 0;
    std::string message;
};

// Empty text or a number outside min..max: text 3189 with " min & max!"; not a number: 3190.
NumberCheck checkNumberInRange(int64_t min, int64_t max, std::string_view text, const Translator& translator);
// Empty text or another number: text 3288 with " required!"; not a number: 3190.
NumberCheck checkNumberEquals(int64_t required, std::string_view text, const Translator& translator);

// True when the value is acceptable; a failure is shown with the given title, or the
// control's message title when it is empty.
bool CheckNumberInRange(int64_t min, int64_t max, std::string_view text, const std::string& title, Prompter& prompter,
                        const Translator& translator);

}  // namespace kestrin
