// Profile values as the Windows profile functions read them: integers parsed their way, and
// every byte of the code page surviving the trip to UTF-8 and back, what it cannot hold
// written as "?", one for each character or broken byte.
#include <gtest/gtest.h>

#include "persist/Cp1252.h"
#include "persist/ProfileDocument.h"

using namespace kestrin;
using namespace std::string_literals;

namespace {

TEST(ProfileDocument, IntegersParseAsTheProfileFunctionsDo) {
    const struct { const char* value; int32_t expected; } cases[] = {
        {"-1", -1},        {"+1", 1},          {"4294967296", 0},  {"4294967297", 1}, {"42A94967297", 42},
        {"B4294967297", 0}, {" 42", 42},       {"42abc", 42},      {"010", 10},       {"\"12\"", 12},
        {"- 5", 0},        {"1e3", 1},         {"0x1F", 31},       {"0X1F", 0},       {"0o17", 15},
        {"0b101", 5},      {"0b102", 2},       {"0o78", 7},        {"0xfG", 15},      {"''", 777},
        {"2147483648", INT32_MIN},             {"00000000000000000000000000001234", 1},  // 29 characters
    };
    for (const auto& c : cases)
        EXPECT_EQ(ProfileDocument::parse("[s]\r\nk="s + c.value + "\r\n").getInt("s", "k", 777), c.expected) << c.value;
}

TEST(Cp1252, EveryByteComesBackFromUtf8AndWhatItCannotHoldBecomesQuestionMarks) {
    for (int b = 0; b < 256; ++b)
        EXPECT_EQ(utf8ToCp1252(cp1252ToUtf8(std::string(1, static_cast<char>(b)))), std::string(1, static_cast<char>(b))) << b;
    const std::pair<std::string, std::string> cases[] = {
        {"\xE2\x82\xAC 5", "\x80 5"},  // the euro sign has a byte of its own
        {"\xE6\x97\xA5", "?"},          // one character, one mark
        {"\xF4\x8F\xBF\xBF", "?"},      // the last code point
        {"\xF4\x90\x80\x80", "????"},   // beyond it: four broken bytes
        {"\xED\xA0\x80", "???"},        // a surrogate half
        {"\xC0\xAF", "??"},             // an overlong form
        {"a\xE2\x82", "a??"},           // cut short
    };
    for (const auto& [utf8, bytes] : cases) EXPECT_EQ(utf8ToCp1252(utf8), bytes);
}

}  // namespace
