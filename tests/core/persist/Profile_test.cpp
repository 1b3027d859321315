// Profile files read and written as the Windows profile functions read and write them, in
// their code page: every byte survives the trip to UTF-8 and back, and what the code page
// cannot hold is written as "?", one for each character or broken byte.
#include <gtest/gtest.h>

#include "persist/Cp1252.h"
#include "persist/ProfileDocument.h"
#include "persist/ProfileStrings.h"
#include "persist/ProfileWriter.h"

using namespace kestrin;
using namespace std::string_literals;

namespace {

std::string join(const std::vector<std::string>& names) {
    std::string out;
    for (const auto& n : names) out += "|" + n;
    return out;
}

// Queries: 's' a string (default "d\t "), 'i' an integer (default 777), 'k' the key names of
// a section, 'S' every section name, 'L' a layout string (quote guard and "/@" undone,
// default "@#@#def").
TEST(ProfileDocument, ReadsAsTheProfileFunctionsDo) {
    const std::string listed = "pre=1\r\n[A]\r\nk1=1\r\n;comment=2\r\nbare\r\nk2=\r\n[B]\r\n[a]\r\nk3=3\r\n";
    const struct { std::string file; char query; const char *section, *key; std::string expected; } cases[] = {
        {"[s]\r\nk=v\r\n", 's', "s", "k", "v"}, {"[s]\nk=v\n", 's', "s", "k", "v"},
        {"[s]\rk=v\r", 's', "s", "k", "v"}, {"\r\n\r\n[s]\r\n\r\n \t k  =  v w \x1A\r\n", 's', "s", "k", "v w"},
        {"[ Section1 ] trailing\r\nk=v\r\n", 's', " SECTION1 ", " K ", "v"},
        {"[s]\r\nk=\"a\"b\"\r\n", 's', "s", "k", "a\"b"}, {"[s]\r\nk=\"mix'\r\n", 's', "s", "k", "\"mix'"},
        {"[s]\r\nk=\"\"\r\n", 's', "s", "k", ""}, {"[s]\r\nk=\"\r\n", 's', "s", "k", "\""},
        {"[s]\r\nk=\" sp \"\r\n", 's', "s", "k", " sp "}, {"[s]\r\nk='x'\r\n", 's', "s", "k", "x"},
        {"[s]\r\nk=\r\n", 's', "s", "k", ""},
        {"[s]\r\nk\r\n", 's', "s", "k", "d\t"},  // no "=": the default, less its trailing blanks
        {"[s]\r\nk=1\r\n[s]\r\nk=2\r\nonly=3\r\n", 's', "s", "only", "d\t"},  // the first section only
        {"[s]\r\nk=1\r\nK=2\r\n", 's', "s", "k", "1"}, {"k=outside\r\n[s]\r\n", 's', "", "k", "d\t"},
        {"[s]\r\n;c=1\r\n", 's', "s", ";c", "1"}, {"[s]\r\n=v\r\n", 's', "s", "", "v"},
        {"[s\r\nk=v\r\n", 's', "s", "k", "d\t"},  // no "]": no header
        {"[s]\r\n[t\r\nk=v\r\n", 's', "s", "k", "v"},
        {"[s]\r\nk=caf\xe9 \x80\x81\r\n", 's', "s", "k", "caf\xc3\xa9 \xe2\x82\xac\xc2\x81"},
        {"\xff\xfe[\0s\0]\0\n\0k\0=\0\xe9\0"s, 's', "s", "k", "\xc3\xa9"},  // UTF-16LE with its mark
        {"[s]\r\nk\r\n", 'i', "s", "k", "777"}, {"[s]\r\nk=\r\n", 'i', "s", "k", "777"},
        {"[s]\r\n", 'i', "t", "k", "777"},
        {listed, 'k', "a", "", "|k1|k2"}, {listed, 'k', "missing", "", ""}, {listed, 'S', "", "", "|A|B|a"},
        {"[s]\r\nk=@#@#\"quoted\"\r\n", 'L', "s", "k", "\"quoted\""},
        {"[s]\r\nk=a/@b/@\r\n", 'L', "s", "k", "a\"b\""}, {"[s]\r\nk=@#@#/@x\r\n", 'L', "s", "k", "\"x"},
        {"[s]\r\nk=x@#@#\r\n", 'L', "s", "k", "x@#@#"}, {"[s]\r\n", 'L', "s", "k", "def"},
        {"[s]\r\nk=" + std::string(1500, 'x'), 'L', "s", "k", std::string(1023, 'x')},
        {"[s]\r\nk=\"" + std::string(1023, 'x') + "\"", 'L', "s", "k", std::string(1023, 'x')},
        {"[s]\r\nk=" + std::string(1100, '\xe9'), 'L', "s", "k",
         [] { std::string e; while (e.size() < 2046) e += "\xc3\xa9"; return e; }()},
    };
    for (const auto& c : cases) {
        const ProfileDocument doc = ProfileDocument::parse(c.file);
        std::string got;
        switch (c.query) {
            case 's': got = doc.getString(c.section, c.key, "d\t "); break;
            case 'i': got = std::to_string(doc.getInt(c.section, c.key, 777)); break;
            case 'k': got = join(doc.keys(c.section)); break;
            case 'S': got = join(doc.sections()); break;
            default: got = readLayoutString(doc, c.section, c.key, "@#@#def");
        }
        EXPECT_EQ(got, c.expected) << c.query << " [" << c.section << "] " << c.key << " of " << c.file.substr(0, 60);
    }
}

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

// Every byte a value can hold (all but line ends and blanks at its ends) reads in and is
// written out again unchanged, Windows-1252 bytes without a character included.
TEST(ProfileWriter, EveryByteOfAValueRoundTrips) {
    std::string value;
    for (int b = 0x21; b <= 0xFF; ++b) value += static_cast<char>(b);
    value += " \x01\x1F\x7F\x21";
    const std::string file = "[s]\r\nk=" + value + "\r\n";
    ProfileWriter w;
    w.write("s", "k", ProfileDocument::parse(file).getString("s", "k", ""));
    EXPECT_EQ(w.bytes(), file);
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
