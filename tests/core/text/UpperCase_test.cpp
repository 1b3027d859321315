#include "text/UpperCase.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(UpperCase, CapitalisesTheLettersOfTheWesternCodePage) {
    const std::pair<const char*, const char*> cases[] = {
        {"<Pages>", "<PAGES>"},
        {"Seiten 1-2", "SEITEN 1-2"},
        {"páginas çà", "PÁGINAS ÇÀ"},
        {"ÿ š œ ž", "Ÿ Š Œ Ž"},
        {"÷ ß µ € 日本", "÷ ß µ € 日本"},  // no single capital, or not a letter of the code page
        {"", ""},
    };
    for (auto [text, upper] : cases) EXPECT_EQ(upperCase(text), upper) << text;
}

}  // namespace
}  // namespace kestrin
