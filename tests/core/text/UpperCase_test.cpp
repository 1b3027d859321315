#include "text/UpperCase.h"

#include <gtest/gtest.h>

namespace kestrin {
namespace {

TEST(UpperCase, CapitalisesTheLettersOfTheWesternCodePage) {
    // The last row has no single capital (ß) or is no letter of the code page.
    const std::pair<const char*, const char*> cases[] = {
        {"<Pages> 1-2", "<PAGES> 1-2"}, {"páginas çà", "PÁGINAS ÇÀ"}, {"ÿ š œ ž", "Ÿ Š Œ Ž"}, {"÷ ß µ € 日本", "÷ ß µ € 日本"}};
    for (auto [text, upper] : cases) EXPECT_EQ(upperCase(text), upper) << text;
}

}  // namespace
}  // namespace kestrin
