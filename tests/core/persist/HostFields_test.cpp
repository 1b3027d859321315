// The host project's fields as read from its project file.
#include <gtest/gtest.h>

#include "support/SavedFiles.h"

using namespace kestrin;
using namespace kestrin::test;
namespace fs = std::filesystem;

namespace {

std::string listed(const HostFieldList& list) {
    std::string out;
    for (const HostField& f : list.fields())
        out += f.dbField + "/" + f.name + "/" + f.fieldType + "/" + std::to_string(f.fieldSize) + "/" +
               std::to_string(f.column) + " ";
    for (const std::string& t : list.imageTypes()) out += "image " + t + " ";
    return out;
}

// The tag field and columns out of the project are left out; a count out of the 16-bit range
// ends the reading with a warning; each reading replaces the fields, and the image types when
// it names one.
TEST(HostFields, ProjectFilesAreReadAsTheHostWritesThem) {
    // no lines: the file is missing
    const struct { std::vector<std::string> lines; std::string fields; size_t warnings; } cases[] = {
        {{"[DATABASE]", "NUMCOLUMNS=4", "TagField=ID", "[COLUMN1]", "DbFIELD=FIRST", "NAME=First", "FIELDTYPE=Character",
          "FIELDSIZE=20", "[COLUMN2]", "DbFIELD=ID", "NAME=Id", "[COLUMN3]", "DbFIELD=@#@#\"Q\"", "NAME=Quoted /@x/@",
          "FIELDTYPE=Number", "FIELDSIZE=5", "InProject=1", "[COLUMN4]", "DbFIELD=HIDDEN", "InProject=0",
          "[ImageTypes]", "Count=2", "1=Photo", "2=Logo"},
         "FIRST/First/Character/20/0 \"Q\"/Quoted \"x\"/Number/5/2 image Photo image Logo ", 0},
        {{"[DATABASE]", "NUMCOLUMNS=2", "[COLUMN2]", "DbFIELD=B", "NAME=B"}, "B/B//0/1 ", 0},  // no image count: none,
        {{"[DATABASE]", "NUMCOLUMNS=32767", "[COLUMN1]", "DbFIELD=A", "[ImageTypes]", "Count=1", "1=Sign"},
         "A///0/0 image Sign ", 0},
        {{"[DATABASE]", "NUMCOLUMNS=32768"}, "A///0/0 image Sign ", 1},
        {{"[DATABASE]", "NUMCOLUMNS=-32769"}, "A///0/0 image Sign ", 1},
        {{"[DATABASE]", "NUMCOLUMNS=2", "[COLUMN1]", "DbFIELD=A", "[COLUMN2]", "DbFIELD=B", "FIELDSIZE=40000"},
         "A///0/0 image Sign ", 1},
        {{"[DATABASE]", "NUMCOLUMNS=1", "[COLUMN1]", "DbFIELD=A", "[ImageTypes]", "Count=70000"}, "A///0/0 image Sign ", 1},
        {{"[DATABASE]", "NUMCOLUMNS=-32768", "[ImageTypes]", "Count=0", "1=Photo"}, "", 0},
        {{}, "", 1},
    };
    TempDir dir;
    HostFieldList list;
    for (const auto& c : cases) {
        const std::string text = crlf(c.lines);
        fs::remove(dir / "P.ini");
        if (!c.lines.empty()) writeBytes(dir / "P.ini", text);
        std::vector<std::string> warnings;
        list.fetch(dir / "P.ini", &warnings);
        EXPECT_EQ(std::tuple(listed(list), warnings.size()), std::tuple(c.fields, c.warnings)) << text;
        EXPECT_EQ(list.highestIndex(), list.count() - 1);
    }
    // Every prefix of the bundled project gives at most the columns it names (a cut TagField lets the tag column in).
    const std::string project = readBytes(fs::path(KESTRIN_EXAMPLES) / "project/Sample.ini");
    for (size_t n = 0; n < project.size(); ++n) {
        list.fetchFromBytes(project.substr(0, n));
        EXPECT_LE(list.count(), 8) << n;
    }
    list.fetchFromBytes(crlf({"[DATABASE]", "NUMCOLUMNS=2", "[COLUMN1]", "DbFIELD=A", "[COLUMN2]", "DbFIELD=A", "NAME=x"}));
    // The first of two alike is found by its database field.
    EXPECT_EQ(std::tuple(list.byDbField("A")->column, list.byColumn(1)->name), std::tuple(0, "x"));
    EXPECT_TRUE(list.byDbField("a") == nullptr && list.byColumn(2) == nullptr);
    const std::pair<const char*, int16_t> types[] = {{"Character", 0}, {"Number", 1}, {"Numeric", 1}, {"Date", 2},
                                                     {"Binary", 3},    {"number", -1}, {"Memo", -1}};
    for (const auto& [text, code] : types) EXPECT_EQ(fieldTypeCode(text), code) << text;
}

}  // namespace
