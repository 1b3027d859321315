// What a save meets only on Windows: file attributes and files that another program holds open.
#ifdef _WIN32
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>

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

class WindowsSave : public ::testing::Test {
protected:
    WindowsSave() {
        records.add(field("Name", 0, 19, 0, 8));
        writeBytes(layout, "old layout");
        writeBytes(encode, "old encode");
    }
    SaveOutcome save() { return saveLayout(layout, &card, records, fields, prompter, translator); }
    std::size_t filesInFolder() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(dir.path()), fs::directory_iterator()));
    }

    TempDir dir;
    fs::path layout = dir / "Card.IIF";
    fs::path encode = dir / "Card.CHP";
    CIClass card;
    RecordArray records;
    HostFieldList fields;
    RecordingPrompter prompter;
    Translator translator;
};

struct AttributeCase {
    DWORD attributes;
    bool readOnly;
};

// Only the read-only attribute refuses a file; hidden, system and archived files are saved.
TEST_F(WindowsSave, TheReadOnlyAttributeAloneRefusesAFile) {
    const AttributeCase cases[] = {
        {FILE_ATTRIBUTE_NORMAL, false},
        {FILE_ATTRIBUTE_ARCHIVE, false},
        {FILE_ATTRIBUTE_HIDDEN, false},
        {FILE_ATTRIBUTE_READONLY, true},
        {FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN, true},
    };
    for (const auto& c : cases) {
        for (const fs::path& file : {layout, encode}) {
            ASSERT_TRUE(SetFileAttributesW(file.c_str(), c.attributes));
            FileStatus status;
            EXPECT_FALSE(systemFileSystem().status(file, status));
            EXPECT_EQ(status.readOnly, c.readOnly) << c.attributes;
            const SaveOutcome out = save();
            EXPECT_EQ(out.saved, !c.readOnly) << c.attributes << " " << out.message;
            SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
        }
    }
}

// A layout open in another program that does not share it for deleting cannot be replaced:
// the save is refused with a message and leaves the layout and its chip encode file as they
// were, the backup a complete copy of that layout, and no temporary file. Once the program
// lets go, the save succeeds.
TEST_F(WindowsSave, ALayoutHeldOpenElsewhereIsRefusedAndKeptWhole) {
    ASSERT_TRUE(save().saved);
    const std::string savedLayout = readBytes(layout), savedEncode = readBytes(encode);
    const HANDLE held = CreateFileW(layout.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    records.add(field("Other", 0, 20, 0, 8));
    const SaveOutcome refused = save();
    CloseHandle(held);
    EXPECT_FALSE(refused.saved);
    EXPECT_NE(refused.message.find("could not be saved"), std::string::npos) << refused.message;
    EXPECT_EQ(readBytes(layout), savedLayout);
    EXPECT_EQ(readBytes(encode), savedEncode);
    EXPECT_EQ(readBytes(dir / "Card.IIF.BAK"), savedLayout);
    EXPECT_EQ(filesInFolder(), 3u);
    const SaveOutcome out = save();
    ASSERT_TRUE(out.saved) << out.message;
    EXPECT_NE(readBytes(layout), savedLayout);
}

}  // namespace
#endif  // _WIN32
