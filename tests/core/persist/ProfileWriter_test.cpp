#include <gtest/gtest.h>

#include "persist/ProfileDocument.h"
#include "persist/ProfileWriter.h"
#include "support/TestSupport.h"

using namespace kestrin;
using kestrin::test::crlf;

namespace {

TEST(ProfileWriter, NewFileHasSectionsAndKeysInFirstWrittenOrder) {
    ProfileWriter w;
    w.write("App1", "key1", "string1");
    w.write("App1", "key2", "string2");
    w.write("App2", "key4", "string4");
    w.write("App1", "key3", "string3");
    w.write("App3", "key5", "string5");
    EXPECT_EQ(w.bytes(), "[App1]\r\nkey1=string1\r\nkey2=string2\r\nkey3=string3\r\n[App2]\r\nkey4=string4\r\n"
                         "[App3]\r\nkey5=string5\r\n");
}

TEST(ProfileWriter, RepeatedKeyIsReplacedInPlaceIgnoringCase) {
    ProfileWriter w;
    w.write("S", "a", "1");
    w.write("S", "b", "2");
    w.write("s", "A", "3");
    EXPECT_EQ(w.bytes(), crlf({"[S]", "a=3", "b=2"}));
}

struct ValueCase {
    const char* value;
    const char* written;
};

class ProfileWriterValues : public ::testing::TestWithParam<ValueCase> {};

TEST_P(ProfileWriterValues, KeepsWhatAReaderCanSee) {
    ProfileWriter w;
    w.write("s", "k", GetParam().value);
    EXPECT_EQ(w.bytes(), crlf({"[s]", std::string("k=") + GetParam().written}));
}

INSTANTIATE_TEST_SUITE_P(Values, ProfileWriterValues,
                         ::testing::Values(ValueCase{"", ""}, ValueCase{"  lead", "lead"}, ValueCase{"trail \t", "trail"},
                                           ValueCase{"two\r\nlines", "two  lines"}, ValueCase{"a=b", "a=b"},
                                           ValueCase{"caf\xc3\xa9 \xe2\x82\xac", "caf\xe9 \x80"},
                                           ValueCase{"\xe4\xb8\xad", "?"}));

TEST(ProfileWriter, NamelessSectionsAndKeysAreNeverWritten) {
    ProfileWriter w;
    w.write("", "k", "v");
    w.write("s", " ", "v");
    EXPECT_TRUE(w.empty());
    EXPECT_EQ(w.bytes(), "");
}

TEST(ProfileWriter, EveryWrittenValueReadsBack) {
    ProfileWriter w;
    const std::vector<std::string> values = {"x", "a b", "\xc3\xa9t\xc3\xa9", "0,1,2", "'single'", "k=v=w"};
    for (size_t i = 0; i < values.size(); ++i) w.write("S", "k" + std::to_string(i), values[i]);
    const auto doc = ProfileDocument::parse(w.bytes());
    for (size_t i = 0; i < values.size(); ++i) {
        const std::string expect = values[i] == "'single'" ? "single" : values[i];  // the reader strips quotes
        EXPECT_EQ(doc.getString("S", "k" + std::to_string(i), "?"), expect);
    }
}

}  // namespace
