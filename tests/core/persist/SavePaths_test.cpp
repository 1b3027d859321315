#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "persist/FileSystem.h"
#include "persist/HostFields.h"
#include "persist/LayoutSaver.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

using namespace kestrin;
using namespace kestrin::test;
namespace fs = std::filesystem;

namespace {

fs::path utf8Path(const std::string& text) { return fs::path(std::u8string(text.begin(), text.end())); }

struct PathCase {
    std::string layout;
    std::string encodeFolder;
    std::string chipEncode;  // the chip encode file beside the layout, or in encodeFolder
    std::string backup;
};

// The chip encode file is the folder, the separator, the layout's name and ".CHP".
TEST(SavePaths, FollowTheLayoutsFolderAndName) {
    const PathCase cases[] = {
#ifdef _WIN32
        {"C:\\Cards\\Staff.IIF", "", "C:\\Cards\\Staff.CHP", "C:\\Cards\\Staff.IIF.BAK"},
        {"C:/Cards/Staff.IIF", "", "C:/Cards\\Staff.CHP", "C:/Cards\\Staff.IIF.BAK"},
        {"C:\\Cards\\Staff.IIF", "D:\\Encode", "D:\\Encode\\Staff.CHP", "C:\\Cards\\Staff.IIF.BAK"},
        {"\\\\server\\share\\Staff.IIF", "", "\\\\server\\share\\Staff.CHP", "\\\\server\\share\\Staff.IIF.BAK"},
        {"C:Staff.IIF", "", "C:Staff.CHP", "C:Staff.IIF.BAK"},
        {"C:\\Staff.IIF", "", "C:\\Staff.CHP", "C:\\Staff.IIF.BAK"},
#else
        {"/cards/Staff.IIF", "", "/cards/Staff.CHP", "/cards/Staff.IIF.BAK"},
        {"/cards/Staff.IIF", "/encode", "/encode/Staff.CHP", "/cards/Staff.IIF.BAK"},
        {"C:\\Cards\\Staff.IIF", "", "C:\\Cards\\Staff.CHP", "C:\\Cards\\Staff.IIF.BAK"},  // one name on Linux
#endif
        {"Staff.IIF", "", "Staff.CHP", "Staff.IIF.BAK"},
        {"Staff.v2.iif", "", "Staff.v2.CHP", "Staff.v2.IIF.BAK"},
        {"Gr\xC3\xB6\xC3\x9F" "e \xE2\x82\xAC.IIF", "", "Gr\xC3\xB6\xC3\x9F" "e \xE2\x82\xAC.CHP",
         "Gr\xC3\xB6\xC3\x9F" "e \xE2\x82\xAC.IIF.BAK"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(chipEncodePathFor(utf8Path(c.layout), utf8Path(c.encodeFolder)), utf8Path(c.chipEncode)) << c.layout;
        EXPECT_EQ(backupPathFor(utf8Path(c.layout)), utf8Path(c.backup)) << c.layout;
        EXPECT_EQ(pathText(chipEncodePathFor(utf8Path(c.layout), utf8Path(c.encodeFolder))), c.chipEncode);
    }
}

// A layout whose name Windows-1252 cannot hold is saved under that name, with its chip
// encode file and backup beside it, and no temporary file left.
TEST(SavePaths, ANameOutsideTheCodePageKeepsEveryCharacter) {
    TempDir dir;
    CIClass card;
    RecordArray records;
    records.add(field("Name", 0, 19, 0, 8));
    HostFieldList fields;
    RecordingPrompter prompter;
    Translator translator;
    const fs::path layout = dir.path() / utf8Path("\xCE\x9A\xCE\xAC\xCF\x81\xCF\x84\xCE\xB1 \xE2\x82\xAC.IIF");
    for (int save = 0; save < 2; ++save) {
        const SaveOutcome out = saveLayout(layout, &card, records, fields, prompter, translator);
        ASSERT_TRUE(out.saved) << out.message;
    }
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(dir.path())) names.push_back(pathText(entry.path().filename()));
    std::sort(names.begin(), names.end());
    const std::string stem = "\xCE\x9A\xCE\xAC\xCF\x81\xCF\x84\xCE\xB1 \xE2\x82\xAC";
    EXPECT_EQ(names, (std::vector<std::string>{stem + ".CHP", stem + ".IIF", stem + ".IIF.BAK"}));
}

}  // namespace
