// The command-line tool as a script runs it: what it prints on standard output and error and
// the exit code (0 done, 1 refused or violations found, 2 wrong usage).
#include <gtest/gtest.h>

#include <regex>

#include "support/TestSupport.h"

using namespace kestrin::test;
namespace fs = std::filesystem;

namespace {

const std::string kExamples = KESTRIN_EXAMPLES;
const std::string kLang = kExamples + "/lang/kestrin-en.txt";

struct CliRun { int exit = -1; std::string out, err; };

// Runs a shell command: its exit code and standard output.
CliRun shell(const std::string& command) {
    CliRun run;
    FILE* pipe = popen(command.c_str(), "r");
    char buf[4096];
    for (size_t n; pipe && (n = fread(buf, 1, sizeof buf, pipe)) > 0;) run.out.append(buf, n);
    const int status = pipe ? pclose(pipe) : -1;
    run.exit = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

// Runs the tool on a layout holding the given bytes: "L" in the arguments names its file.
CliRun kestrin(std::string args, const std::string& layout = {}) {
    TempDir tmp;
    if (const auto at = args.find(" L"); at != std::string::npos && (at + 2 == args.size() || args[at + 2] == ' '))
        args.replace(at + 1, 1, "'" + (tmp / "L.IIF").string() + "'");
    writeBytes(tmp / "L.IIF", layout);
    CliRun run = shell(std::string(KESTRIN_CLI) + " " + args + " 2>'" + (tmp / "err").string() + "'");
    run.err = readBytes(tmp / "err");
    return run;
}

const std::string kUsage = "usage: kestrin info LAYOUT.IIF [--json]";
const std::string kLater = crlf({"[GENERAL]", "Version=9.0.0", "[CARDDESIGN]", "Size=2K"});
// A field past the end of the page, which the reader drops. The layouts generated/dropped-*.IIF drop
// entries of every kind and section; cli.generated holds all that info and check print for them.
const std::string kDropped = crlf({"[CARDDESIGN]", "Size=2K", "[ENCODE]", "Ok(1)=0,19,0,1,0", "Past(1)=0,31,4,5,0"});

// The arguments, the layout, the exit code, what standard output holds ("=" first: all it holds) and
// what standard error holds.
struct RunCase { std::string args, layout; int exit; std::string out, err; };

TEST(Cli, ExitCodesAndMessages) {
    std::vector<RunCase> cases;
    for (const char* dpi : {"23", "601", "99999999999", "-96", "1e3"})
        cases.push_back({"map L --png x --dpi " + std::string(dpi), "", 2, "=",
                         "kestrin: --dpi takes a whole number from 24 to 600, not " + std::string(dpi) + "\n"});
    cases.insert(cases.end(), {
        {"", "", 2, "=", "kestrin: no command given\n" + kUsage},
        {"print x", "", 2, "=", "kestrin: unknown command print\n" + kUsage},
        {"info", "", 2, "=", "kestrin: info takes exactly one file\n" + kUsage},
        {"check L b", "", 2, "=", "kestrin: check takes exactly one file\n"},
        {"info L --fast", "", 2, "=", "kestrin: unknown option --fast\n"},
        {"rewrite L --to", "", 2, "=", "kestrin: --to needs a value\n"},
        {"info L --to b", "", 2, "=", "kestrin: --to goes with rewrite\n"},
        {"check L --png x", "", 2, "=", "kestrin: --pdf and --png go with map\n"},
        {"map L", "", 2, "=", "kestrin: map needs --pdf or --png\n"},
        {"map L --pdf x.pdf --dpi 300", "", 2, "=", "kestrin: --dpi goes with map --png\n"},
        {"info /nonexistent/L.IIF", "", 1, "=", "kestrin: iClass UserControl: File doesn't exist"},
        {"info L", kLater, 1, "=", "The file was created with version 9.0.0\n"},
        {"info L", kLater, 1, "=",
         "(not confirmed; repeat with --yes to go on)\nkestrin: The layout was made by a later version and was not opened.\n"},
        {"rewrite L --to /nonexistent/To.IIF --yes", kLater, 1, "=",
         "(answered Yes by --yes)\nKestrin: The layout could not be saved; the layout file and its chip encode file are "
         "unchanged.\n"
         "cannot create a file in /nonexistent: No such file or directory\n"},
        {"info L --yes --json", kLater, 0, "\"chip\": \"iSmallOnePage\"", ""},
        {"check L --yes", kLater, 0, "=0 violations\n", ""},
        // a dropped entry is a warning to info and a violation to check, with the rule it breaks
        {"info L", kDropped, 0, "Items: 1\n", "warning: [ENCODE] Past(1): 5 bytes do not fit the page; entry dropped\n"},
        {"check L --lang " + kLang, kDropped, 1,
         "=Past (Field, page 0, block 31, byte 4): [4600] The item does not fit into this page.\n1 violation\n", ""},
        {"fields " + kExamples + "/project/Sample.ini --json", "", 0,
         "=" + readBytes(std::string(KESTRIN_CLI_EXPECTED) + "/sample-fields.json"), ""},
        // check lists every broken rule with its item, the HID cover last
        {"check L --json --lang " + kLang,
         crlf({"[CARDDESIGN]", "Size=2K", "UseHID=1", "[ENCODE]", "Name(1)=0,18,0,4,0", "Other(1)=0,20,0,8,0",
               "Late(1)=0,20,4,2,0", "[INITCARD]", "1Value=Checksum(1.1)", "1Place=0,25,0,2", "[CHECKSUM]", "1Range=0,20,0,8"}),
         1,
         "={\"violations\": [\n"
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
         "]}\n",
         ""},
    });
    for (const RunCase& c : cases) {
        const CliRun run = kestrin(c.args, c.layout);
        EXPECT_EQ(std::make_tuple(run.exit, c.out[0] == '=' ? "=" + run.out == c.out : run.out.find(c.out) != std::string::npos,
                                  run.err.find(c.err) != std::string::npos),
                  std::make_tuple(c.exit, true, true)) << c.args << "\n" << run.out << run.err;
    }
}

#ifdef KESTRIN_CLI_HAS_MAP
// The width and height a PNG file's header gives.
std::pair<int, int> pngSize(const fs::path& png) {
    const std::string b = fs::exists(png) ? readBytes(png.string()) : std::string();
    const auto at = [&](std::size_t i) {
        return uint8_t(b[i]) << 24 | uint8_t(b[i + 1]) << 16 | uint8_t(b[i + 2]) << 8 | uint8_t(b[i + 3]);
    };
    return b.size() < 24 || b.compare(12, 4, "IHDR") != 0 ? std::pair(0, 0) : std::pair(at(16), at(20));
}

// A PDF sheet a view, and a PNG a view drawn at the resolution asked: the same sheet at twice the
// resolution is twice as wide and high.
TEST(Cli, MapWritesAPdfPageAndAPngPerViewAtTheResolutionAsked) {
    TempDir dir;
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);  // Qt's threads upset LeakSanitizer at exit
    const CliRun run = kestrin("map " + kExamples + "/layouts/Visitors16K.IIF --pdf '" + (dir / "map.pdf").string() +
                               "' --png '" + (dir / "png").string() + "' --lang " + kLang);
    ASSERT_EQ(run.exit, 0) << run.err;
    const std::string pdfInfo = shell("pdfinfo '" + (dir / "map.pdf").string() + "'").out;
    EXPECT_TRUE(std::regex_search(pdfInfo, std::regex("Pages: +4\n"))) << pdfInfo;
    const auto sheet = pngSize(dir / "png" / "view-1.png");
    EXPECT_GT(sheet.second, sheet.first);  // a sheet of paper, upright
    EXPECT_NEAR(sheet.first, 96 * 8.27, 96 * 0.3);  // A4 or Letter, about 8.3 or 8.5 inches wide at 96 dpi
    for (int view = 1; view <= 5; ++view)
        EXPECT_EQ(pngSize(dir / "png" / ("view-" + std::to_string(view) + ".png")), view < 5 ? sheet : std::pair(0, 0)) << view;
    ASSERT_EQ(kestrin("map " + kExamples + "/layouts/Staff.IIF --png '" + (dir / "sharp").string() + "' --dpi 192").exit, 0);
    const auto [width, height] = pngSize(dir / "sharp" / "view-1.png");
    EXPECT_TRUE(std::abs(width - 2 * sheet.first) <= 1 && std::abs(height - 2 * sheet.second) <= 1) << width << " x " << height;
}
#endif

}  // namespace
