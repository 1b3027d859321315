// The open layout without a window: its life (new, open, save as, close with its questions),
// the changes of its items (add, edit, remove, database updates, dialog sessions), whether it
// is saved, and the change events a host hears.
#include "document/LayoutDocument.h"

#include <gtest/gtest.h>

#include <functional>

#include "persist/ProfileDocument.h"
#include "rules/DatabaseUpdateRules.h"
#include "rules/EditorEntries.h"
#include "rules/MultiTrackValidation.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/CatalogRegistry.h"

namespace kestrin::test {
namespace {

using Change = LayoutDocument::Change;

// A document whose texts read "T<number>", with a recording prompter and the changes it told.
struct Doc {
    TempDir dir;
    CatalogRegistry registry;
    RecordingPrompter prompter{Answer::Yes};
    LayoutDocument doc{prompter, &registry};
    std::vector<Change> changes;

    Doc() {
        std::string lines;
        for (int id : {3104, 3105, 3123, 3124, 3125, 3166, 4600, 4601})
            lines += std::to_string(id) + "=T" + std::to_string(id) + "\n";
        writeBytes(dir / "lang.txt", lines);
        doc.translator().setLanguageDLL(registry.open(dir / "lang.txt"));
        doc.setListener([this](Change c) { changes.push_back(c); });
    }
    std::vector<std::string> told() const {
        std::vector<std::string> out;
        for (const auto& m : prompter.messages) out.push_back(m.text);
        return out;
    }
    // The records as "name@block/colour" (a random colour shows as light when every channel
    // is at least 127) and database updates as "field:function".
    std::string shape() const {
        std::string out;
        for (const ItemRecord& r : doc.records()) {
            const bool light = ((r.color >> 16) & 0xFF) >= 127 && ((r.color >> 8) & 0xFF) >= 127 && (r.color & 0xFF) >= 127;
            const std::string color = r.color < 1000 ? std::to_string(r.color) : light ? "light" : "dark";
            out += (out.empty() ? "" : " ") +
                   (r.isDbUpdate ? r.dbFieldName + ":" + r.name : r.name + "@" + std::to_string(r.block) + "/" + color);
        }
        return out;
    }
};

// A field of a host field, block and size, as the item editor hands it over.
EditorEntries fieldAt(std::string name, int block, int bytes) {
    EditorEntries e;
    e.selectedText = e.itemName = std::move(name), e.sizeText = std::to_string(bytes);
    e.fieldType = 0, e.page = 0, e.row = static_cast<int16_t>(block), e.beginByte = 0, e.encodeOption = 0;
    return e;
}

std::string applied(LayoutDocument::ApplyResult r) { return std::to_string(r.code) + " at " + std::to_string(r.index); }
std::string yes(bool b) { return b ? "yes" : "no"; }

struct ItemCase { const char* what; std::vector<Answer> answers; std::function<std::string(LayoutDocument&)> change;
                  std::string result, after; std::vector<std::string> told; std::vector<Change> changes; };

// Every change starts from a database update and three fields: NAME:Constant A@20/111
// B@22/222 C@24/333. A refused change leaves records, events and the saved mark alone; a kept
// one marks the layout changed and unsaved and is heard once.
TEST(LayoutDocument, ItemChangesTable) {
    const std::string start = "NAME:Constant A@20/111 B@22/222 C@24/333", asked = "T3104\r\nT3105";
    const std::vector<Change> none, once = {Change::Records};
    const auto apply = [](std::string name, int block, int bytes, int replacing = -1) {
        return [=](LayoutDocument& d) { return applied(d.applyItem(fieldAt(name, block, bytes), replacing)); };
    };
    const auto remove = [](bool dbUpdate, int row) {
        return [=](LayoutDocument& d) { return yes(dbUpdate ? d.removeDbUpdateRow(row) : d.removeItemRow(row)); };
    };
    const auto update = [](DbUpdateEntries e, int replacing) {
        return [=](LayoutDocument& d) { return yes(d.applyDbUpdate(e, replacing).stored); };
    };
    const auto adopt = [](bool modified) {
        return [=](LayoutDocument& d) {
            d.adoptCard(chipOf(iBigOnePage), modified);
            return yes(d.card()->ChipSize() == iBigOnePage);
        };
    };
    const auto session = [](std::vector<EditorEntries> items) {
        return [=](LayoutDocument& d) {
            d.batch([&] { for (const auto& e : items) d.applyItem(e); });
            return yes(d.saved());
        };
    };
    const ItemCase cases[] = {
        {"new item, last, light colour", {}, apply("N", 26, 4), "1 at 4", start + " N@26/light", {}, once},
        {"new item past the page end", {}, apply("N", 31, 9), "0 at -1", start, {"T4600"}, none},
        {"the same item placed again", {}, apply("B", 22, 2), "2 at 3", "NAME:Constant A@20/111 C@24/333 B@22/light", {}, once},
        {"edit over its own old place", {}, apply("A", 21, 2, 1), "1 at 1", "NAME:Constant A@21/111 B@22/222 C@24/333", {}, once},
        {"edit onto another, cancelled", {Answer::Cancel}, apply("A", 22, 2, 1), "0 at -1", start, {"T3166: B."}, none},
        {"edit of the last onto another, OK", {Answer::Ok}, apply("C", 22, 2, 3), "2 at 2", "NAME:Constant A@20/111 C@22/333",
         {"T3166: B."}, once},
        {"edit of a record that is not there", {}, apply("N", 26, 1, 4), "1 at 4", start + " N@26/light", {}, once},
        {"remove an empty row", {}, remove(false, 3), "no", start, {"T3104"}, none},
        {"remove a row, answered no", {Answer::No}, remove(false, 0), "no", start, {asked}, none},
        {"remove the first row", {}, remove(false, 0), "yes", "NAME:Constant C@24/333 B@22/222", {asked}, once},
        {"remove the last row", {}, remove(false, 2), "yes", "NAME:Constant A@20/111 B@22/222", {asked}, once},
        {"remove a database update", {}, remove(true, 0), "yes", "C@24/333 A@20/111 B@22/222", {asked}, once},
        {"remove an empty database update row", {}, remove(true, 1), "no", start, {"T3104"}, none},
        {"database update edited in place", {}, update({"Count", "NUMBER", 1, "", "5", "2", false}, 0), "yes",
         "NUMBER:Count A@20/111 B@22/222 C@24/333", {}, once},
        {"database update onto an item's slot is new", {}, update({"CardSnNr", "NR", 1, "", "", "", false}, 1), "yes",
         start + " NR:CardSnNr", {}, once},
        {"database update with a step of 256", {}, update({"Count", "NUMBER", 1, "", "5", "256", false}, 0), "no", start,
         {"<Please enter a value between> 0 & 255!"}, none},
        {"card handed back changed", {}, adopt(true), "yes", start, {}, {Change::Card}},
        {"card handed back unchanged", {}, adopt(false), "yes", start, {}, none},
        {"dialog session with two items", {}, session({fieldAt("N", 26, 1), fieldAt("M", 27, 1)}), "no",
         start + " N@26/light M@27/light", {}, once},
        {"dialog session with only refusals", {}, session({fieldAt("N", 31, 9)}), "yes", start, {"T4600"}, none},
    };
    for (const ItemCase& c : cases) {
        SCOPED_TRACE(c.what);
        Doc d;
        d.doc.setLayout(CIClass(), recordsOf({dbUpdate("NAME", "Constant", "1"), field("A", 0, 20, 0, 2, 0, 111),
                                              field("B", 0, 22, 0, 2, 0, 222), field("C", 0, 24, 0, 2, 0, 333)}));
        ASSERT_TRUE(d.doc.saveTo(d.dir / "Start.IIF"));
        d.changes.clear();
        d.prompter.messages.clear();
        for (Answer a : c.answers) d.prompter.answerNext(a);
        const std::string result = c.change(d.doc);
        EXPECT_EQ(std::tuple(result, d.shape(), d.told(), d.changes, d.doc.saved()),
                  std::tuple(c.result, c.after, c.told, c.changes, c.changes.empty()));
    }
}

// A layout that holds as many records as it can refuses a new one of each kind with a message,
// and still takes a change to its first record.
TEST(LayoutDocument, AFullLayoutRefusesNewRecordsAndStillTakesAChangeToItsFirst) {
    using Edit = std::function<bool(LayoutDocument&, int32_t)>;
    ItemRecord track = field("Track", 0, 20, 0, 4);
    track.isBinary = true;
    const std::tuple<const char*, ItemRecord, Edit> kinds[] = {
        {"item", field("A", 0, 20, 0, 2),
         [](LayoutDocument& d, int32_t at) { return d.applyItem(fieldAt("A", 22, 2), at).code != 0; }},
        {"multi-track item", track,
         [](LayoutDocument& d, int32_t at) { return d.applyMultiTrack({"Track", 0, 22, 0, 0, "4"}, at).code != 0; }},
        {"database update", dbUpdate("NAME", "Constant", "1"),
         [](LayoutDocument& d, int32_t at) { return d.applyDbUpdate({"Count", "NUMBER", 1, "", "5", "2", false}, at).stored; }}};
    for (const auto& [what, first, change] : kinds) {
        SCOPED_TRACE(what);
        Doc d;
        std::vector<ItemRecord> records(RecordArray::kMaxRecords, dbUpdate("X", "Constant", "1"));
        records[0] = first;
        d.doc.setLayout(CIClass(), recordsOf(records));
        const bool added = change(d.doc, -1);
        const std::vector<std::string> told = d.told();
        const bool changed = change(d.doc, 0);
        EXPECT_EQ(std::tuple(added, told, changed, int(d.doc.records().size())),
                  std::tuple(false, std::vector<std::string>{"The layout holds as many items as it can."}, true,
                             int(RecordArray::kMaxRecords)));
    }
}

// The life of the layout: each step gives its result, the texts told, the records left and
// whether the layout is open and saved.
TEST(LayoutDocument, NewOpensACardWithTheHidAreaInUseAndSavesIt) {
    Doc d;
    d.doc.setUseHID(false);  // a host's setting before there is a layout
    d.doc.setChipType(iBigEightPages);  // no card yet: nothing to change
    EXPECT_EQ(d.doc.card(), nullptr);
    d.doc.newLayout();
    ASSERT_NE(d.doc.card(), nullptr);
    EXPECT_EQ(std::tuple(d.doc.card()->ChipSize(), d.doc.card()->page(0)->BeginFreeSpace), std::tuple(iSmallOnePage, 19));
    EXPECT_TRUE(d.doc.useHID() && !d.doc.useBit() && d.doc.layoutEntered() && !d.doc.saved());
    EXPECT_EQ(d.changes, std::vector<Change>{Change::Records});
    d.doc.setChipType(iBigEightPages);
    EXPECT_TRUE(d.doc.saveAs(d.dir / "New.IIF"));
    const ProfileDocument file = ProfileDocument::parse(readBytes(d.dir / "New.IIF"));
    EXPECT_EQ(std::tuple(file.getInt("CARDDESIGN", "UseHID", -1), file.getInt("CARDDESIGN", "UseBit", -1),
                         file.getInt("CARDDESIGN", "Pages", -1)), std::tuple(1, 0, 8));
    d.doc.setUseHID(false);  // switched with the layout open: the card gives the HID blocks free
    EXPECT_EQ(std::tuple(d.doc.useHID(), d.doc.card()->UseHIDSection(), d.doc.card()->page(0)->BeginFreeSpace),
              std::tuple(false, false, 6));
}

TEST(LayoutDocument, OpenTakesTheFileAndItsSwitchesTheAuditNamesWhatItDroppedAndFieldsAreFetched) {
    Doc d;
    d.doc.setLayout(CIClass(), {});
    EXPECT_EQ(d.changes, std::vector<Change>{Change::Records});  // a layout handed over is heard as one
    d.changes.clear();
    writeBytes(d.dir / "Hid.IIF", crlf({"[GENERAL]", "Version=6.1.4", "[CARDDESIGN]", "Size=2K", "Pages=1", "UseBit=1",
                                        "UseHID=0", "[ENCODE]", "NAME(1)=0,6,0,4,0"}));
    ASSERT_TRUE(d.doc.open(d.dir / "Hid.IIF").opened);
    EXPECT_EQ(std::tuple(d.doc.saved(), d.doc.useBit(), d.doc.useHID(), d.doc.card()->page(0)->BeginFreeSpace,
                         d.doc.records().size(), d.doc.layoutFile(), d.changes),
              std::tuple(true, true, false, 6, 1, d.dir / "Hid.IIF", std::vector<Change>{Change::Records}));

    // A check of the open layout reports what its file held that could not be read, before the
    // rules its items break, until a save writes a file without it.
    writeBytes(d.dir / "Past.IIF",
               crlf({"[CARDDESIGN]", "Size=2K", "UseHID=1", "[ENCODE]", "Past(1)=0,31,4,5,0", "Hid(1)=0,10,0,1,0"}));
    auto audit = [&d] {
        std::string out;
        for (const AuditViolation& v : d.doc.audit())
            out += v.name + " " + std::to_string(v.textId) + " " + v.text.substr(0, 5) + "; ";
        return out;
    };
    ASSERT_TRUE(d.doc.open(d.dir / "Past.IIF").opened);
    EXPECT_EQ(audit(), "Past 4600 T4600; Hid 4601 T4601; Hid 4643 HID S; ");
    ASSERT_TRUE(d.doc.saveTo(d.dir / "Kept.IIF"));
    EXPECT_EQ(audit(), "Hid 4601 T4601; Hid 4643 HID S; ");
    ASSERT_TRUE(d.doc.open(d.dir / "Past.IIF").opened);
    d.doc.newLayout();
    EXPECT_EQ(audit(), "");
    // Fetching the host's fields answers whether the project has any.
    writeBytes(d.dir / "None.ini", crlf({"[DATABASE]", "NUMCOLUMNS=0"}));
    writeBytes(d.dir / "One.ini", crlf({"[DATABASE]", "NUMCOLUMNS=1", "[COLUMN1]", "DbFIELD=A"}));
    for (const auto& [file, any] : {std::pair{"Missing.ini", false}, {"None.ini", false}, {"One.ini", true}, {"None.ini", false}})
        EXPECT_EQ(d.doc.fetchFields(d.dir / file), any) << file;
}

// Close asks whether to close and, with unsaved changes, whether to save first. Yes saves to
// the layout's file or through the host's callback when it has none.
TEST(LayoutDocument, CloseTable) {
    // itemsInFile -1: no file
    struct CloseCase { bool named; std::vector<Answer> answers; bool callbackSaves, closed;
                       std::vector<std::string> questions; int itemsInFile; };
    const std::vector<std::string> both = {"T3124", "T3125"};
    using A = Answer;
    for (const CloseCase& c :
         {CloseCase{true, {A::No}, false, false, {"T3124"}, 0}, {true, {A::Yes, A::Cancel}, false, false, both, 0},
          {true, {A::Yes, A::No}, false, true, both, 0}, {true, {A::Yes, A::Yes}, false, true, both, 1},
          {false, {A::Yes, A::Yes}, false, false, both, -1}, {false, {A::Yes, A::Yes}, true, true, both, -1}}) {
        Doc d;  // an edited layout, saved to a file when named
        d.doc.newLayout();
        EXPECT_EQ(c.named && d.doc.saveAs(d.dir / "Open.IIF"), c.named);
        d.doc.applyItem(fieldAt("NAME", 22, 3));
        d.prompter.messages.clear();
        for (Answer a : c.answers) d.prompter.answerNext(a);
        int called = 0;
        EXPECT_EQ(d.doc.close([&] { return ++called, c.callbackSaves; }), c.closed);
        EXPECT_EQ(std::tuple(called, d.told(), d.doc.layoutEntered(), d.doc.records().size(), d.doc.card() == nullptr),
                  std::tuple(c.named ? 0 : 1, c.questions, !c.closed, c.closed ? 0 : 1, c.closed));
        EXPECT_FALSE(c.closed && (d.doc.saved() || d.doc.changed()));
        if (c.itemsInFile < 0) continue;
        Doc reader;
        ASSERT_TRUE(reader.doc.open(d.dir / "Open.IIF").opened);
        EXPECT_EQ(reader.doc.records().size(), c.itemsInFile);
    }
}

}  // namespace
}  // namespace kestrin::test
