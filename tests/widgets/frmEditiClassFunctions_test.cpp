// The item editor in its function modes: each function in byte mode, bit functions, the
// value boxes' filter and limits, and editing a function item.
#include <gtest/gtest.h>

#include <functional>
#include <tuple>

#include "rules/FunctionProperties.h"
#include "frmEditiClass_test.h"

namespace kestrin::test {
namespace {

struct FunctionCase {
    const char* name;
    int32_t mode;
    int function;
    int option;  // -1: keep the option the function starts with
    std::vector<std::pair<const char*, const char*>> boxes;  // typed in this order
    int block, byte, bit;
    const char* size;  // nullptr: the size the option fixes
    int storedSize;
    std::function<void(const ItemRecord&)> check;
};

class EditiClassFunctions : public ::testing::TestWithParam<FunctionCase> {};

TEST_P(EditiClassFunctions, TheFunctionIsWrittenWithItsValues) {
    const FunctionCase& c = GetParam();
    Editor ed;
    ed.open(c.mode);
    ed.click(QStringLiteral("optFunction(%1)").arg(c.function));
    if (c.option >= 0) ed.click(QStringLiteral("optProperty(%1)").arg(c.option));
    for (const auto& [box, typed] : c.boxes) ed.type(box, typed);
    ed.choose("cboRow", QString::number(c.block));
    ed.choose("cboBeginByte", QString::number(c.byte));
    if (c.mode == kModeBitFunction) ed.choose("cboBeginBit", QString::number(c.bit));
    if (c.size) ed.type("txtNrBytes", c.size);
    // The size box is locked exactly where the option allows one size only.
    const int option = ed.form->findChild<QRadioButton*>(QStringLiteral("optProperty(%1)").arg(c.option < 0 ? 0 : c.option))
                           ->isChecked() ? c.option : -1;
    EXPECT_EQ(ed.child<QLineEdit>("txtNrBytes")->isEnabled(),
              !fixedSize(static_cast<FunctionKind>(c.function), option, c.mode).has_value());
    ed.click("cmdApply");
    for (const auto& m : ed.prompter.messages) ADD_FAILURE() << m.text;
    ASSERT_EQ(ed.records().size(), 1);
    const ItemRecord& r = ed.records()[0];
    EXPECT_EQ(r.name, functionWord(static_cast<FunctionKind>(c.function)));
    EXPECT_EQ(kindWord(r), c.mode == kModeFunction ? kKindFunction : kKindBitFunction);
    EXPECT_EQ(r.block, c.block);
    EXPECT_EQ(r.beginByte, c.byte);
    if (c.mode == kModeFunction) {
        EXPECT_EQ(r.numBytes, c.storedSize);
    } else {
        EXPECT_EQ(r.beginBit, c.bit);
        EXPECT_EQ(r.numBits, c.storedSize);
    }
    EXPECT_TRUE(lightColour(r.color));
    c.check(r);
}

INSTANTIATE_TEST_SUITE_P(
    All, EditiClassFunctions,
    ::testing::Values(
        FunctionCase{"Count", kModeFunction, 1, 1, {{"txtCountNumber", "5"}, {"txtCountStep", "2"}}, 20, 4, 0, "2", 2,
                     [](const ItemRecord& r) {
                         const FunctionInput in = functionInputOf(r);
                         EXPECT_EQ(in.countStepText, "2");
                         EXPECT_EQ(in.countNumberText, "5");
                         EXPECT_EQ(in.option, kCountIncrementBeforeWrite);
                     }},
        FunctionCase{"CardSnNrIntel", kModeFunction, 2, 3, {}, 21, 0, 0, nullptr, 4,
                     [](const ItemRecord& r) { EXPECT_EQ(functionInputOf(r).option, kCardSnNrIntel); }},
        FunctionCase{"ChecksumCrc", kModeFunction, 3, 2,
                     {{"txtPolynom", "263"}, {"txtStartValue", "7"}, {"txtRangeBytesCount", "8"}}, 24, 0, 0, nullptr, 1,
                     [](const ItemRecord& r) {
                         const FunctionInput in = functionInputOf(r);
                         EXPECT_EQ(in.option, kChecksumCrc);
                         EXPECT_EQ(in.polynomText, "263");
                         EXPECT_EQ(in.startValueText, "7");
                         EXPECT_EQ(in.rangeRow, 19);
                         EXPECT_EQ(in.rangeCountText, "8");
                     }},
        FunctionCase{"BitChecksumCrc", kModeBitFunction, 3, 2,
                     {{"txtNrBytes", "4"}, {"txtPolynom", "19"}, {"txtStartValue", "3"}, {"txtRangeBytesCount", "2"}},
                     23, 2, 4, nullptr, 4,
                     [](const ItemRecord& r) {
                         const FunctionInput in = functionInputOf(r);
                         EXPECT_EQ(in.option, kChecksumCrc);
                         EXPECT_EQ(in.polynomText, "19");
                         EXPECT_EQ(in.startValueText, "3");
                         EXPECT_EQ(in.rangeCountText, "2");
                     }}),
    [](const ::testing::TestParamInfo<FunctionCase>& param) { return std::string(param.param.name); });

// Each value box is checked against its own limits when it is left, and keeps the focus.
TEST(EditiClassFunctionBoxes, AValueOutOfRangeIsRefusedOnLeavingAndKeepsTheFocus) {
    const std::tuple<const char*, const char*, const char*, const char*> cases[] = {
        {"optFunction(1)", "txtCountStep", "256", " 0 & 255!"},
        {"optFunction(3)", "txtPolynom", "1000", " 257 & 511!"},
    };
    for (const auto& [function, box, typed, limits] : cases) {
        Editor ed;
        frmEditiClass& form = ed.open(kModeFunction);
        ed.click(function);
        if (std::string(box) == "txtPolynom") ed.click("optProperty(2)");
        ed.type(box, typed);
        ed.leave(box);
        ASSERT_EQ(ed.prompter.messages.size(), 1u) << box;
        EXPECT_NE(ed.prompter.messages[0].text.find(limits), std::string::npos) << ed.prompter.messages[0].text;
        EXPECT_EQ(form.focusWidget(), ed.child<QLineEdit>(box));
    }
}

struct RefusedCase {
    const char* name;
    int32_t mode;
    std::vector<std::pair<const char*, const char*>> boxes;
    const char* expectedIn;  // part of the message
    const char* focus;
};

class EditiClassRefusedValues : public ::testing::TestWithParam<RefusedCase> {};

TEST_P(EditiClassRefusedValues, ApplyRefusesWithTheMessageAndFocusesTheBox) {
    const RefusedCase& c = GetParam();
    Editor ed;
    frmEditiClass& form = ed.open(c.mode);
    ed.click("optFunction(3)");
    ed.click("optProperty(2)");
    for (const auto& [box, typed] : c.boxes) ed.type(box, typed);
    ed.choose("cboRow", "25");
    ed.click("cmdApply");
    EXPECT_EQ(ed.records().size(), 0);
    ASSERT_EQ(ed.prompter.messages.size(), 1u);
    EXPECT_NE(ed.prompter.messages[0].text.find(c.expectedIn), std::string::npos) << ed.prompter.messages[0].text;
    EXPECT_EQ(form.focusWidget(), ed.child<QLineEdit>(c.focus));
    EXPECT_TRUE(form.isVisible());
}

INSTANTIATE_TEST_SUITE_P(
    Checksums, EditiClassRefusedValues,
    ::testing::Values(RefusedCase{"BytePolynom", kModeFunction, {{"txtPolynom", "256"}, {"txtStartValue", "0"}},
                                  " 257 & 511!", "txtPolynom"},
                      RefusedCase{"BitPolynom", kModeBitFunction,
                                  {{"txtNrBytes", "3"}, {"txtPolynom", "20"}, {"txtStartValue", "0"}}, " 9 & 15!",
                                  "txtPolynom"}),
    [](const ::testing::TestParamInfo<RefusedCase>& param) { return std::string(param.param.name); });

TEST(EditiClassFunctionBoxes, EditingAChecksumPresetsItsValuesAndReplacesIt) {
    ItemRecord old = function("Checksum", "2", "", "", 0, 25, 0, 1, 0x00909090);
    FunctionInput in;
    in.kind = FunctionKind::Checksum, in.option = kChecksumCrc, in.polynomText = "263", in.startValueText = "5";
    in.rangePage = 0, in.rangeRow = 20, in.rangeCountText = "4";
    applyFunctionValues(in, kModeFunction, old);
    Editor ed({old});
    EditorRecord e;
    e.editing = true, e.page = 0, e.name = "Checksum", e.block = 25, e.numBytes = 1, e.kindCode = 1;
    e.kindWord = "Function";
    ed.open(kModeFunction, e);
    EXPECT_TRUE(ed.child<QRadioButton>("optFunction(3)")->isChecked());
    EXPECT_TRUE(ed.child<QRadioButton>("optProperty(2)")->isChecked());
    EXPECT_EQ(ed.text("txtPolynom"), "263");
    EXPECT_EQ(ed.text("txtStartValue"), "5");
    EXPECT_EQ(ed.child<QComboBox>("cboRangeBeginRow")->currentText(), "20");
    EXPECT_FALSE(ed.applyEnabled());
    ed.type("txtStartValue", "9");
    ed.click("cmdApply");
    for (const auto& m : ed.prompter.messages) ADD_FAILURE() << m.text;
    ASSERT_EQ(ed.records().size(), 1);
    EXPECT_EQ(functionInputOf(ed.records()[0]).startValueText, "9");
    EXPECT_EQ(ed.records()[0].color, 0x00909090);
}

TEST(EditiClassFunctionBoxes, EditingACountPresetsItsNumberAndStep) {
    ItemRecord old = function("Count", "", "", "", 0, 25, 0, 2);
    FunctionInput in;
    in.kind = FunctionKind::Count, in.countNumberText = "7", in.countStepText = "3";
    applyFunctionValues(in, kModeFunction, old);
    Editor ed({old});
    EditorRecord e;
    e.editing = true, e.page = 0, e.name = "Count", e.block = 25, e.numBytes = 2, e.kindCode = 1;
    e.kindWord = "Function";
    ed.open(kModeFunction, e);
    EXPECT_TRUE(ed.child<QRadioButton>("optFunction(1)")->isChecked());
    EXPECT_EQ(ed.text("txtCountNumber"), "7");
    EXPECT_EQ(ed.text("txtCountStep"), "3");
}

}  // namespace
}  // namespace kestrin::test
