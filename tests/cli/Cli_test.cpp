#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <regex>
#include <string>
#include <vector>

#include "support/TestSupport.h"

using namespace kestrin::test;
namespace fs = std::filesystem;

namespace {

const std::string kExamples = KESTRIN_EXAMPLES;
const std::string kProject = kExamples + "/project/Sample.ini";
const std::string kLang = kExamples + "/lang/kestrin-en.txt";

struct CliRun {
    int exit = -1;
    std::string out;
    std::string err;
};

// Runs the command-line tool with the given arguments (already quoted where needed).
CliRun kestrin(const std::string& args) {
    TempDir tmp;
    const std::string errFile = (tmp / "stderr").string();
    const std::string command = std::string(KESTRIN_CLI) + " " + args + " 2>'" + errFile + "'";
    CliRun run;
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return run;
    char buf[4096];
    size_t n;
    while ((n = fread(buf, 1, sizeof buf, pipe)) > 0) run.out.append(buf, n);
    const int status = pclose(pipe);
    run.exit = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    run.err = readBytes(errFile);
    return run;
}

std::string quoted(const fs::path& p) { return "'" + p.string() + "'"; }

struct GoldenCase {
    const char* name;
    std::string args;
    const char* expectedFile;
};

class CliGolden : public ::testing::TestWithParam<GoldenCase> {};

TEST_P(CliGolden, PrintsTheProjectsFields) {
    const CliRun run = kestrin(GetParam().args);
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_EQ(run.out, readBytes(std::string(KESTRIN_CLI_EXPECTED) + "/" + GetParam().expectedFile));
}

INSTANTIATE_TEST_SUITE_P(
    Examples, CliGolden,
    ::testing::Values(
        GoldenCase{"Fields", "fields " + kProject, "sample-fields.txt"},
        GoldenCase{"FieldsJson", "fields " + kProject + " --json", "sample-fields.json"}),
    [](const auto& testInfo) { return testInfo.param.name; });

struct UsageCase {
    const char* name;
    std::string args;
};

class CliUsage : public ::testing::TestWithParam<UsageCase> {};

TEST_P(CliUsage, WrongUsageExitsTwoWithTheUsageText) {
    const CliRun run = kestrin(GetParam().args);
    EXPECT_EQ(run.exit, 2);
    EXPECT_TRUE(run.out.empty());
    EXPECT_NE(run.err.find("usage: kestrin info"), std::string::npos) << run.err;
}

INSTANTIATE_TEST_SUITE_P(Cases, CliUsage,
                         ::testing::Values(UsageCase{"NoCommand", ""}, UsageCase{"UnknownCommand", "print x"},
                                           UsageCase{"NoFile", "info"}, UsageCase{"TwoFiles", "info a b"},
                                           UsageCase{"UnknownOption", "info a --fast"},
                                           UsageCase{"ToWithoutValue", "rewrite a --to"},
                                           UsageCase{"ToWithInfo", "info a --to b"}),
                         [](const auto& testInfo) { return testInfo.param.name; });

TEST(Cli, MissingLayoutIsRefused) {
    const CliRun run = kestrin("info /nonexistent/L.IIF");
    EXPECT_EQ(run.exit, 1);
    EXPECT_NE(run.err.find("File doesn't exist"), std::string::npos) << run.err;
}

TEST(Cli, NewerFileIsRefusedUnlessAnsweredYes) {
    TempDir dir;
    writeBytes(dir / "New.IIF", crlf({"[GENERAL]", "Version=9.0.0", "[CARDDESIGN]", "Size=2K"}));
    const CliRun refused = kestrin("info " + quoted(dir / "New.IIF"));
    EXPECT_EQ(refused.exit, 1);
    EXPECT_NE(refused.err.find("The file was created with version 9.0.0"), std::string::npos) << refused.err;
    EXPECT_TRUE(refused.out.empty());
    const CliRun accepted = kestrin("info " + quoted(dir / "New.IIF") + " --yes --json");
    EXPECT_EQ(accepted.exit, 0);
    EXPECT_NE(accepted.out.find("\"chip\": \"iSmallOnePage\""), std::string::npos);
}

// Entries the reader drops are warnings to info and violations to check, with the rule they break.
struct DroppedCase {
    const char* name;
    std::string layout;
    std::vector<int> textIds;  // in check's order: the dropped entries first
    std::string firstLine;     // check's first line, with the English catalog
    std::string warning;       // the start of info's first warning
};

class CliDropped : public ::testing::TestWithParam<DroppedCase> {};

TEST_P(CliDropped, CheckReportsThemAndInfoWarns) {
    const DroppedCase& c = GetParam();
    TempDir dir;
    writeBytes(dir / "L.IIF", c.layout);
    const CliRun json = kestrin("check " + quoted(dir / "L.IIF") + " --json");
    EXPECT_EQ(json.exit, 1) << json.err;
    std::vector<int> ids;
    const std::regex textId("\"textId\": (-?[0-9]+)");
    for (std::sregex_iterator m(json.out.begin(), json.out.end(), textId), end; m != end; ++m)
        ids.push_back(std::stoi((*m)[1]));
    EXPECT_EQ(ids, c.textIds) << json.out;
    const CliRun text = kestrin("check " + quoted(dir / "L.IIF") + " --lang " + kLang);
    EXPECT_EQ(text.exit, 1);
    EXPECT_EQ(text.out.substr(0, text.out.find('\n')), c.firstLine);
    EXPECT_NE(text.out.find(std::to_string(c.textIds.size()) + " violation"), std::string::npos) << text.out;
    const CliRun info = kestrin("info " + quoted(dir / "L.IIF") + " --json");
    EXPECT_EQ(info.exit, 0);
    EXPECT_EQ(info.err.rfind("warning: " + c.warning, 0), 0u) << info.err;
    EXPECT_NE(info.out.find("\"warnings\": [\"" + c.warning), std::string::npos) << info.out;
}

INSTANTIATE_TEST_SUITE_P(
    Chips, CliDropped,
    ::testing::Values(
        DroppedCase{"SmallBytesAndBits",
                    crlf({"[CARDDESIGN]", "Size=2K", "[ENCODE]", "Ok(1)=0,19,0,1,0", "Past(1)=0,31,4,5,0",
                          "[BITENCODE]", "Flag(1)=0,31,7,4,5,0"}),
                    {4600, 4600},
                    "Past (Field, page 0, block 31, byte 4): [4600] The item does not fit into this page.",
                    "[ENCODE] Past(1): 5 bytes do not fit the page"},
        DroppedCase{"BigOnePageFunctions",
                    crlf({"[CARDDESIGN]", "Size=16K", "Pages=1", "[ENCODE]", "Far(1)=0,200,0,8,0", "[INITCARD]",
                          "1Value=CardSnNr(0)", "1Place=0,255,0,10", "[BITINITCARD]", "1Value=Constant(1)",
                          "1Place=0,255,7,6,3"}),
                    {4600, 4600},
                    "CardSnNr (Function, page 0, block 255, byte 0): [4600] The item does not fit into this page.",
                    "[INITCARD] 1Value: 10 bytes do not fit the page"},
        DroppedCase{"EightPages",
                    crlf({"[CARDDESIGN]", "Size=16K", "Pages=8", "[ENCODE]", "Past(1)=5,32,0,1,0",
                          "Gone(1)=8,20,0,1,0", "[BITINITCARD]", "1Value=Constant(1)", "1Place=3,31,7,7,2"}),
                    {4600, 3158, 4600},
                    "Past (Field, page 5, block 32, byte 0): [4600] The item does not fit into this page.",
                    "[ENCODE] Past(1): block 32, byte 0 is outside the page"},
        DroppedCase{"HidArea",
                    crlf({"[CARDDESIGN]", "Size=2K", "UseHID=1", "[ENCODE]", "Below(1)=0,-2,0,1,0",
                          "Hid(1)=0,10,0,1,0"}),
                    {4601, 4601, 4643},
                    "Below (Field, page 0, block -2, byte 0): [4601] Items cannot be placed in the header or the HID "
                    "section.",
                    "[ENCODE] Below(1): block -2, byte 0 is outside the page"},
        DroppedCase{"Unparsable", crlf({"[CARDDESIGN]", "Size=2K", "[ENCODE]", "Text(1)=0,x,0,1,0"}), {0},
                    "Text (Field): [0] \"0,x,0,1,0\" is not a list of 5 numbers in range",
                    "[ENCODE] Text(1): "}),
    [](const auto& testInfo) { return testInfo.param.name; });

TEST(Cli, CheckListsEveryBrokenRuleWithItsItem) {
    TempDir dir;
    writeBytes(dir / "Bad.IIF", crlf({"[CARDDESIGN]", "Size=2K", "UseHID=1", "[ENCODE]", "Name(1)=0,18,0,4,0",
                                      "Other(1)=0,20,0,8,0", "Late(1)=0,20,4,2,0", "[INITCARD]",
                                      "1Value=Checksum(1.1)", "1Place=0,25,0,2", "[CHECKSUM]", "1Range=0,20,0,8"}));
    const CliRun run = kestrin("check " + quoted(dir / "Bad.IIF") + " --json --lang " + kLang);
    EXPECT_EQ(run.exit, 1) << run.err;
    EXPECT_EQ(run.out,
              "{\"violations\": [\n"
              "  {\"name\": \"Name\", \"kind\": \"Field\", \"page\": 0, \"block\": 18, \"beginByte\": 0, "
              "\"textId\": 4601, \"text\": \"Items cannot be placed in the header or the HID section.\"},\n"
              "  {\"name\": \"Late\", \"kind\": \"Field\", \"page\": 0, \"block\": 20, \"beginByte\": 4, "
              "\"textId\": 3166, \"text\": \"The new item overlaps another item. OK replaces the old item, Cancel keeps "
              "it: Other.\"},\n"
              "  {\"name\": \"Checksum\", \"kind\": \"Function\", \"page\": 0, \"block\": 25, \"beginByte\": 0, "
              "\"textId\": 3162, \"text\": \"Checksum functions must occupy exactly 1 byte.\"},\n"
              "  {\"name\": \"Name\", \"kind\": \"Field\", \"page\": 0, \"block\": 18, \"beginByte\": 0, "
              "\"textId\": 4643, \"text\": \"The HID space would cover database items or functions.\\r\\nSwitch the HID "
              "application off, or click Cancel and move your items.\"}\n"
              "]}\n");
}

#ifdef KESTRIN_CLI_HAS_MAP
TEST(Cli, MapWritesAPdfSheetAndAPngPerView) {
    TempDir dir;
    // Qt's threads upset LeakSanitizer at exit; sanitizer builds check this run without it.
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    const CliRun run = kestrin("map " + kExamples + "/layouts/Visitors16K.IIF --pdf " + quoted(dir / "map.pdf") +
                               " --png " + quoted(dir / "png") + " --lang " + kLang);
    ASSERT_EQ(run.exit, 0) << run.err;
    FILE* pipe = popen(("pdfinfo " + quoted(dir / "map.pdf")).c_str(), "r");
    ASSERT_NE(pipe, nullptr);
    char buf[4096];
    const std::string pdfInfo(buf, fread(buf, 1, sizeof buf, pipe));
    pclose(pipe);
    const auto pages = pdfInfo.find("Pages:");
    ASSERT_NE(pages, std::string::npos) << pdfInfo;
    EXPECT_EQ(std::stoi(pdfInfo.substr(pages + 6)), 4) << pdfInfo;
    for (int view = 1; view <= 4; ++view)
        EXPECT_TRUE(fs::file_size(dir / "png" / ("view-" + std::to_string(view) + ".png")) > 1000) << view;
    EXPECT_FALSE(fs::exists(dir / "png" / "view-5.png"));
}

TEST(Cli, MapNeedsSomethingToWrite) {
    EXPECT_EQ(kestrin("map " + kExamples + "/layouts/Staff.IIF").exit, 2);
    EXPECT_EQ(kestrin("info " + kExamples + "/layouts/Staff.IIF --png x").exit, 2);
}
#endif

}  // namespace
