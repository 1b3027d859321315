#include <gtest/gtest.h>

#include <set>

#include "rules/Encodings.h"
#include "persist/HostFields.h"

using namespace kestrin;

namespace {

const std::string k40Digits(40, '9');

// An expected option button: id 0 means hidden.
struct Shown {
    int32_t id;
    std::string_view caption;
    bool enabled;
};

struct OptionsCase {
    std::string_view typeText;
    int32_t mode;
    std::array<Shown, 4> options;
    int selected;
};

class EncodingOptionsTable : public ::testing::TestWithParam<OptionsCase> {};

TEST_P(EncodingOptionsTable, ShowsTheTypesOptionsForTheMode) {
    const auto& c = GetParam();
    const EncodingOptions got = encodingOptions(fieldTypeCode(c.typeText), c.mode);
    EXPECT_EQ(got.selected, c.selected);
    for (size_t i = 0; i < 4; ++i) {
        SCOPED_TRACE(i);
        const Shown& want = c.options[i];
        EXPECT_EQ(got.options[i].visible, want.id != 0);
        if (want.id == 0) continue;
        EXPECT_EQ(got.options[i].textId, want.id);
        EXPECT_EQ(got.options[i].defaultCaption, want.caption);
        EXPECT_EQ(got.options[i].enabled, want.enabled);
    }
}

constexpr Shown kNone{0, "", false};
constexpr std::string_view kString121 = "<String (one-to-one)>", kMotorola = "<Motorola dec.(HiByte-LoByte)>",
                           kBcd = "<Binary Coded Decimal (BCD)>";
const std::array<Shown, 4> kNumberOptions{Shown{3167, kString121, true}, Shown{3168, kMotorola, true},
                                          Shown{3169, "<Intel decimal (LoByte-HiByte)>", true},
                                          Shown{3203, kBcd, true}};
const std::array<Shown, 4> kBitFieldOption{Shown{3168, kMotorola, false}, kNone, kNone, kNone};
const std::array<Shown, 4> kNoOptions{kNone, kNone, kNone, kNone};

INSTANTIATE_TEST_SUITE_P(
    EncodingsByTypeAndMode, EncodingOptionsTable,
    ::testing::Values(
        OptionsCase{"Character", 0, {Shown{3167, kString121, false}, kNone, kNone, kNone}, 0},
        OptionsCase{"Number", 0, kNumberOptions, 0}, OptionsCase{"Numeric", 0, kNumberOptions, 0},
        OptionsCase{"Date", 0, {Shown{3202, "<String>", true}, {3108, "<Decimal>", true}, {3203, kBcd, true}, kNone},
                    0},
        OptionsCase{"Binary", 0, {Shown{3175, "<Encode 'as is>", false}, kNone, kNone, kNone}, 0},
        OptionsCase{"Date", 2, kBitFieldOption, 0}, OptionsCase{"Number", 1, kNoOptions, -1},
        OptionsCase{"Date", 3, kNoOptions, -1}, OptionsCase{"Memo", 0, kNoOptions, -1}));

// A choice's format list (its size and selected first entry) and its stored code.
struct CodeCase {
    int16_t type;
    int option, format;
    size_t formats;
    std::string_view firstFormat;
    int16_t code;
};

class EncodingCodeTable : public ::testing::TestWithParam<CodeCase> {};

TEST_P(EncodingCodeTable, ListsFormatsAndGivesTheStoredCode) {
    const auto& c = GetParam();
    const auto list = formatList(c.type, c.option);
    ASSERT_EQ(list.size(), c.formats);
    if (!list.empty()) {
        EXPECT_EQ(list.front(), c.firstFormat);
    }
    EXPECT_EQ(EncodingCode(c.type, c.option, c.format), c.code);
}

// Motorola after BCD: the hidden list's stale index is ignored.
INSTANTIATE_TEST_SUITE_P(
    EncodingChoices, EncodingCodeTable,
    ::testing::Values(CodeCase{kFieldTypeNumber, 3, 0, 2, "Prefix 0", 3}, CodeCase{kFieldTypeNumber, 1, 0, 0, "", 1},
                      CodeCase{kFieldTypeNumber, 3, -1, 2, "Prefix 0", 0},
                      CodeCase{kFieldTypeNumber, 3, 2, 2, "Prefix 0", 0},
                      CodeCase{kFieldTypeDate, 0, 3, 4, "DD/MM/CCYY", 67},
                      CodeCase{kFieldTypeDate, 1, 2, 3, "DD MM CC YY", 34},
                      CodeCase{kFieldTypeDate, 2, 2, 3, "DD MM CC YY", 10},
                      CodeCase{kFieldTypeDate, 0, 4, 4, "DD/MM/CCYY", 64},
                      CodeCase{kFieldTypeCharacter, 0, -1, 0, "", 0}, CodeCase{kFieldTypeBinary, 0, -1, 0, "", 0},
                      CodeCase{kFieldTypeNumber, 9, -1, 0, "", 0}));

TEST(EncodingCodeRoundTrip, EveryChoiceReadsBackFromItsCode) {
    std::set<int16_t> dateCodes;
    for (int16_t type = kFieldTypeCharacter; type <= kFieldTypeBinary; ++type) {
        const auto opts = encodingOptions(type, 0).options;
        for (int option = 0; option < 4; ++option) {
            if (!opts[static_cast<size_t>(option)].visible) continue;
            const int formats = static_cast<int>(formatList(type, option).size());
            for (int f = formats ? 0 : -1; f < formats; ++f) {
                const int16_t code = EncodingCode(type, option, f);
                EXPECT_EQ(encodingChoiceOf(type, code), (EncodingChoice{option, f}))
                    << "type " << type << " option " << option << " format " << f;
                if (type == kFieldTypeDate) dateCodes.insert(code);
            }
        }
    }
    EXPECT_EQ(dateCodes, (std::set<int16_t>{8, 9, 10, 32, 33, 34, 64, 65, 66, 67}));
}

TEST(EncodingCodeRoundTrip, UnknownCodesFallBackToOptionZero) {
    EXPECT_EQ(encodingChoiceOf(kFieldTypeNumber, 7), (EncodingChoice{0, -1}));
    EXPECT_EQ(encodingChoiceOf(kFieldTypeDate, 11), (EncodingChoice{0, 0}));
    EXPECT_EQ(encodingChoiceOf(-1, 1), (EncodingChoice{-1, -1}));
}

struct SizeCase {
    std::string text;
    int32_t mode;
    std::string_view function;
    bool parity;
    std::string want;
};

class SizeTyping : public ::testing::TestWithParam<SizeCase> {};

TEST_P(SizeTyping, CutsToTheModesLimit) {
    const auto& c = GetParam();
    EXPECT_EQ(limitSizeText(c.text, c.mode, c.function, c.parity, 256), c.want);
}

INSTANTIATE_TEST_SUITE_P(
    Modes, SizeTyping,
    ::testing::Values(SizeCase{"400", 2, "", false, "384"}, SizeCase{"384", 2, "", false, "384"},
                      SizeCase{"300", 0, "", false, "256"}, SizeCase{"300", 1, "Count", false, "256"},
                      SizeCase{"2", 3, "Checksum", true, "1"}, SizeCase{"9", 3, "Checksum", false, "8"},
                      SizeCase{"500", 3, "Constant", false, "500"}, SizeCase{"", 2, "", false, ""},
                      SizeCase{"12a", 0, "", false, "12a"}, SizeCase{k40Digits, 2, "", false, "384"},
                      SizeCase{k40Digits, 0, "", false, "256"}));

struct SpinCase {
    std::string text, up, down;
};

class SpinButtons : public ::testing::TestWithParam<SpinCase> {};

TEST_P(SpinButtons, StepByOneAndStayAtOrAboveOne) {
    const auto& c = GetParam();
    EXPECT_EQ(spinUp(c.text), c.up);
    EXPECT_EQ(spinDown(c.text), c.down);
}

INSTANTIATE_TEST_SUITE_P(
    Values, SpinButtons,
    ::testing::Values(SpinCase{"", "2", ""}, SpinCase{"x", "2", "x"}, SpinCase{"0", "1", "0"},
                      SpinCase{"1", "2", "1"}, SpinCase{"2", "3", "1"}, SpinCase{"099", "100", "98"},
                      SpinCase{"32767", "32768", "32766"}, SpinCase{"1.5", "2.5", "1"},
                      SpinCase{k40Digits, "1" + std::string(40, '0'), std::string(39, '9') + "8"},
                      SpinCase{"1" + std::string(40, '0'), "1" + std::string(39, '0') + "1", k40Digits}));

}  // namespace
