// Profile values as the Windows profile functions read them: integers parsed their way, and
// every byte of the code page surviving the trip to UTF-8 and back, what it cannot hold
// written as "?", one for each character or broken byte.
#include <gtest/gtest.h>

#include "persist/Cp1252.h"
#include "persist/ProfileDocument.h"
#include "persist/ProfileWriter.h"

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
        {"\xE0\xA0\x80", "?"},          // the first three-byte code point
        {"\xF4\x8F\xBF\xBF", "?"},      // the last code point
        {"\xF4\x90\x80\x80", "????"},   // beyond it: four broken bytes
        {"\xED\xA0\x80", "???"},        // a surrogate half
        {"\xC0\xAF", "??"},             // an overlong form
        {"a\xE2\x82", "a??"},           // cut short
        {"\xF0\x90\x80\x80\xC2\xA9", "?\xA9"},  // the first four-byte code point is one; the lowest two-byte lead
    };
    for (const auto& [utf8, bytes] : cases) EXPECT_EQ(utf8ToCp1252(utf8), bytes);
}

// Listing a section gives the names of its entries with "=" that do not start with ";", of the
// first section of that name; listing the file gives every section name, duplicates included.
TEST(ProfileDocument, ListsKeysAndSectionsAsTheProfileFunctionsDo) {
    const auto doc = ProfileDocument::parse("x=0\r\n[s]\r\na=1\r\nno equals\r\n;c=1\r\n=v\r\nb=\r\n[T]\r\n[ s ]\r\nlater=2\r\n");
    EXPECT_EQ(std::tuple(doc.keys("S"), doc.sections()),
              std::tuple(std::vector<std::string>{"a", "", "b"}, std::vector<std::string>{"s", "T", "s"}));
    EXPECT_EQ(std::tuple(doc.hasSection(" t "), doc.hasSection("S"), doc.hasSection("u"), doc.keys("u").size()),
              std::tuple(true, true, false, 0u));
}

// A file with names outside ASCII is written in the code page, a section's name too.
TEST(ProfileWriter, WritesANonAsciiSectionNameInTheCodePage) {
    ProfileWriter writer;
    writer.write("Caf\xC3\xA9", "k", "v");
    EXPECT_EQ(writer.bytes(), "[Caf\xE9]\r\nk=v\r\n");
}

}  // namespace
