// Saving a layout: the backup, refused saves, leftovers of earlier saves and the names and
// values a file can hold.
#include <gtest/gtest.h>

#include "support/SavedFiles.h"

using namespace kestrin;
using namespace kestrin::test;
namespace fs = std::filesystem;

namespace {

class LayoutSaver : public ::testing::Test {
protected:
    LayoutSaver() { records.add(field("Name", 0, 19, 0, 8)); }
    SaveOutcome save(const fs::path& encodeFolder = {}) {
        prompter.messages.clear();
        return saveLayout(layout, &card, records, fields, prompter, translator, encodeFolder);
    }
    TempDir dir;
    fs::path layout = dir / "Card.IIF";
    CIClass card;
    RecordArray records;
    HostFieldList fields;
    RecordingPrompter prompter;
    Translator translator;
};

// Refused saves tell the operator once and leave the files as they were.
TEST_F(LayoutSaver, RefusedSavesTellWhyAndChangeNothing) {
    const struct { bool encodeThere; const char* readOnlyFile; const char* message; } cases[] = {
        {false, nullptr, "<The layout was not saved: its chip encode file is missing beside it.>"},
        {true, "Card.IIF", "<The> iClass Encode File <is read-only and cannot be overwritten.>"},
        {true, "Card.CHP", "<The> Chip Encode File <is read-only and cannot be overwritten.>"}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.message);
        TempDir folder;
        layout = folder / "Card.IIF";
        writeBytes(layout, "old layout");
        if (c.encodeThere) writeBytes(folder / "Card.CHP", "old encode");
        if (c.readOnlyFile) fs::permissions(folder / c.readOnlyFile, fs::perms(0222), fs::perm_options::remove);  // no write bit
        const SavedFiles old = SavedFiles::read(folder.path(), "Card");
        EXPECT_FALSE(save().saved);
        ASSERT_EQ(prompter.messages.size(), 1u);
        EXPECT_TRUE(prompter.messages[0].icon == Icon::Exclamation && prompter.messages[0].text == c.message)
            << prompter.messages[0].text;
        const SavedFiles now = SavedFiles::read(folder.path(), "Card");
        EXPECT_TRUE(now.layout == old.layout && now.encode == old.encode && !now.backup);
    }
    EXPECT_FALSE(saveLayout(dir / "None.IIF", nullptr, records, fields, prompter, translator).saved);
    EXPECT_TRUE(namesIn(dir.path()).empty());
}

// The chip encode file may go to its own folder. A save removes the temporary files earlier
// saves left beside its three files, and nothing else; it also copes with a backup that a
// failed save left as a second name of the layout file: the backup becomes the layout before.
// (One backup generation over a backup of its own: SaveFaults.)
TEST_F(LayoutSaver, TheBackupIsTheLayoutBeforeAndLeftoversAreRemoved) {
    fs::create_directories(dir / "encode");
    EXPECT_EQ(save(dir / "encode").chipEncodeFile, dir / "encode" / "Card.CHP");
    EXPECT_EQ(namesIn(dir.path()), (std::vector<std::string>{"Card.IIF", "encode"}));
    fs::create_hard_link(layout, dir / "Card.IIF.BAK");
    for (const char* removed : {".Card.IIF.123456.tmp", ".Card.IIF.0.tmp", ".Card.IIF.BAK.42.tmp", ".Card.IIF.BAK.link.tmp"})
        writeBytes(dir / removed, "x");
    std::vector<std::string> kept = {".Card.IIF.tmp", ".Card.IIF..tmp", ".Card.IIF.12a.tmp", ".Card.IIF.BAK.notes.tmp",
                                     "Card.IIF.123.tmp", ".card.IIF.123.tmp", ".Other.IIF.123.tmp", ".Card.CHP.77.tmp",
                                     ".Card.IIF.123.tmp.keep"};
    for (const std::string& name : kept) writeBytes(dir / name, "x");
    kept.insert(kept.end(), {"Card.IIF", "Card.IIF.BAK", "encode"});
    for (const char* name : {".Card.CHP.77.tmp", ".Card.IIF.88.tmp"}) writeBytes(dir / "encode" / name, "x");
    const std::string previous = readBytes(layout);
    records.add(field("Other", 0, 21, 0, 8));
    ASSERT_TRUE(save(dir / "encode").saved && prompter.messages.empty());
    std::sort(kept.begin(), kept.end());
    EXPECT_EQ(namesIn(dir.path()), kept);
    EXPECT_EQ(namesIn(dir / "encode"), (std::vector<std::string>{".Card.IIF.88.tmp", "Card.CHP"}));
    EXPECT_TRUE(readBytes(dir / "Card.IIF.BAK") == previous && readBytes(layout) != previous);
}

// A name or value the file cannot hold as it is refuses the whole save, naming it; what it
// can hold (quotes, brackets inside, Windows-1252 letters, control characters) reads back.
TEST_F(LayoutSaver, ItemsAreSavedOnlyWhenTheyReadBackTheSame) {
    auto constant = [](const std::string& value) { return function("Constant", value, "", "", 0, 20, 0, 8); };
    auto named = [](const std::string& name) { return field(name, 0, 19, 0, 8); };
    // refusal: a part of the message; nullptr: saved
    const struct { ItemRecord item; const char* refusal; } cases[] = {
        {named("Caf\xC3\xA9 \xE2\x82\xAC"), nullptr}, {named("Say \"hi\""), nullptr}, {named("O'Neil"), nullptr},
        {named("a]b"), nullptr}, {named("x[1]"), nullptr}, {named("Ctl\x01\x1F"), nullptr},
        {constant("\"quoted\""), nullptr}, {constant("a;b=c[d]"), nullptr}, {constant("\xE2\x82\xAC 5"), nullptr},
        {constant(""), nullptr}, {named(""), "has no name"}, {named("  "), "has no name"},
        {named(" Name"), "\" Name\" starts or ends with a blank"}, {named("Name\t"), "starts or ends with a blank"},
        {named("[Name]"), "starts with \"[\""}, {named(";Name"), "starts with \";\""},
        {named("A=B"), "\"A=B\" holds \"=\""}, {named("Line\nEnd"), "holds a line break"},
        {named("\xE4\xB8\xAD"), "outside Windows-1252"}, {named("bad\xFFutf8"), "outside Windows-1252"},
        {named("First [+] ;Last"), "\";Last\""}, {bitField("[Bits", 0, 19, 0, 0, 3), "\"[Bits\""},
        {constant("a/@b"), "holds \"/@\""}, {constant("one\rtwo"), "line break"},
        {constant("\xF0\x9F\x98\x80"), "outside Windows-1252"},
        {dbUpdate("NAME", "Count", "1", "line\nbreak"), "line break"},
        {named("Checksum"), "\"Checksum\" belongs to checksum functions"},
        {bitField("Checksum", 0, 19, 0, 0, 3), "\"Checksum\" belongs to checksum functions"},
    };
    card.setEnableBitwise(true);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.refusal ? c.refusal : c.item.name + " " + c.item.param1);
        records = recordsOf({field("Fine", 0, 21, 0, 8), c.item});
        const std::string before = fs::exists(layout) ? readBytes(layout) : "";
        const SaveOutcome out = save();
        ASSERT_EQ(out.saved, c.refusal == nullptr) << out.message;
        if (c.refusal) {
            EXPECT_EQ(std::tuple(prompter.messages.size(), out.message.rfind("The layout was not saved: ", 0),
                                 out.message.find(c.refusal) != std::string::npos, fs::exists(layout) ? readBytes(layout) : ""),
                      std::tuple(1u, 0u, true, before)) << out.message;
        } else {
            EXPECT_EQ(openLayout(readBytes(layout))->records.records(), records.records());
        }
    }
}

}  // namespace
