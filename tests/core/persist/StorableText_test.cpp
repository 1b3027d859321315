#include <gtest/gtest.h>

#include "items/RecordArray.h"
#include "persist/StorableText.h"
#include "support/Records.h"

namespace kestrin {
namespace {

struct NameCase {
    std::string name;
    bool storable;
};

class StorableNames : public testing::TestWithParam<NameCase> {};

TEST_P(StorableNames, KeysThatReadBackTheSameAreAccepted) {
    const NameCase& c = GetParam();
    EXPECT_EQ(!unstorableName(c.name).has_value(), c.storable) << c.name;
}

INSTANTIATE_TEST_SUITE_P(
    Names, StorableNames,
    testing::Values(NameCase{"Name", true}, NameCase{"Caf\xC3\xA9 \xE2\x82\xAC", true}, NameCase{"Say \"hi\"", true},
                    NameCase{"O'Neil", true}, NameCase{"a]b", true}, NameCase{"x[1]", true},
                    NameCase{"Ctl\x01\x1F", true}, NameCase{"", false}, NameCase{"  ", false},
                    NameCase{" Name", false}, NameCase{"Name\t", false}, NameCase{"[Name]", false},
                    NameCase{";Name", false}, NameCase{"A=B", false}, NameCase{"Two\r\nLines", false},
                    NameCase{"Line\nEnd", false}, NameCase{"\xE4\xB8\xAD", false}, NameCase{"bad\xFFutf8", false}));

struct ValueCase {
    std::string value;
    bool storable;
};

class StorableValues : public testing::TestWithParam<ValueCase> {};

TEST_P(StorableValues, ValuesThatReadBackTheSameAreAccepted) {
    const ValueCase& c = GetParam();
    EXPECT_EQ(!unstorableValue(c.value).has_value(), c.storable) << c.value;
}

INSTANTIATE_TEST_SUITE_P(Values, StorableValues,
                         testing::Values(ValueCase{"", true}, ValueCase{"\"quoted\"", true}, ValueCase{"a;b=c[d]", true},
                                         ValueCase{"\xE2\x82\xAC 5", true}, ValueCase{"a/@b", false},
                                         ValueCase{"one\rtwo", false}, ValueCase{"\xF0\x9F\x98\x80", false}));

TEST(StorableItems, TheFirstUnstorableItemIsNamedInTheMessage) {
    RecordArray ok;
    ok.add(test::field("Name", 0, 19, 0, 8));
    ok.add(test::function("Constant", "\"Caf\xC3\xA9\"", "", "", 0, 20, 0, 8));
    ok.add(test::dbUpdate("NAME", "Constant", "7"));
    EXPECT_FALSE(unstorableItem(ok));

    struct Case {
        ItemRecord item;
        std::string named;
    };
    const Case cases[] = {
        {test::field("A=B", 0, 19, 0, 8), "\"A=B\""},
        {test::field("First [+] ;Last", 0, 19, 0, 8), "\";Last\""},
        {test::bitField("[Bits", 0, 19, 0, 0, 3), "\"[Bits\""},
        {test::function("Constant", "\"a/@b\"", "", "", 0, 20, 0, 8), "/@"},
        {test::dbUpdate("NAME", "Constant", "line\nbreak"), "line break"},
        {test::field("Checksum", 0, 19, 0, 8), "\"Checksum\" belongs to checksum functions"},
        {test::bitField("Checksum", 0, 19, 0, 0, 3), "\"Checksum\" belongs to checksum functions"},
    };
    for (const Case& c : cases) {
        RecordArray records;
        records.add(test::field("Fine", 0, 21, 0, 8));
        records.add(c.item);
        const auto why = unstorableItem(records);
        ASSERT_TRUE(why) << c.named;
        EXPECT_EQ(why->rfind("The layout was not saved: ", 0), 0u) << *why;
        EXPECT_NE(why->find(c.named), std::string::npos) << *why;
    }
}

}  // namespace
}  // namespace kestrin
