// What a database update needs before it is stored, and the record it becomes.
#include "rules/DatabaseUpdateRules.h"

#include <gtest/gtest.h>

#include "rules/NumberChecks.h"
#include "rules/PlacementValidation.h"
#include "text/Translator.h"

namespace kestrin {
namespace {

struct UpdateCase {
    const char* name;
    DbUpdateEntries entries;
    int32_t textId;       // 0: stored
    DbUpdateBox focus;
    std::string param1, param2;
};

DbUpdateEntries entries(std::string function, std::string constant, std::string number, std::string step,
                        bool hex = false, std::string field = "NUMBER") {
    return {std::move(function), std::move(field), 4, std::move(constant), std::move(number), std::move(step), hex};
}

class DbUpdateRules : public ::testing::TestWithParam<UpdateCase> {};

TEST_P(DbUpdateRules, EntriesAreCheckedAndBecomeOneRecord) {
    const UpdateCase& c = GetParam();
    const auto v = dbUpdateViolation(c.entries, Translator());
    EXPECT_EQ(v ? v->textId : 0, c.textId);
    if (v) {
        EXPECT_EQ(v->focus, c.focus);
        return;
    }
    const ItemRecord r = dbUpdateRecordOf(c.entries);
    EXPECT_TRUE(r.isDbUpdate);
    EXPECT_EQ(r.name, c.entries.function);
    EXPECT_EQ(r.dbFieldName, "NUMBER");
    EXPECT_EQ(r.dbColumn, 4);
    EXPECT_EQ(r.param1, c.param1);
    EXPECT_EQ(r.param2, c.param2);
    EXPECT_EQ(dbUpdateEntriesOf(r).function, c.entries.function);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, DbUpdateRules,
    ::testing::Values(UpdateCase{"Constant", entries("Constant", "255", "", ""), 0, DbUpdateBox::None, "255", ""},
                      UpdateCase{"ConstantZeros", entries("Constant", "007", "", ""), 0, DbUpdateBox::None, "7", ""},
                      UpdateCase{"Constant256", entries("Constant", "256", "", ""), kTextOutOfRange,
                                 DbUpdateBox::ConstantValue, "", ""},
                      UpdateCase{"ConstantEmpty", entries("Constant", "", "", ""), kTextOutOfRange,
                                 DbUpdateBox::ConstantValue, "", ""},
                      UpdateCase{"Count", entries("Count", "", "10", "255"), 0, DbUpdateBox::None, "10", "255"},
                      UpdateCase{"CountStep256", entries("Count", "", "1", "256"), kTextOutOfRange,
                                 DbUpdateBox::CountStep, "", ""},
                      UpdateCase{"CountNumberEmpty", entries("Count", "", "", "1"), kTextOutOfRange,
                                 DbUpdateBox::CountNumber, "", ""},
                      UpdateCase{"CardSnNrDecimal", entries("CardSnNr", "999", "", ""), 0, DbUpdateBox::None, "0", ""},
                      UpdateCase{"CardSnNrHex", entries("CardSnNr", "", "", "", true), 0, DbUpdateBox::None, "1", ""},
                      UpdateCase{"NoField", entries("Constant", "1", "", "", false, ""), kTextIncomplete,
                                 DbUpdateBox::Fields, "", ""}),
    [](const auto& tp) { return std::string(tp.param.name); });

}  // namespace
}  // namespace kestrin
