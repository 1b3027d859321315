#include <gtest/gtest.h>

#include "persist/HostFields.h"
#include "support/TestSupport.h"

using namespace kestrin;
using namespace kestrin::test;

namespace {

class HostFieldsTest : public ::testing::Test {
protected:
    std::vector<std::string> fetch(const std::string& text) {
        writeBytes(dir / "P.ini", text);
        std::vector<std::string> warnings;
        list.fetch(dir / "P.ini", &warnings);
        return warnings;
    }
    TempDir dir;
    HostFieldList list;
};

TEST_F(HostFieldsTest, TagFieldAndColumnsOutOfProjectAreSkipped) {
    fetch(crlf({"[DATABASE]", "NUMCOLUMNS=4", "TagField=ID", "[COLUMN1]", "DbFIELD=FIRST", "NAME=First",
                "FIELDTYPE=Character", "FIELDSIZE=20", "[COLUMN2]", "DbFIELD=ID", "NAME=Id", "[COLUMN3]",
                "DbFIELD=@#@#\"Q\"", "NAME=Quoted /@x/@", "FIELDTYPE=Number", "FIELDSIZE=5", "InProject=1", "[COLUMN4]",
                "DbFIELD=HIDDEN", "InProject=0", "[ImageTypes]", "Count=2", "1=Photo", "2=Logo"}));
    ASSERT_EQ(list.count(), 2);
    EXPECT_EQ(list.highestIndex(), 1);
    EXPECT_EQ(list.fields()[0].name, "First");
    EXPECT_EQ(list.fields()[0].column, 0);
    EXPECT_EQ(list.fields()[0].fieldSize, 20);
    EXPECT_EQ(list.fields()[1].dbField, "\"Q\"");
    EXPECT_EQ(list.fields()[1].name, "Quoted \"x\"");
    EXPECT_EQ(list.fields()[1].column, 2);
    EXPECT_EQ(list.imageTypes(), (std::vector<std::string>{"Photo", "Logo"}));
    EXPECT_EQ(list.byColumn(2)->name, "Quoted \"x\"");
    EXPECT_EQ(list.byDbField("FIRST")->column, 0);
    EXPECT_EQ(list.byDbField("NONE"), nullptr);
}

TEST_F(HostFieldsTest, MissingColumnSectionMatchesAnEmptyTagField) {
    fetch(crlf({"[DATABASE]", "NUMCOLUMNS=2", "[COLUMN2]", "DbFIELD=B", "NAME=B"}));
    ASSERT_EQ(list.count(), 1);
    EXPECT_EQ(list.fields()[0].column, 1);
}

TEST_F(HostFieldsTest, ImageCountZeroKeepsOnlyTheCountAtZero) {
    fetch(crlf({"[ImageTypes]", "Count=1", "1=Photo"}));
    EXPECT_EQ(list.imageTypeCount(), 1);
    fetch(crlf({"[DATABASE]", "NUMCOLUMNS=0", "[ImageTypes]", "Count=0"}));
    EXPECT_EQ(list.imageTypeCount(), 0);
    EXPECT_TRUE(list.imageTypes().empty());
}

TEST_F(HostFieldsTest, FieldListIsReplacedByEveryFetch) {
    fetch(crlf({"[DATABASE]", "NUMCOLUMNS=1", "[COLUMN1]", "DbFIELD=A", "NAME=A"}));
    ASSERT_EQ(list.count(), 1);
    fetch(crlf({"[DATABASE]", "NUMCOLUMNS=0"}));
    EXPECT_EQ(list.count(), 0);
    EXPECT_EQ(list.highestIndex(), -1);
}

TEST_F(HostFieldsTest, AbsurdCountsEndQuietlyWithAWarning) {
    fetch(crlf({"[DATABASE]", "NUMCOLUMNS=1", "[COLUMN1]", "DbFIELD=A", "NAME=A"}));
    const auto warnings = fetch(crlf({"[DATABASE]", "NUMCOLUMNS=4000000000"}));
    EXPECT_EQ(warnings.size(), 1u);
    EXPECT_EQ(list.count(), 1);  // the reading ended before the list was touched
    EXPECT_EQ(fetch(crlf({"[DATABASE]", "NUMCOLUMNS=-5"})).size(), 0u);
    EXPECT_EQ(list.count(), 0);
}

TEST_F(HostFieldsTest, MissingProjectFileGivesEmptyLists) {
    std::vector<std::string> warnings;
    list.fetch(dir / "none.ini", &warnings);
    EXPECT_EQ(list.count(), 0);
    EXPECT_EQ(warnings.size(), 1u);
}

TEST(FieldTypeCode, TypeTextsAreComparedLiterally) {
    EXPECT_EQ(fieldTypeCode("Character"), 0);
    EXPECT_EQ(fieldTypeCode("Number"), 1);
    EXPECT_EQ(fieldTypeCode("Numeric"), 1);
    EXPECT_EQ(fieldTypeCode("Date"), 2);
    EXPECT_EQ(fieldTypeCode("Binary"), 3);
    EXPECT_EQ(fieldTypeCode("number"), -1);
}

}  // namespace
