#include <gtest/gtest.h>

#include "persist/ChipEncodeFile.h"
#include "persist/HostFields.h"
#include "support/TestSupport.h"

using namespace kestrin;
using kestrin::test::crlf;

namespace {

HostFieldList hostFields(std::initializer_list<const char*> names) {
    std::vector<HostField> fields;
    int16_t column = 0;
    for (const char* n : names) fields.push_back({n, n, "Character", 10, column++, true});
    HostFieldList list;
    list.setFields(fields);
    return list;
}

struct UsedCase {
    const char* list;
    std::vector<std::string> used;
};

class UsedFields : public ::testing::TestWithParam<UsedCase> {};

TEST_P(UsedFields, NamesAreFoundOnlyByTheirOwnKeys) {
    const auto fields = hostFields({"Name", "FirstName", "Names", "Weight (kg)", "Start"});
    EXPECT_EQ(usedHostFields(GetParam().list, fields), GetParam().used) << GetParam().list;
}

INSTANTIATE_TEST_SUITE_P(
    Lists, UsedFields,
    ::testing::Values(UsedCase{"", {}}, UsedCase{"FirstName(1)", {"FirstName"}}, UsedCase{"Names(1)", {"Names"}},
                      UsedCase{"FirstName(1)Name(1)", {"Name", "FirstName"}},
                      UsedCase{"Name(1)Name(2)Name(3)", {"Name"}}, UsedCase{"Start()", {"Start"}},
                      // a name with a bracket never stands alone between ")" and "("
                      UsedCase{"Weight (kg)(1)", {}}));

TEST(ChipEncodeFile, FieldsAreFoundByDisplayOrDatabaseName) {
    HostFieldList fields;
    fields.setFields({{"Last name", "LASTNAME", "Character", 30, 0, true}, {"First", "FIRST", "Character", 20, 1, true},
                      {"Town", "TOWN", "Character", 20, 2, true}});
    EXPECT_EQ(usedHostFields("LASTNAME(1)First(1)", fields), (std::vector<std::string>{"LASTNAME", "First"}));
}

TEST(ChipEncodeFile, FunctionsOnlyGiveFieldCountZero) {
    EXPECT_EQ(renderChipEncodeFile("", {}, hostFields({"Name"})),
              crlf({"[ChipEncode]", "LK_Version=7.0.0", "DllName=MORVATH.DLL", "ChipType=1", "[Track1]", "FieldCount=0"}));
}

TEST(ChipEncodeFile, UsedFieldsInHostOrderAndImages) {
    EXPECT_EQ(renderChipEncodeFile("Names(1)Name(1)Name(2)", {4, 2}, hostFields({"Name", "FirstName", "Names"})),
              crlf({"[ChipEncode]", "LK_Version=7.0.0", "Images=4,2", "DllName=MORVATH.DLL", "ChipType=1", "[1Field]",
                    "Type=DataField", "Data=Name", "[2Field]", "Type=DataField", "Data=Names", "[Track1]",
                    "FieldCount=2"}));
}

}  // namespace
