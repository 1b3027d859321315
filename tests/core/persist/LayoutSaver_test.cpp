#include <gtest/gtest.h>

#include <filesystem>

#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "persist/LayoutSaver.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

using namespace kestrin;
using namespace kestrin::test;
namespace fs = std::filesystem;

namespace {

class LayoutSaverTest : public ::testing::Test {
protected:
    LayoutSaverTest() {
        records.add(field("Name", 0, 19, 0, 8));
        fields.setFields({{"Name", "NAME", "Character", 8, 0, true}});
    }
    SaveOutcome save(const fs::path& file) { return saveLayout(file, &card, records, fields, prompter, translator); }

    TempDir dir;
    CIClass card;
    RecordArray records;
    HostFieldList fields;
    RecordingPrompter prompter;
    Translator translator;
};

TEST_F(LayoutSaverTest, FirstSaveWritesLayoutAndEncodeFileWithoutBackup) {
    const auto out = save(dir / "Card.IIF");
    ASSERT_TRUE(out.saved) << out.message;
    EXPECT_TRUE(fs::exists(dir / "Card.IIF"));
    EXPECT_EQ(out.chipEncodeFile, dir / "Card.CHP");
    EXPECT_NE(readBytes(dir / "Card.CHP").find("Data=Name\r\n"), std::string::npos);
    EXPECT_FALSE(fs::exists(dir / "Card.IIF.BAK"));
    EXPECT_TRUE(prompter.messages.empty());
}

TEST_F(LayoutSaverTest, SavingTwiceKeepsTheFirstSaveAsBackup) {
    ASSERT_TRUE(save(dir / "Card.IIF").saved);
    const std::string first = readBytes(dir / "Card.IIF");
    records.add(field("Name", 0, 20, 0, 8));
    ASSERT_TRUE(save(dir / "Card.IIF").saved);
    EXPECT_EQ(readBytes(dir / "Card.IIF.BAK"), first);
    EXPECT_NE(readBytes(dir / "Card.IIF"), first);
    ASSERT_TRUE(save(dir / "Card.IIF").saved);
    EXPECT_NE(readBytes(dir / "Card.IIF.BAK"), first);  // one generation only
    for (const auto& entry : fs::directory_iterator(dir.path()))
        EXPECT_EQ(entry.path().extension() == ".tmp", false) << entry.path();
}

TEST_F(LayoutSaverTest, LayoutWithoutEncodeFileIsRefusedUntouched) {
    writeBytes(dir / "Card.IIF", "old");
    const auto out = save(dir / "Card.IIF");
    EXPECT_FALSE(out.saved);
    ASSERT_EQ(prompter.messages.size(), 1u);
    EXPECT_EQ(prompter.messages[0].icon, Icon::Exclamation);
    EXPECT_EQ(prompter.messages[0].text, translator.text(kTextEncodeFileMissing, out.message));
    EXPECT_EQ(readBytes(dir / "Card.IIF"), "old");
    EXPECT_FALSE(fs::exists(dir / "Card.CHP"));
}

struct ReadOnlyCase {
    const char* file;
    const char* kind;
};

class ReadOnly : public LayoutSaverTest, public ::testing::WithParamInterface<ReadOnlyCase> {};

TEST_P(ReadOnly, ReadOnlyFilesAreRefusedNamingTheirKind) {
    writeBytes(dir / "Card.IIF", "old layout");
    writeBytes(dir / "Card.CHP", "old encode");
    fs::permissions(dir / GetParam().file, fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write,
                    fs::perm_options::remove);
    const auto out = save(dir / "Card.IIF");
    EXPECT_FALSE(out.saved);
    ASSERT_EQ(prompter.messages.size(), 1u);
    EXPECT_EQ(prompter.messages[0].text,
              translator.text(kTextReadOnlyBefore, "<The>") + " " + GetParam().kind + " " +
                  translator.text(kTextReadOnlyAfter, "<is read-only and cannot be overwritten.>"));
    EXPECT_EQ(readBytes(dir / "Card.IIF"), "old layout");
    EXPECT_EQ(readBytes(dir / "Card.CHP"), "old encode");
    EXPECT_FALSE(fs::exists(dir / "Card.IIF.BAK"));
}

INSTANTIATE_TEST_SUITE_P(Files, ReadOnly,
                         ::testing::Values(ReadOnlyCase{"Card.IIF", "iClass Encode File"},
                                           ReadOnlyCase{"Card.CHP", "Chip Encode File"}));

TEST_F(LayoutSaverTest, UnwritableFolderFailsWithAMessageAndLeavesFilesComplete) {
    ASSERT_TRUE(save(dir / "Card.IIF").saved);
    const std::string layout = readBytes(dir / "Card.IIF");
    // A path below a regular file cannot be created by anyone, root included.
    const auto out = save(dir / "Card.IIF" / "Nested.IIF");
    EXPECT_FALSE(out.saved);
    ASSERT_EQ(prompter.messages.size(), 1u);
    EXPECT_NE(prompter.messages[0].text.find("could not be saved"), std::string::npos);
    EXPECT_EQ(readBytes(dir / "Card.IIF"), layout);
}

TEST_F(LayoutSaverTest, FailedEncodeFileLeavesTheOldLayoutAndBackup) {
    ASSERT_TRUE(save(dir / "Card.IIF").saved);
    ASSERT_TRUE(save(dir / "Card.IIF").saved);
    const std::string layout = readBytes(dir / "Card.IIF");
    const std::string backup = readBytes(dir / "Card.IIF.BAK");
    // The encode file cannot be written into a folder that does not exist: the layout
    // was already staged and must not change, nor its backup.
    const auto out = saveLayout(dir / "Card.IIF", &card, records, fields, prompter, translator, dir / "missing");
    EXPECT_FALSE(out.saved);
    EXPECT_EQ(readBytes(dir / "Card.IIF"), layout);
    EXPECT_EQ(readBytes(dir / "Card.IIF.BAK"), backup);
    EXPECT_EQ(std::distance(fs::directory_iterator(dir.path()), fs::directory_iterator()), 3);
}

TEST_F(LayoutSaverTest, EncodeFileCanGoToItsOwnFolder) {
    fs::create_directories(dir / "encode");
    const auto out = saveLayout(dir / "Card.IIF", &card, records, fields, prompter, translator, dir / "encode");
    ASSERT_TRUE(out.saved);
    EXPECT_TRUE(fs::exists(dir / "encode" / "Card.CHP"));
}

TEST_F(LayoutSaverTest, NoCardNoSave) {
    EXPECT_FALSE(saveLayout(dir / "Card.IIF", nullptr, records, fields, prompter, translator).saved);
    EXPECT_FALSE(fs::exists(dir / "Card.IIF"));
}

}  // namespace
