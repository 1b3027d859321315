#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "persist/HostFields.h"
#include "persist/LayoutSaver.h"
#include "support/FaultyFileSystem.h"
#include "support/Records.h"
#include "support/SavedFiles.h"
#include "support/TestSupport.h"
#include "text/Translator.h"

using namespace kestrin;
using namespace kestrin::test;
namespace fs = std::filesystem;

namespace {

constexpr const char* kStem = "Card";
// A temporary file a crashed save left beside the layout.
constexpr const char* kLeftover = ".Card.IIF.777.tmp";

// Fields, a date, a big item, a bit field, a combined field, functions, checksums, bit
// functions and a database update.
RecordArray everyKind() {
    RecordArray records;
    records.add(field("Name", 0, 19, 0, 16, 0, 0x00E0C0A0));
    records.add(field("Valid", 0, 21, 0, 4, 10, 0x00A0E0C0));
    ItemRecord photo = field("Photo", 0, 22, 0, 24, 0, 0x00C0C0C0);
    photo.isBinary = true;
    photo.bigItemNumber = 2;
    records.add(photo);
    records.add(bitField("Flag", 0, 26, 0, 3, 4, 0x00B0B0E0));
    records.add(field("First [+] Last", 0, 27, 0, 8, 0, 0x00D0D0D0));
    records.add(function("Count", "1", "1000", "0", 0, 28, 0, 4, 0x00C8C8FF));
    records.add(function("Constant", "\"text\" constant", "", "", 0, 28, 4, 4, 0x00E0E0FF));
    ItemRecord sum = function("Checksum", "2", "", "", 0, 29, 0, 1, 0x00FFC8C8);
    sum.range = {0, 19, 0, 64, 0};
    sum.polynomial = {263, 0};
    records.add(sum);
    records.add(bitFunction("CardSnNr", "3", 0, 30, 0, 0, 7, 0x00C8FFC8));
    records.add(dbUpdate("LEVEL", "Count", "5", "1"));
    return records;
}

// One failing call's errors: what a full disk, a failing disk, a missing permission, a file
// system without hard links or a name taken meanwhile make that call return.
std::vector<int> errorsOf(Call call) {
    switch (call) {
        case Call::Status: return {EACCES, EIO};
        case Call::CreateNew: return {EACCES, ENOSPC, EEXIST};
        case Call::Write: return {EIO};
        case Call::Sync: return {EIO};
        case Call::Close: return {EIO};
        case Call::Rename: return {EACCES, EIO};
        case Call::Link: return {EPERM, EEXIST};
        case Call::Copy: return {ENOSPC};
        case Call::Remove: return {EIO};
        case Call::List: return {EACCES};
    }
    return {};
}

// Failures a save works around: a short write is continued, a taken name replaced by
// another, a missing hard link replaced by a copy; leftovers it cannot remove stay for the
// next save.
bool saveSurvives(Call call, Fault fault, int error) {
    return fault == Fault::ShortWrite || error == EEXIST || call == Call::Link || call == Call::Remove ||
           call == Call::List;
}

struct Scenario {
    const char* name;
    bool overExistingLayout;  // the layout, its chip encode file and a backup are there
    bool hardLinks;
};

class SaveFaults : public ::testing::TestWithParam<Scenario> {
protected:
    SaveFaults() {
        card.setChipSize(iBigOnePage);
        card.setUseHIDSection(true);
        card.setEnableBitwise(true);
        fields.setFields({{"Name", "NAME", "Character", 16, 0, true},
                          {"Valid", "VALID", "Date", 4, 1, true},
                          {"First", "FIRST", "Character", 8, 2, true},
                          {"Level", "LEVEL", "Number", 3, 3, true}});
        records = everyKind();

        TempDir reference;
        EXPECT_TRUE(saveReal(reference.path(), records).saved);
        expected = SavedFiles::read(reference.path(), kStem);
        if (GetParam().overExistingLayout) {
            RecordArray older;
            older.add(field("Name", 0, 19, 0, 4));
            RecordArray old;
            old.add(field("Name", 0, 19, 0, 8));
            old.add(field("Level", 0, 20, 0, 2));
            TempDir past;
            EXPECT_TRUE(saveReal(past.path(), older).saved);
            EXPECT_TRUE(saveReal(past.path(), old).saved);
            before = SavedFiles::read(past.path(), kStem);
        }
        contents.add("the new layout", expected.layout);
        contents.add("the new chip encode file", expected.encode);
        contents.add("the previous layout", before.layout);
        contents.add("the previous chip encode file", before.encode);
        contents.add("the previous backup", before.backup);
    }

    SaveOutcome saveReal(const fs::path& folder, const RecordArray& items) {
        RecordingPrompter quiet;
        return saveLayout(folder / (std::string(kStem) + ".IIF"), &card, items, fields, quiet, translator);
    }

    // The folder of a save that is about to fail: the scenario's files and a leftover.
    void prepare(const fs::path& folder) const {
        before.write(folder, kStem);
        writeBytes(folder / kLeftover, "left by a crashed save");
    }

    // A save through files, which sees the real folder under a name that does not exist.
    SaveOutcome saveThrough(FaultyFileSystem& files, const TempDir& dir, RecordingPrompter& prompter) {
        if (!GetParam().hardLinks) files.withoutHardLinks();
        return saveLayout(dir / "unseen" / (std::string(kStem) + ".IIF"), &card, records, fields, prompter, translator,
                          {}, files);
    }

    std::vector<Call> successfulSaveCalls();
    void saveFailing(int index, Call call, Fault fault, int error);

    CIClass card;
    RecordArray records;
    HostFieldList fields;
    Translator translator;
    SavedFiles expected;  // the complete new rendering
    SavedFiles before;    // the files there before the save
    KnownContents contents;
};

std::vector<Call> SaveFaults::successfulSaveCalls() {
    TempDir dir;
    prepare(dir.path());
    FaultyFileSystem files(dir / "unseen", dir.path());
    RecordingPrompter prompter;
    const SaveOutcome out = saveThrough(files, dir, prompter);
    EXPECT_TRUE(out.saved) << out.message;
    const SavedFiles after = SavedFiles::read(dir.path(), kStem);
    EXPECT_EQ(contents.nameOf(after.layout), "the new layout");
    EXPECT_EQ(contents.nameOf(after.encode), "the new chip encode file");
    EXPECT_EQ(contents.nameOf(after.backup), contents.nameOf(before.layout));
    EXPECT_EQ(hiddenTempFiles(dir.path()), std::vector<std::string>{}) << "the leftover is removed too";
    return files.calls();
}

void SaveFaults::saveFailing(int index, Call call, Fault fault, int error) {
    const std::string errorText = std::generic_category().message(fault == Fault::Error ? error : ENOSPC);
    SCOPED_TRACE("call " + std::to_string(index) + " (" + callName(call) + ") fails: " +
                 (fault == Fault::ShortWrite ? "short write" : errorText));
    TempDir dir;
    prepare(dir.path());
    FaultyFileSystem files(dir / "unseen", dir.path());
    files.failCall(index, fault, error);
    RecordingPrompter prompter;
    const SaveOutcome out = saveThrough(files, dir, prompter);
    ASSERT_TRUE(files.injected());
    EXPECT_EQ(files.openHandles(), 0);

    const SavedFiles after = SavedFiles::read(dir.path(), kStem);
    EXPECT_EQ(out.saved, saveSurvives(call, fault, error)) << out.message;
    if (out.saved) {
        EXPECT_TRUE(prompter.messages.empty());
        EXPECT_EQ(contents.nameOf(after.layout), "the new layout");
        EXPECT_EQ(contents.nameOf(after.encode), "the new chip encode file");
        EXPECT_EQ(contents.nameOf(after.backup), contents.nameOf(before.layout));
    } else {
        ASSERT_EQ(prompter.messages.size(), 1u);
        EXPECT_EQ(prompter.messages[0].icon, Icon::Exclamation);
        EXPECT_EQ(prompter.messages[0].text, out.message);
        EXPECT_NE(out.message.find(errorText), std::string::npos) << out.message;
        // Both current files are the previous ones; the backup may already hold the previous layout.
        EXPECT_EQ(contents.nameOf(after.layout), contents.nameOf(before.layout));
        EXPECT_EQ(contents.nameOf(after.encode), contents.nameOf(before.encode));
        if (after.backup != before.backup) {
            EXPECT_EQ(contents.nameOf(after.backup), contents.nameOf(before.layout));
        }
    }
    // Temporary files are removed, but for one whose removal was the failing call.
    for (const std::string& name : hiddenTempFiles(dir.path()))
        if (name != kLeftover && !(call == Call::Remove && files.failedPath() == dir / name))
            ADD_FAILURE() << "temporary file left behind: " << name;

    // The next save works and removes every leftover.
    const SavedFiles failed = SavedFiles::read(dir.path(), kStem);
    const SaveOutcome again = saveReal(dir.path(), records);
    ASSERT_TRUE(again.saved) << again.message;
    const SavedFiles next = SavedFiles::read(dir.path(), kStem);
    EXPECT_EQ(contents.nameOf(next.layout), "the new layout");
    EXPECT_EQ(contents.nameOf(next.encode), "the new chip encode file");
    EXPECT_EQ(contents.nameOf(next.backup), contents.nameOf(failed.layout ? failed.layout : failed.backup));
    EXPECT_EQ(hiddenTempFiles(dir.path()), std::vector<std::string>{});
}

TEST_P(SaveFaults, EveryFailingCallLeavesCompleteFilesAndTellsTheOperator) {
    const std::vector<Call> calls = successfulSaveCalls();
    // The save's existence checks, writes and renames all go through the file system seam.
    for (Call c : {Call::Status, Call::CreateNew, Call::Write, Call::Sync, Call::Close, Call::Rename, Call::List})
        EXPECT_NE(std::find(calls.begin(), calls.end(), c), calls.end()) << callName(c);
    if (GetParam().overExistingLayout) {
        EXPECT_NE(std::find(calls.begin(), calls.end(), GetParam().hardLinks ? Call::Link : Call::Copy), calls.end());
    }
    ASSERT_FALSE(HasFailure());

    for (int i = 0; i < static_cast<int>(calls.size()); ++i) {
        for (int error : errorsOf(calls[i])) saveFailing(i, calls[i], Fault::Error, error);
        if (calls[i] == Call::Write) {
            saveFailing(i, calls[i], Fault::ShortWrite, 0);
            saveFailing(i, calls[i], Fault::DiskFull, 0);
        }
        if (HasFatalFailure()) return;
    }
    RecordProperty("failurePoints", static_cast<int>(calls.size()));
}

TEST_P(SaveFaults, AChipEncodeFileThatCannotBeTakenBackIsReported) {
    const std::vector<Call> calls = successfulSaveCalls();
    // The last rename puts the layout file in place; in a save where it fails, the next call
    // puts the previous chip encode file back (or removes the new one on a first save).
    const auto last = std::find(calls.rbegin(), calls.rend(), Call::Rename);
    ASSERT_NE(last, calls.rend());
    const int layoutRename = static_cast<int>(calls.rend() - last) - 1;

    TempDir dir;
    prepare(dir.path());
    FaultyFileSystem files(dir / "unseen", dir.path());
    files.failCall(layoutRename, Fault::Error, EIO);
    files.failCall(layoutRename + 1, Fault::Error, EIO);
    RecordingPrompter prompter;
    const SaveOutcome out = saveThrough(files, dir, prompter);
    EXPECT_FALSE(out.saved);
    ASSERT_EQ(prompter.messages.size(), 1u);
    EXPECT_EQ(prompter.messages[0].text, out.message);
    const SavedFiles after = SavedFiles::read(dir.path(), kStem);
    EXPECT_EQ(contents.nameOf(after.layout), contents.nameOf(before.layout));
    EXPECT_EQ(contents.nameOf(after.encode), "the new chip encode file");
    EXPECT_EQ(out.message.find("unchanged"), std::string::npos) << out.message;
}

INSTANTIATE_TEST_SUITE_P(Saves, SaveFaults,
                         ::testing::Values(Scenario{"FirstSave", false, true}, Scenario{"OverExisting", true, true},
                                           Scenario{"OverExistingWithoutHardLinks", true, false}),
                         [](const auto& param) { return std::string(param.param.name); });

}  // namespace
