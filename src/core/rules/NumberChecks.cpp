#include "NumberChecks.h"

#include "base/NumberText.h"
#include "base/ProductInfo.h"
#include "base/Prompter.h"
#include "text/Translator.h"

namespace kestrin {

namespace {

std::string outOfRange(int64_t min, int64_t max, const Translator& tr) {
    return tr.text(kTextOutOfRange, "<Please enter a value between>") + " " + std::to_string(min) + " & " +
           std::to_string(max) + "!";
}

std::string notANumber(const Translator& tr) {
    return tr.text(kTextNotANumber, "<Please enter a number.>");
}

bool isBlank(std::string_view text) {
    return text.find_first_not_of(" \t") == std::string_view::npos;
}

bool show(const NumberCheck& check, const std::string& title, Prompter& prompter) {
    if (!check.ok) prompter.tell(Icon::Exclamation, check.message, title.empty() ? kProductTitle : title);
    return check.ok;
}

}  // namespace

NumberCheck checkNumberInRange(int64_t min, int64_t max, std::string_view text, const Translator& translator) {
    if (isBlank(text)) return {false, kTextOutOfRange, outOfRange(min, max, translator)};
    const auto value = numericValue(text);
    if (!value) return {false, kTextNotANumber, notANumber(translator)};
    if (*value < static_cast<double>(min) || *value > static_cast<double>(max))
        return {false, kTextOutOfRange, outOfRange(min, max, translator)};
    return {};
}

NumberCheck checkNumberEquals(int64_t required, std::string_view text, const Translator& translator) {
    const NumberCheck wrong{false, kTextNotExactly,
                            translator.text(kTextNotExactly, "<The value must be exactly>") + " " +
                                std::to_string(required) + "!"};
    if (isBlank(text)) return wrong;
    const auto value = numericValue(text);
    if (!value) return {false, kTextNotANumber, notANumber(translator)};
    return *value == static_cast<double>(required) ? NumberCheck{} : wrong;
}

bool CheckNumberInRange(int64_t min, int64_t max, std::string_view text, const std::string& title, Prompter& prompter,
                        const Translator& translator) {
    return show(checkNumberInRange(min, max, text, translator), title, prompter);
}

}  // namespace kestrin
