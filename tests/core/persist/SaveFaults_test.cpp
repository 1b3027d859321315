// Every file system call of a save fails in turn, with each error that call can meet: the
// layout and chip encode files stay the old or become the complete new ones, the backup holds
// a complete layout, a refused save tells the operator once, and no temporary file stays.
// Before every call that may change the disk, where a killed save would stop, each file is
// complete too.
#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>

#include "persist/SafeFile.h"
#include "support/FaultyFileSystem.h"
#include "support/SavedFiles.h"

using namespace kestrin;
using namespace kestrin::test;
namespace fs = std::filesystem;

namespace {

constexpr const char* kLeftover = ".Card.IIF.777.tmp";  // left by a crashed save

// What a full disk, a failing disk, a missing permission, a file system without hard links or
// a name taken meanwhile make each call return.
std::vector<int> errorsOf(Call call) {
    switch (call) {
        case Call::Status: case Call::Rename: return {EACCES, EIO};
        case Call::CreateNew: return {EACCES, ENOSPC, EEXIST};
        case Call::Link: return {EPERM, EEXIST};
        case Call::Copy: return {ENOSPC};
        case Call::List: return {EACCES};
        default: return {EIO};
    }
}

// A save works around a short write, a taken name, a missing hard link, and leftovers it
// cannot list or remove.
bool saveSurvives(Call call, Fault fault, int error) {
    return fault == Fault::ShortWrite || error == EEXIST || call == Call::Link || call == Call::Remove ||
           call == Call::List;
}

// overExistingLayout: the layout, its chip encode file and a backup are there
struct Scenario { const char* name; bool overExistingLayout, hardLinks; };

class SaveFaults : public ::testing::TestWithParam<Scenario> {
protected:
    SaveFaults() {
        card.setChipSize(iBigOnePage);
        fields.setFields({{"Name", "NAME", "Character", 16, 0, true}, {"Level", "LEVEL", "Number", 3, 3, true}});
        records = recordsOf({field("Name", 0, 19, 0, 16), field("Level", 0, 20, 0, 3)});  // a chip encode file of its own
        TempDir reference, past;
        EXPECT_TRUE(saveTo(reference.path(), records).saved);
        expected = SavedFiles::read(reference.path(), "Card");
        if (GetParam().overExistingLayout) {
            EXPECT_TRUE(saveTo(past.path(), recordsOf({field("Name", 0, 19, 0, 4)})).saved &&
                        saveTo(past.path(), recordsOf({field("Name", 0, 19, 0, 8)})).saved);
            before = SavedFiles::read(past.path(), "Card");
        }
        for (const auto& [name, bytes] :
             {std::pair{"the new layout", expected.layout}, {"the new chip encode file", expected.encode},
              {"the previous layout", before.layout}, {"the previous chip encode file", before.encode},
              {"the previous backup", before.backup}})
            contents.add(name, bytes);
    }

    SaveOutcome saveTo(const fs::path& folder, const RecordArray& items, FileSystem& files = systemFileSystem()) {
        return saveLayout(folder / "Card.IIF", &card, items, fields, prompter, translator, {}, files);
    }
    // A save through files failing the calls given, which alone maps the folder "unseen" to dir.
    SaveOutcome saveFailing(const TempDir& dir, FaultyFileSystem& files, std::vector<int> failing = {},
                            Fault fault = Fault::Error, int error = 0) {
        for (int i : failing) files.failCall(i, fault, error);
        before.write(dir.path(), "Card");
        writeBytes(dir / kLeftover, "left by a crashed save");
        files.hardLinks = GetParam().hardLinks;
        files.beforeChange = [this, &dir] { expectEachFileComplete(dir.path()); };
        prompter.messages.clear();
        return saveTo(dir / "unseen", records, files);
    }
    std::vector<Call> callsOfASave() {
        TempDir dir;
        FaultyFileSystem files(dir / "unseen", dir.path());
        EXPECT_TRUE(saveFailing(dir, files).saved);
        return files.calls;
    }
    // The layout and chip encode file are the old or the new ones; the backup is the old one
    // or the layout before this save. A file absent before may be absent still.
    void expectEachFileComplete(const fs::path& folder) {
        const SavedFiles now = SavedFiles::read(folder, "Card");
        EXPECT_TRUE((now.layout == before.layout || now.layout == expected.layout) &&
                    (now.encode == before.encode || now.encode == expected.encode) &&
                    (now.backup == before.backup || now.backup == before.layout))
            << contents.nameOf(now.layout) << " / " << contents.nameOf(now.encode) << " / " << contents.nameOf(now.backup);
    }
    void expectFiles(const fs::path& folder, const std::string& layout, const std::string& encode,
                     const std::string& backup) {
        const SavedFiles now = SavedFiles::read(folder, "Card");
        EXPECT_EQ(contents.nameOf(now.layout) + " / " + contents.nameOf(now.encode) + " / " + contents.nameOf(now.backup),
                  layout + " / " + encode + " / " + backup);
    }

    CIClass card;
    RecordArray records;
    HostFieldList fields;
    RecordingPrompter prompter;
    Translator translator;
    SavedFiles expected, before;
    KnownContents contents;
};

TEST_P(SaveFaults, EveryFailingCallLeavesCompleteFilesAndTellsTheOperator) {
    const std::vector<Call> calls = callsOfASave();
    for (Call c : {Call::Status, Call::CreateNew, Call::Write, Call::Sync, Call::Close, Call::Rename, Call::List})
        ASSERT_NE(std::find(calls.begin(), calls.end(), c), calls.end()) << callName(c);

    for (int i = 0; i < static_cast<int>(calls.size()); ++i) {
        std::vector<std::pair<Fault, int>> faults;
        for (int e : errorsOf(calls[i])) faults.emplace_back(Fault::Error, e);
        if (calls[i] == Call::Write)  // a write storing nothing is taken as a full disk
            faults.insert(faults.end(), {{Fault::ShortWrite, 0}, {Fault::DiskFull, 0}, {Fault::NoProgress, 0}});
        for (const auto& [fault, error] : faults) {
            const std::string errorText = std::generic_category().message(fault == Fault::Error ? error : ENOSPC);
            SCOPED_TRACE("call " + std::to_string(i) + " (" + callName(calls[i]) + ") fails: " +
                         (fault == Fault::ShortWrite ? "short write" : errorText));
            TempDir dir;
            FaultyFileSystem files(dir / "unseen", dir.path());
            const SaveOutcome out = saveFailing(dir, files, {i}, fault, error);
            ASSERT_TRUE(files.injected);
            const bool survives = saveSurvives(calls[i], fault, error);
            ASSERT_EQ(std::tuple(out.saved, files.openHandles), std::tuple(survives, 0)) << out.message;
            const SavedFiles failed = SavedFiles::read(dir.path(), "Card");
            if (out.saved) {
                EXPECT_TRUE(prompter.messages.empty());
                expectFiles(dir.path(), "the new layout", "the new chip encode file", contents.nameOf(before.layout));
            } else {
                ASSERT_EQ(prompter.messages.size(), 1u);
                const auto says = [&](const std::string& part) { return out.message.find(part) != std::string::npos; };
                EXPECT_TRUE(prompter.messages[0].icon == Icon::Exclamation && prompter.messages[0].text == out.message &&
                            says(errorText) && says("are unchanged")) << out.message;
                // The backup may already hold the previous layout.
                expectFiles(dir.path(), contents.nameOf(before.layout), contents.nameOf(before.encode),
                            contents.nameOf(failed.backup == before.backup ? before.backup : before.layout));
            }
            // Temporary files are removed, but for one whose removal was the failing call.
            for (const std::string& name : hiddenTempFiles(dir.path()))
                EXPECT_TRUE(name == kLeftover || (calls[i] == Call::Remove && files.failedPath == dir / name))
                    << "temporary file left behind: " << name;
            // The next save works and removes every leftover.
            ASSERT_TRUE(saveTo(dir.path(), records).saved);
            expectFiles(dir.path(), "the new layout", "the new chip encode file",
                        contents.nameOf(failed.layout ? failed.layout : failed.backup));
            EXPECT_EQ(hiddenTempFiles(dir.path()), std::vector<std::string>{});
            if (HasFatalFailure()) return;
        }
    }
}

// When the layout file cannot be put in place and the previous chip encode file cannot be put
// back either, the operator is told that the two files no longer belong together.
TEST_P(SaveFaults, AChipEncodeFileThatCannotBeTakenBackIsReported) {
    const std::vector<Call> calls = callsOfASave();
    const int layoutRename = static_cast<int>(calls.rend() - std::find(calls.rbegin(), calls.rend(), Call::Rename)) - 1;
    TempDir dir;
    FaultyFileSystem files(dir / "unseen", dir.path());
    const SaveOutcome out = saveFailing(dir, files, {layoutRename, layoutRename + 1}, Fault::Error, EIO);
    EXPECT_EQ(std::tuple(out.saved, prompter.messages.size(), out.message.find("no longer belong together") != std::string::npos),
              std::tuple(false, 1u, true)) << out.message;
    expectFiles(dir.path(), contents.nameOf(before.layout), "the new chip encode file",
                contents.nameOf(SavedFiles::read(dir.path(), "Card").backup));
}

// A committed file forgets its temporary name: a file that takes that name later (the next
// save's) is neither moved over the target nor removed, by a second commit or by destruction.
TEST(StagedFile, ACommittedFileLeavesItsFormerTemporaryNameAlone) {
    TempDir dir;
    auto staged = StagedFile::write(systemFileSystem(), dir / "Card.IIF", "committed", nullptr);
    ASSERT_TRUE(staged);
    const fs::path temporary = staged->tempPath();
    ASSERT_TRUE(staged->commit(nullptr));
    writeBytes(temporary, "the next save's");
    std::string error;
    EXPECT_EQ(std::tuple(staged->commit(&error), error), std::tuple(false, ""));  // nothing left to commit
    staged.reset();  // destroyed
    EXPECT_EQ(std::tuple(readIfPresent(dir / "Card.IIF"), readIfPresent(temporary)),
              std::tuple(MaybeBytes("committed"), MaybeBytes("the next save's")));
}

INSTANTIATE_TEST_SUITE_P(Saves, SaveFaults,
                         ::testing::Values(Scenario{"FirstSave", false, true}, Scenario{"OverExisting", true, true},
                                           Scenario{"OverExistingWithoutHardLinks", true, false}),
                         [](const auto& param) { return std::string(param.param.name); });

}  // namespace
