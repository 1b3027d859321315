#include <gtest/gtest.h>

#include "rules/FunctionProperties.h"

using namespace kestrin;

namespace {

using K = FunctionKind;

struct BoxesCase {
    K kind;
    int option;
    bool fromField;
    int32_t mode;
    PropertyBoxes want;
};

class FunctionBoxes : public ::testing::TestWithParam<BoxesCase> {};

TEST_P(FunctionBoxes, ShowTheBoxesTheChoiceUses) {
    const auto& c = GetParam();
    EXPECT_EQ(propertyBoxes(c.kind, c.option, c.fromField, c.mode), c.want);
}

// constantValue, fieldList, countFirstValue, countNumber, countStep, polynom, startValue, range, sizeEnabled
INSTANTIATE_TEST_SUITE_P(
    Choices, FunctionBoxes,
    ::testing::Values(
        BoxesCase{K::Constant, 0, false, 1, {true, false, false, false, false, false, false, false, true}},
        BoxesCase{K::Constant, 1, false, 3, {false, true, false, false, false, false, false, false, true}},
        BoxesCase{K::Count, 0, false, 1, {false, false, true, true, true, false, false, false, true}},
        BoxesCase{K::Count, 1, true, 3, {false, true, true, false, true, false, false, false, true}},
        BoxesCase{K::CardSnNr, 2, false, 1, {false, false, false, false, false, false, false, false, false}},
        BoxesCase{K::Checksum, 0, false, 3, {false, false, false, false, false, true, true, true, true}},
        BoxesCase{K::Checksum, 2, false, 3, {false, false, false, false, false, true, true, true, true}},
        BoxesCase{K::Checksum, 2, false, 1, {false, false, false, false, false, true, true, true, false}},
        BoxesCase{K::Checksum, 3, false, 3, {false, false, false, false, false, false, true, true, false}}));

TEST(FunctionSizes, FixedByTheRepresentationOrMethod) {
    const std::pair<int, std::optional<int64_t>> cardSnNr[] = {{0, 10}, {1, 8}, {2, 4}, {3, 4}, {4, std::nullopt}};
    for (const auto& [option, bytes] : cardSnNr) EXPECT_EQ(requiredCardSnNrBytes(option), bytes) << option;
    EXPECT_EQ(fixedSize(K::Checksum, kChecksumAdd, 3), 8);
    EXPECT_EQ(fixedSize(K::Checksum, kChecksumParity, 3), 1);
    EXPECT_EQ(fixedSize(K::Checksum, kChecksumCrc, 3), std::nullopt);
}

struct LimitsCase {
    ValueBox box;
    int32_t mode;
    K kind;
    int option;
    int64_t bits;
    Limits want;
};

class FunctionBoxLimits : public ::testing::TestWithParam<LimitsCase> {};

TEST_P(FunctionBoxLimits, FollowTheMode) {
    const auto& c = GetParam();
    EXPECT_EQ(boxLimits(c.box, c.mode, c.kind, c.option, c.bits), c.want);
}

INSTANTIATE_TEST_SUITE_P(
    Boxes, FunctionBoxLimits,
    ::testing::Values(LimitsCase{ValueBox::ConstantValue, 1, K::Constant, 0, 8, {0, 255}},
                      LimitsCase{ValueBox::ConstantValue, 3, K::Constant, 0, 9, {0, 4294967295}},
                      LimitsCase{ValueBox::CountNumber, 3, K::Count, 0, 16, {0, 255}},
                      LimitsCase{ValueBox::Polynom, 1, K::Checksum, 2, 8, {257, 511}},
                      LimitsCase{ValueBox::Polynom, 3, K::Checksum, 2, 1, {3, 3}},
                      LimitsCase{ValueBox::Polynom, 3, K::Checksum, 2, 8, {257, 511}},
                      LimitsCase{ValueBox::Polynom, 3, K::Checksum, 2, 0, {3, 3}},
                      LimitsCase{ValueBox::Polynom, 3, K::Checksum, 2, 100, {(int64_t{1} << 62) + 1, INT64_MAX}},
                      LimitsCase{ValueBox::StartValue, 3, K::Checksum, 2, 4, {0, 15}},
                      LimitsCase{ValueBox::StartValue, 1, K::Checksum, 3, 8, {0, 1}},
                      LimitsCase{ValueBox::StartValue, 3, K::Checksum, 1, 8, {0, 255}}));

TEST(FunctionSizeBox, RoomLeftInThePageCountsTheBeginBit) {
    EXPECT_EQ(sizeBoxLimits(0, 256, 30, 0, 0), (Limits{1, 16}));
    EXPECT_EQ(sizeBoxLimits(1, 256, 30, 1, 5), (Limits{1, 15}));
    EXPECT_EQ(sizeBoxLimits(2, 256, 30, 1, 5), (Limits{1, 125}));
    EXPECT_EQ(sizeBoxLimits(3, 256, 30, 0, 7), (Limits{1, 135}));
    EXPECT_EQ(sizeBoxLimits(0, 256, 32, 0, 0), (Limits{1, 0}));
}

TEST(FunctionNumberKeys, OnlyDigitsAndBackspacePass) {
    for (char32_t key : {U'0', U'5', U'9', char32_t{8}}) EXPECT_TRUE(acceptsNumberKey(key)) << int(key);
    for (char32_t key : {U'a', U'-', U'.', U' ', U'/', U':', U'\u0663', char32_t{127}})
        EXPECT_FALSE(acceptsNumberKey(key)) << int(key);
    EXPECT_EQ(filterNumberText("1a2"), "12");
    EXPECT_EQ(filterNumberText(" -3.5e2\b"), "352");
}

struct ValuesCase {
    FunctionInput input;
    int32_t mode;
    std::array<std::string, 3> params;
    std::array<int16_t, 2> polynomial;
    int16_t initValue;
    std::array<int16_t, 5> range;
};

class FunctionValues : public ::testing::TestWithParam<ValuesCase> {};

TEST_P(FunctionValues, AreStoredAndReadBack) {
    const auto& c = GetParam();
    ItemRecord r;
    r.isFunction = c.mode == 1;
    r.isBitFunction = c.mode == 3;
    r.param2 = "stale", r.initValue = 99, r.polynomial = {9, 9};
    applyFunctionValues(c.input, c.mode, r);
    EXPECT_EQ(r.name, functionWord(c.input.kind));
    EXPECT_EQ((std::array<std::string, 3>{r.param1, r.param2, r.param3}), c.params);
    EXPECT_EQ(r.polynomial, c.polynomial);
    EXPECT_EQ(r.initValue, c.initValue);
    EXPECT_EQ(r.range, c.range);
    EXPECT_EQ(functionInputOf(r), c.input);
}

using In = FunctionInput;

INSTANTIATE_TEST_SUITE_P(
    Functions, FunctionValues,
    ::testing::Values(
        ValuesCase{In{.constantText = "300"}, 1, {"300", "", ""}, {}, 0, {}},
        ValuesCase{In{.option = 1, .valueFromField = true, .fieldName = "Name"}, 3, {"Name", "", ""}, {}, 0, {}},
        ValuesCase{In{.kind = K::Count, .option = 1, .countNumberText = "10", .countStepText = "5"}, 1,
                   {"5", "10", "1"}, {}, 0, {}},
        ValuesCase{In{.kind = K::Count, .valueFromField = true, .fieldName = "Id", .countStepText = "2"}, 3,
                   {"2", "Id", "0"}, {}, 0, {}},
        ValuesCase{In{.kind = K::CardSnNr, .option = 3}, 1, {"3", "", ""}, {}, 0, {}},
        ValuesCase{In{.kind = K::Checksum, .option = 2, .polynomText = "263", .startValueText = "0", .rangePage = 1,
                      .rangeRow = 19, .rangeCountText = "8"},
                   1, {"2", "", ""}, {263, 0}, 0, {1, 19, 0, 8, 0}},
        ValuesCase{In{.kind = K::Checksum, .option = 3, .startValueText = "1", .rangePage = 2, .rangeRow = 20,
                      .rangeBeginByte = 3, .rangeBeginBit = 5, .rangeCountText = "12"},
                   3, {"3", "", ""}, {}, 1, {2, 20, 3, 5, 96}},  // a bit checksum keeps its range in bits
        ValuesCase{In{.kind = K::Checksum, .option = 1, .startValueText = "7", .rangePage = 1, .rangeRow = 21,
                      .rangeCountText = "16"},
                   1, {"1", "", ""}, {}, 7, {1, 21, 0, 16, 0}}));

TEST(FunctionValuesStorage, NumbersBeyond16BitsSaturateInsteadOfWrapping) {
    ItemRecord r;
    applyFunctionValues(In{.kind = K::Checksum, .option = 2, .polynomText = "70000", .startValueText = "4294967295",
                           .rangeCountText = "-40000"},
                        1, r);
    EXPECT_EQ(r.polynomial, (std::array<int16_t, 2>{32767, 32767}));
    EXPECT_EQ(r.range[3], -32768);
}

TEST(FunctionValuesStorage, UnknownStoredChoicesReadAsOptionZero) {
    ItemRecord r;
    r.name = "Checksum", r.param1 = "9", r.initValue = 4;
    EXPECT_EQ(functionInputOf(r).option, 0);
    EXPECT_EQ(functionInputOf(r).startValueText, "");
    r.name = "CardSnNr", r.param1 = "1.5";
    EXPECT_EQ(functionInputOf(r).option, 0);
    r.name = "Constant", r.param1 = "";
    EXPECT_FALSE(functionInputOf(r).valueFromField);
}

}  // namespace

TEST(FunctionRequest, ConstantFieldOptionAndCounterSwitchBothMeanValueFromField) {
    PlacementRequest q;
    fillFunctionRequest(q, In{.kind = K::Constant, .option = kConstantField, .fieldName = "NAME"});
    EXPECT_TRUE(q.valueFromField);
    EXPECT_EQ(q.fieldChosen, "NAME");
    fillFunctionRequest(q, In{.kind = K::Constant, .option = kConstantValue, .valueFromField = true, .constantText = "7"});
    EXPECT_FALSE(q.valueFromField);
    EXPECT_EQ(q.constantText, "7");
    fillFunctionRequest(q, In{.kind = K::Count, .option = 1, .valueFromField = true, .rangeCountText = "3"});
    EXPECT_TRUE(q.valueFromField);
    EXPECT_EQ(q.propertyOption, 1);
    EXPECT_EQ(q.rangeCountText, "3");
}
