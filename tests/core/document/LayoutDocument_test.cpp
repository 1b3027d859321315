// The life of one layout without a window: new, open, save as, close with its questions, the
// item transactions and the one change a dialog session makes.
#include "document/LayoutDocument.h"

#include <gtest/gtest.h>

#include "base/KestrinError.h"
#include "persist/ProfileDocument.h"
#include "rules/DatabaseUpdateRules.h"
#include "rules/EditorEntries.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "text/CatalogRegistry.h"

namespace kestrin::test {
namespace {

// A document whose texts read "T<number>", with a recording prompter and a change counter.
struct Doc {
    TempDir dir;
    CatalogRegistry registry;
    RecordingPrompter prompter{Answer::Yes};
    LayoutDocument doc{prompter, &registry};
    std::vector<LayoutDocument::Change> changes;

    Doc() {
        std::string lines;
        for (int id : {3104, 3105, 3123, 3124, 3125, 3165, 3166, 4600}) lines += std::to_string(id) + "=T" + std::to_string(id) + "\n";
        writeBytes(dir / "lang.txt", lines);
        doc.translator().setLanguageDLL(registry.open(dir / "lang.txt"));
        doc.setListener([this](LayoutDocument::Change c) { changes.push_back(c); });
    }
    std::vector<std::string> texts() const {
        std::vector<std::string> out;
        for (const auto& m : prompter.messages) out.push_back(m.text);
        return out;
    }
    // A field of the given host field name, block and size, as the item editor hands it over.
    static EditorEntries fieldAt(std::string name, int block, int bytes) {
        EditorEntries e;
        e.mode = kModeField;
        e.selectedText = e.itemName = std::move(name);
        e.fieldType = 0;
        e.page = 0, e.row = static_cast<int16_t>(block), e.beginByte = 0;
        e.sizeText = std::to_string(bytes);
        e.encodeOption = 0;
        return e;
    }
    void start(std::vector<ItemRecord> items) {
        CIClass card;
        RecordArray records;
        for (const auto& r : items) records.add(r);
        doc.setLayout(card, std::move(records));
        changes.clear();
    }
};

TEST(LayoutDocument, ANewLayoutHasANewCardWithTheHidAreaInUse) {
    Doc d;
    d.doc.setUseHID(false);  // a host's setting before there is a layout
    d.doc.newLayout();
    ASSERT_NE(d.doc.card(), nullptr);
    EXPECT_TRUE(d.doc.card()->UseHIDSection());
    EXPECT_EQ(d.doc.card()->page(0)->BeginFreeSpace, 19);
    EXPECT_FALSE(d.doc.card()->EnableBitwise());
    EXPECT_TRUE(d.doc.useHID());
    EXPECT_FALSE(d.doc.useBit());
    EXPECT_TRUE(d.doc.layoutEntered());
    EXPECT_FALSE(d.doc.saved());
    EXPECT_EQ(d.changes, std::vector<LayoutDocument::Change>{LayoutDocument::Change::Records});

    EXPECT_TRUE(d.doc.saveAs(d.dir / "New.IIF"));
    const ProfileDocument file = ProfileDocument::parse(readBytes(d.dir / "New.IIF"));
    EXPECT_EQ(file.getInt("CARDDESIGN", "UseHID", -1), 1);
    EXPECT_EQ(file.getInt("CARDDESIGN", "UseBit", -1), 0);
}

TEST(LayoutDocument, WithoutALayoutTheCardCommandsCreateNoCard) {
    Doc d;
    d.doc.setChipType(iBigEightPages);
    d.doc.setAppBoundaries("10|11|12|13|14|15|16|17");
    EXPECT_EQ(d.doc.card(), nullptr);
    d.doc.newLayout();
    d.doc.setChipType(iBigEightPages);
    d.doc.setAppBoundaries("10|11|12|13|14|15|16|17");
    EXPECT_EQ(d.doc.card()->GetBoundary(3), 13);
}

TEST(LayoutDocument, OpenRaisesTheReadersErrorsAndARefusedFileChangesNothing) {
    Doc d;
    d.start({field("Kept", 0, 20, 0, 2)});
    for (const auto& [name, description] : {std::pair<std::string, std::string>{"", "No filename given."},
                                            {(d.dir / "Missing.IIF").string(), "File doesn't exist"}}) {
        try {
            d.doc.open(name);
            ADD_FAILURE() << description;
        } catch (const KestrinError& e) {
            EXPECT_EQ(e.source(), "iClass UserControl");
            EXPECT_EQ(e.description(), description);
        }
    }
    writeBytes(d.dir / "Later.IIF", crlf({"[GENERAL]", "Version=9.0.0", "[CARDDESIGN]", "Size=16K", "Pages=8"}));
    d.prompter.answerNext(Answer::No);
    EXPECT_FALSE(d.doc.open(d.dir / "Later.IIF").opened);
    EXPECT_EQ(d.doc.records().size(), 1);
    EXPECT_EQ(d.doc.card()->ChipSize(), iSmallOnePage);
    EXPECT_TRUE(d.changes.empty());
}

TEST(LayoutDocument, AnOpenedLayoutIsSavedAndTakesTheFilesSwitches) {
    Doc d;
    writeBytes(d.dir / "Hid.IIF", crlf({"[GENERAL]", "Version=6.1.4", "[CARDDESIGN]", "Size=2K", "Pages=1", "UseBit=1",
                                        "UseHID=0", "[ENCODE]", "NAME(1)=0,6,0,4,0"}));
    ASSERT_TRUE(d.doc.open(d.dir / "Hid.IIF").opened);
    EXPECT_TRUE(d.doc.saved());
    EXPECT_TRUE(d.doc.useBit());
    EXPECT_FALSE(d.doc.useHID());
    EXPECT_EQ(d.doc.card()->page(0)->BeginFreeSpace, 6);
    EXPECT_EQ(d.doc.records().size(), 1);
    EXPECT_EQ(d.doc.layoutFile(), d.dir / "Hid.IIF");
    EXPECT_EQ(d.changes.size(), 1u);
}

// A check of the open layout reports what its file held that could not be read, before the rules
// its items break, until a save writes a file without it.
TEST(LayoutDocument, AuditReportsTheEntriesTheOpenDroppedFirst) {
    Doc d;
    writeBytes(d.dir / "Past.IIF", crlf({"[CARDDESIGN]", "Size=2K", "UseHID=1", "[ENCODE]", "Past(1)=0,31,4,5,0",
                                         "Hid(1)=0,10,0,1,0"}));
    ASSERT_TRUE(d.doc.open(d.dir / "Past.IIF").opened);
    auto ids = [&d] {
        std::vector<int32_t> out;
        for (const AuditViolation& v : d.doc.audit()) out.push_back(v.textId);
        return out;
    };
    EXPECT_EQ(ids(), (std::vector<int32_t>{4600, 4601, 4643}));
    EXPECT_EQ(d.doc.audit()[0].name, "Past");
    EXPECT_EQ(d.doc.audit()[0].text, "T4600");
    ASSERT_TRUE(d.doc.saveTo(d.dir / "Kept.IIF"));
    EXPECT_EQ(ids(), (std::vector<int32_t>{4601, 4643}));
    ASSERT_TRUE(d.doc.open(d.dir / "Past.IIF").opened);
    EXPECT_EQ(ids().size(), 3u);
    d.doc.newLayout();
    EXPECT_TRUE(ids().empty());
}

struct NameCase {
    std::string chosen, stored;
    bool told;
};

TEST(LayoutDocument, SaveAsAddsTheLayoutExtensionAndSaysSo) {
    for (const NameCase& c : {NameCase{"Card", "Card.IIF", true}, NameCase{"Card.iif", "Card.iif", false},
                              NameCase{"Card.IIF.txt", "Card.IIF.txt.IIF", true}}) {
        Doc d;
        d.doc.newLayout();
        EXPECT_TRUE(d.doc.saveAs(d.dir / c.chosen)) << c.chosen;
        EXPECT_EQ(d.doc.layoutFile(), d.dir / c.stored);
        EXPECT_TRUE(std::filesystem::exists(d.dir / c.stored));
        EXPECT_EQ(d.texts(), c.told ? std::vector<std::string>{"T3123"} : std::vector<std::string>{});
        if (c.told) {
            EXPECT_EQ(d.prompter.messages[0].icon, Icon::Information);
        }
    }
    Doc closed;  // no layout entered: the name is taken, nothing is written
    EXPECT_FALSE(closed.doc.saveAs(closed.dir / "Nothing.IIF"));
    EXPECT_FALSE(std::filesystem::exists(closed.dir / "Nothing.IIF"));
}

struct CloseCase {
    std::vector<Answer> answers;
    bool closed;
    std::vector<std::string> questions;
    bool written;
};

TEST(LayoutDocument, CloseAsksAndKeepsTheLayoutUnlessTheOperatorAgrees) {
    for (const CloseCase& c : {CloseCase{{Answer::No}, false, {"T3124"}, false},
                               CloseCase{{Answer::Yes, Answer::Cancel}, false, {"T3124", "T3125"}, false},
                               CloseCase{{Answer::Yes, Answer::No}, true, {"T3124", "T3125"}, false},
                               CloseCase{{Answer::Yes, Answer::Yes}, true, {"T3124", "T3125"}, true}}) {
        Doc d;
        d.doc.newLayout();
        ASSERT_TRUE(d.doc.saveAs(d.dir / "Open.IIF"));
        d.doc.applyItem(Doc::fieldAt("NAME", 22, 3));
        d.prompter.messages.clear();
        for (Answer a : c.answers) d.prompter.answerNext(a);
        EXPECT_EQ(d.doc.close(nullptr), c.closed);
        EXPECT_EQ(d.texts(), c.questions);
        EXPECT_EQ(d.doc.layoutEntered(), !c.closed);
        EXPECT_EQ(d.doc.records().size(), c.closed ? 0 : 1);
        if (c.closed) {
            EXPECT_FALSE(d.doc.saved());
        }
        Doc reader;
        ASSERT_TRUE(reader.doc.open(d.dir / "Open.IIF").opened);
        EXPECT_EQ(reader.doc.records().size(), c.written ? 1 : 0);
    }
}

TEST(LayoutDocument, ClosingASavedLayoutAsksOnlyWhetherToClose) {
    Doc d;
    d.doc.newLayout();
    ASSERT_TRUE(d.doc.saveAs(d.dir / "Saved.IIF"));
    d.prompter.messages.clear();
    int asked = 0;
    EXPECT_TRUE(d.doc.close([&] { return ++asked > 0; }));
    EXPECT_EQ(d.texts(), std::vector<std::string>{"T3124"});
    EXPECT_EQ(asked, 0);
}

TEST(LayoutDocument, ApplyWritesANewItemOrLeavesEverythingAsItWas) {
    Doc d;
    d.start({field("Other", 0, 25, 0, 2)});
    const auto added = d.doc.applyItem(Doc::fieldAt("NAME", 20, 4));
    EXPECT_EQ(added.code, kPlacementAccepted);
    ASSERT_EQ(added.index, 1);
    const ItemRecord& r = d.doc.records()[1];
    EXPECT_EQ(r.name, "NAME");
    for (int shift : {0, 8, 16}) EXPECT_GE((r.color >> shift) & 0xFF, 127);
    EXPECT_EQ(d.changes.size(), 1u);

    const RecordArray before = d.doc.records();
    const auto refused = d.doc.applyItem(Doc::fieldAt("NAME", 31, 9));
    EXPECT_EQ(refused.code, kPlacementRejected);
    EXPECT_EQ(d.texts(), std::vector<std::string>{"T4600"});
    EXPECT_EQ(d.doc.records().records(), before.records());
    EXPECT_EQ(d.changes.size(), 1u);
}

TEST(LayoutDocument, EditingReplacesTheItemInItsSlotWithItsColour) {
    Doc d;
    d.start({field("A", 0, 20, 0, 2, 0, 111), field("B", 0, 22, 0, 2, 0, 222), field("C", 0, 24, 0, 2, 0, 333)});
    const auto moved = d.doc.applyItem(Doc::fieldAt("A", 21, 2), 0);  // overlaps its own old place only
    EXPECT_EQ(moved.code, kPlacementAccepted);
    EXPECT_EQ(moved.index, 0);
    EXPECT_EQ(d.doc.records()[0].block, 21);
    EXPECT_EQ(d.doc.records()[0].color, 111);

    const RecordArray before = d.doc.records();
    d.prompter.answerNext(Answer::Cancel);
    EXPECT_EQ(d.doc.applyItem(Doc::fieldAt("A", 22, 2), 0).code, kPlacementRejected);
    EXPECT_EQ(d.doc.records().records(), before.records());

    // OK lets B go: the last record takes B's slot, so the edited C moves there too.
    d.prompter.answerNext(Answer::Ok);
    const auto replaced = d.doc.applyItem(Doc::fieldAt("C", 22, 2), 2);
    EXPECT_EQ(replaced.code, kPlacementReplaced);
    ASSERT_EQ(d.doc.records().size(), 2);
    EXPECT_EQ(replaced.index, 1);
    EXPECT_EQ(d.doc.records()[1].name, "C");
    EXPECT_EQ(d.doc.records()[1].block, 22);
    EXPECT_EQ(d.doc.records()[1].color, 333);
}

TEST(LayoutDocument, ADialogSessionIsOneChangeAndACancelledOneIsNone) {
    Doc d;
    d.doc.newLayout();
    ASSERT_TRUE(d.doc.saveAs(d.dir / "Session.IIF"));
    d.changes.clear();
    d.doc.batch([] {});
    EXPECT_TRUE(d.changes.empty());
    EXPECT_TRUE(d.doc.saved());

    d.doc.batch([&] {
        d.doc.applyItem(Doc::fieldAt("NAME", 20, 2));
        d.doc.applyItem(Doc::fieldAt("NUMBER", 21, 2));
        EXPECT_TRUE(d.changes.empty());
    });
    EXPECT_EQ(d.changes, std::vector<LayoutDocument::Change>{LayoutDocument::Change::Records});
    EXPECT_FALSE(d.doc.saved());
    EXPECT_TRUE(d.doc.changed());
}

TEST(LayoutDocument, RemovingARowAsksFirstAndAnEmptyRowOnlyTells) {
    Doc d;
    d.start({field("A", 0, 20, 0, 2), field("B", 0, 22, 0, 2), field("C", 0, 24, 0, 2)});
    EXPECT_FALSE(d.doc.removeItemRow(5));
    EXPECT_EQ(d.texts(), std::vector<std::string>{"T3104"});
    d.prompter.messages.clear();
    d.prompter.answerNext(Answer::No);
    EXPECT_FALSE(d.doc.removeItemRow(0));
    EXPECT_EQ(d.texts(), std::vector<std::string>{"T3104\r\nT3105"});
    EXPECT_EQ(d.prompter.messages[0].buttons, Buttons::YesNo);
    EXPECT_TRUE(d.doc.removeItemRow(0));
    ASSERT_EQ(d.doc.records().size(), 2);
    EXPECT_EQ(d.doc.records()[0].name, "C");  // the last record takes the removed one's slot
    EXPECT_EQ(d.changes.size(), 1u);
}

TEST(LayoutDocument, ADatabaseUpdateIsStoredInPlaceWhenEdited) {
    Doc d;
    d.start({dbUpdate("NAME", "Constant", "1"), field("A", 0, 20, 0, 2)});
    DbUpdateEntries e{"Count", "NUMBER", 1, "", "5", "2", false};
    EXPECT_TRUE(d.doc.applyDbUpdate(e, 0).stored);
    EXPECT_EQ(d.doc.records()[0].name, "Count");
    EXPECT_EQ(d.doc.records()[0].dbFieldName, "NUMBER");
    e.countStepText = "256";
    EXPECT_FALSE(d.doc.applyDbUpdate(e, 0).stored);
    EXPECT_EQ(d.doc.records()[0].param2, "2");
}

}  // namespace
}  // namespace kestrin::test
