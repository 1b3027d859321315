#include <gtest/gtest.h>

#include "persist/ProfileDocument.h"
#include "persist/ProfileStrings.h"

using namespace kestrin;

namespace {

struct IntCase {
    const char* value;
    int32_t expected;
};

class ProfileInt : public ::testing::TestWithParam<IntCase> {};

TEST_P(ProfileInt, ParsesAsTheProfileFunctionDoes) {
    const auto c = GetParam();
    const auto doc = ProfileDocument::parse(std::string("[s]\r\nk=") + c.value + "\r\n");
    EXPECT_EQ(doc.getInt("s", "k", 777), c.expected) << c.value;
}

INSTANTIATE_TEST_SUITE_P(
    Values, ProfileInt,
    ::testing::Values(IntCase{"-1", -1}, IntCase{"+1", 1}, IntCase{"4294967296", 0}, IntCase{"4294967297", 1},
                      IntCase{"42A94967297", 42}, IntCase{"B4294967297", 0}, IntCase{" 42", 42},
                      IntCase{"42abc", 42}, IntCase{"010", 10}, IntCase{"\"12\"", 12}, IntCase{"- 5", 0},
                      IntCase{"1e3", 1}, IntCase{"0x1F", 31}, IntCase{"0X1F", 0}, IntCase{"0o17", 15},
                      IntCase{"0b101", 5}, IntCase{"", 777}, IntCase{"''", 777},
                      // only the first 29 characters are looked at
                      IntCase{"00000000000000000000000000001234", 1}));

TEST(ProfileDocument, MissingKeyOrEntryWithoutEqualsGivesDefaultInt) {
    const auto doc = ProfileDocument::parse("[s]\r\nnovalue\r\n");
    EXPECT_EQ(doc.getInt("s", "novalue", 9), 9);
    EXPECT_EQ(doc.getInt("s", "missing", -3), -3);
    EXPECT_EQ(doc.getInt("nosection", "k", 4), 4);
}

struct StringCase {
    const char* file;
    const char* section;
    const char* key;
    const char* defaultText;
    const char* expected;
};

class ProfileString : public ::testing::TestWithParam<StringCase> {};

TEST_P(ProfileString, ReadsAsTheProfileFunctionDoes) {
    const auto c = GetParam();
    EXPECT_EQ(ProfileDocument::parse(c.file).getString(c.section, c.key, c.defaultText), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Values, ProfileString,
    ::testing::Values(
        StringCase{"[s]\r\nk=v\r\n", "s", "k", "d", "v"},
        StringCase{"[s]\nk=v\n", "s", "k", "d", "v"},                          // LF alone
        StringCase{"[s]\rk=v\r", "s", "k", "d", "v"},                          // CR alone
        StringCase{"\r\n\r\n[s]\r\n\r\n  k  =  v w  \r\n", "s", "k", "d", "v w"},  // trimming
        StringCase{"[ Section1 ] trailing\r\nk=v\r\n", "section1", "K", "d", "v"},  // names ignore case
        StringCase{"[s]\r\nk=\"a\"b\"\r\n", "s", "k", "d", "a\"b"},
        StringCase{"[s]\r\nk=\"mix'\r\n", "s", "k", "d", "\"mix'"},
        StringCase{"[s]\r\nk=\"\"\r\n", "s", "k", "d", ""},
        StringCase{"[s]\r\nk=\" sp \"\r\n", "s", "k", "d", " sp "},
        StringCase{"[s]\r\nk='x'\r\n", "s", "k", "d", "x"},
        StringCase{"[s]\r\nk=\r\n", "s", "k", "d", ""},                       // empty, not the default
        StringCase{"[s]\r\nk\r\n", "s", "k", "d", "d"},                       // no "=": the default
        StringCase{"[s]\r\nk=v\r\n", "s", "x", "def  ", "def"},               // default loses trailing blanks
        StringCase{"[s]\r\nk=v\r\n", "s", "x", "def\t", "def\t"},             // but not tabs
        StringCase{"[s]\r\nk=1\r\n[s]\r\nk=2\r\nonly=3\r\n", "s", "only", "d", "d"},  // first duplicate section
        StringCase{"[s]\r\nk=1\r\nK=2\r\n", "s", "k", "d", "1"},              // first duplicate key
        StringCase{"k=outside\r\n[s]\r\n", "", "k", "d", "d"},                // lines before any header
        StringCase{"[s]\r\n;c=1\r\n", "s", ";c", "d", "1"},                   // ";" is no comment to a read
        StringCase{"[s]\r\n=v\r\n", "s", "", "d", "v"},                       // empty key name
        StringCase{"[s\r\nk=v\r\n", "s", "k", "d", "d"},                      // no "]": not a header
        StringCase{"[s]\r\n[t\r\nk=v\r\n", "s", "[t", "d", "d"},              // ... but an entry of the section
        StringCase{"[s]\r\nk=caf\xe9 \x80\r\n", "s", "k", "d", "caf\xc3\xa9 \xe2\x82\xac"}));  // Windows-1252

TEST(ProfileDocument, LongValuesAreCutToTheBuffer) {
    const std::string value(1500, 'x');
    const auto doc = ProfileDocument::parse("[s]\r\nk=" + value + "\r\n");
    EXPECT_EQ(doc.getString("s", "k", "").size(), 1023u);
    EXPECT_EQ(doc.getString("s", "k", "", 10), std::string(9, 'x'));
    EXPECT_EQ(doc.getString("s", "k", "", 1), "");
}

TEST(ProfileDocument, BufferCountsCharactersNotUtf8Bytes) {
    const auto doc = ProfileDocument::parse("[s]\r\nk=\xe9\xe9\xe9\r\n");
    EXPECT_EQ(doc.getString("s", "k", "", 3), "\xc3\xa9\xc3\xa9");
}

TEST(ProfileDocument, ListsKeysAndSections) {
    const auto doc = ProfileDocument::parse("pre=1\r\n[A]\r\nk1=1\r\n;comment=2\r\nbare\r\nk2=\r\n[B]\r\n[a]\r\nk3=3\r\n");
    EXPECT_EQ(doc.keys("a"), (std::vector<std::string>{"k1", "k2"}));
    EXPECT_EQ(doc.sections(), (std::vector<std::string>{"A", "B", "a"}));
    EXPECT_TRUE(doc.keys("missing").empty());
}

TEST(ProfileDocument, Utf16FileWithByteOrderMarkIsRead) {
    std::string bytes = "\xff\xfe";
    for (char c : std::string("[s]\r\nk=\xe9\r\n")) {
        bytes += c;
        bytes += '\0';
    }
    EXPECT_EQ(ProfileDocument::parse(bytes).getString("s", "k", ""), "\xc3\xa9");
}

TEST(ProfileDocument, BinaryGarbageNeverCrashes) {
    std::string bytes;
    for (int i = 0; i < 4096; ++i) bytes += static_cast<char>((i * 7919) & 0xFF);
    const auto doc = ProfileDocument::parse(bytes);
    for (const auto& s : doc.sections()) doc.keys(s);
    SUCCEED();
}

TEST(LayoutStrings, QuoteRuleRoundTrips) {
    EXPECT_EQ(quoteLayoutValue("\"quoted\""), "@#@#\"quoted\"");
    EXPECT_EQ(quoteLayoutValue("plain"), "plain");
    const auto doc = ProfileDocument::parse(
        "[s]\r\nq=@#@#\"quoted\"\r\nslash=a/@b\r\nslashAfterGuard=@#@#/@x\r\nplain=@#@#x\r\n");
    EXPECT_EQ(readLayoutString(doc, "s", "q"), "\"quoted\"");
    EXPECT_EQ(readLayoutString(doc, "s", "slash"), "a\"b");
    EXPECT_EQ(readLayoutString(doc, "s", "slashAfterGuard"), "\"x");
    EXPECT_EQ(readLayoutString(doc, "s", "plain"), "x");
    EXPECT_EQ(readLayoutString(doc, "s", "missing", "@#@#def"), "def");
}

}  // namespace
