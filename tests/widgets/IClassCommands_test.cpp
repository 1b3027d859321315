// The control's commands as a host calls them: a whole session by member name, the file
// commands with their questions, the gate, the item dialogs and removing rows.
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <filesystem>

#include "IClass_test.h"
#include "base/KestrinError.h"
#include "card/CIClass.h"

namespace kestrin::test {

int addFieldInEditor(QDialog& dialog, int block, int bytes) {
    dialog.show();
    auto* fields = dialog.findChild<QTableWidget*>("grdFields");
    EXPECT_NE(fields, nullptr);
    if (!fields || fields->rowCount() == 0) return QDialog::Rejected;
    QTest::mouseClick(fields->viewport(), Qt::LeftButton, {}, fields->visualItemRect(fields->item(0, 0)).center());
    auto choose = [&](const char* name, int value) {
        auto* box = dialog.findChild<QComboBox*>(name);
        EXPECT_NE(box, nullptr) << name;
        if (box) box->setCurrentIndex(box->findText(QString::number(value)));
    };
    choose("cboRow", block);
    choose("cboBeginByte", 0);
    auto* size = dialog.findChild<QLineEdit*>("txtNrBytes");
    size->clear();
    QTest::keyClicks(size, QString::number(bytes));
    dialog.findChild<QPushButton*>("cmdApply")->click();
    dialog.findChild<QPushButton*>("cmdOK")->click();
    return dialog.result();
}

namespace {

TEST(IClassSession, AHostMakesSavesClosesAndReopensALayoutByMemberName) {
    Host host;
    host.startLayout();
    EXPECT_TRUE(host.get("CLessLayoutEntered").toBool());
    EXPECT_EQ(host.control.hostFields().count(), 2);

    host.onDialog = [](QDialog& d) { return addFieldInEditor(d, 20, 4); };
    host.events.clear();
    host.call("AddField");
    EXPECT_EQ(host.dialogs, std::vector<QString>{"frmEditiClass"});
    EXPECT_EQ(host.cell("grdItems", 0, 1), "NAME");
    EXPECT_EQ(host.cell("grdItems", 0, 4), "20");
    EXPECT_EQ(host.events, (std::vector<QString>{"Changed", "GenericEvent Hallo xyz"}));
    EXPECT_FALSE(host.get("Saved").toBool());
    const QStringList rows = host.rowsOf("grdItems");

    host.chooser.answer = host.path("Staff");
    EXPECT_TRUE(host.callFor<bool>("SaveiClassAs"));
    EXPECT_EQ(host.chooser.title, "T3122");
    EXPECT_EQ(host.chooser.folder, host.path(""));
    EXPECT_EQ(host.chooser.filter, "Lumisk (*.IIF);;T3121 (*.*)");
    ASSERT_EQ(host.prompter.messages.size(), 1u);
    EXPECT_EQ(host.prompter.messages[0].text, "T3123");
    EXPECT_EQ(host.prompter.messages[0].icon, Icon::Information);
    EXPECT_EQ(host.get("LayoutFile").toString(), host.path("Staff.IIF"));
    EXPECT_TRUE(std::filesystem::exists(host.dir / "Staff.IIF"));
    EXPECT_TRUE(host.get("Saved").toBool());

    host.prompter.messages.clear();
    EXPECT_TRUE(host.callFor<bool>("CloseLayout"));
    EXPECT_EQ(host.messageTexts(), std::vector<std::string>{"T3124"});  // saved: no second question
    EXPECT_EQ(host.prompter.messages[0].buttons, Buttons::YesNo);
    EXPECT_EQ(host.prompter.messages[0].icon, Icon::Question);
    EXPECT_EQ(host.grid("grdItems")->model()->rowCount(), 1);
    EXPECT_EQ(host.cell("grdItems", 0, 1), "");
    EXPECT_FALSE(host.get("CLessLayoutEntered").toBool());
    EXPECT_FALSE(host.control.changedFlag());

    host.events.clear();
    EXPECT_TRUE(host.openLayout(host.path("Staff.IIF")));
    EXPECT_EQ(host.rowsOf("grdItems"), rows);
    EXPECT_TRUE(host.get("Saved").toBool());
    EXPECT_TRUE(host.get("CLessLayoutEntered").toBool());
    EXPECT_EQ(host.get("LayoutFile").toString(), host.path("Staff.IIF"));
    EXPECT_EQ(host.events, (std::vector<QString>{"Changed", "GenericEvent Hallo xyz"}));
}

TEST(IClassFiles, OpenLayoutRaisesTheReadersErrorToTheHost) {
    struct Case { QString name; const char* description; int number; };
    Host host;
    for (const Case& c : {Case{"", "No filename given.", kErrBadFileName},
                          Case{host.path("Missing.IIF"), "File doesn't exist", kErrFileNotFound}}) {
        try {
            host.openLayout(c.name);
            ADD_FAILURE() << "no error for " << c.description;
        } catch (const KestrinError& e) {
            EXPECT_EQ(e.description(), c.description);
            EXPECT_EQ(e.number(), c.number);
        }
        EXPECT_TRUE(host.events.empty());
        EXPECT_EQ(host.get("LayoutFile").toString(), "");
    }
}

TEST(IClassFiles, UseBitAndUseHIDAreTakenFromTheOpenedFile) {
    Host host;
    host.startLayout();
    host.set("UseHID", true);
    host.chooser.answer = host.path("Hid.IIF");
    EXPECT_TRUE(host.callFor<bool>("SaveiClassAs"));
    host.set("UseHID", false);
    ASSERT_TRUE(host.openLayout(host.path("Hid.IIF")));
    EXPECT_TRUE(host.get("UseHID").toBool());
    EXPECT_TRUE(host.control.card()->UseHIDSection());
}

TEST(IClassFiles, SavingANeverSavedLayoutAsksForANameAndCancelKeepsItUnsaved) {
    Host host;
    host.startLayout();
    const QVariant result = host.callFor<QVariant>("SaveLayout");
    EXPECT_EQ(host.chooser.calls, 1);
    EXPECT_FALSE(result.toBool());
    EXPECT_FALSE(host.get("Saved").toBool());
    EXPECT_EQ(host.get("LayoutFile").toString(), "");
}

TEST(IClassFiles, SaveLayoutWritesTheLayoutAndItsEncodeFileIntoTheEncodePath) {
    Host host;
    host.startLayout();
    std::filesystem::create_directories(host.dir / "encode");
    host.set("EncodePath", host.path("encode"));
    host.chooser.answer = host.path("Card.iif");
    EXPECT_TRUE(host.callFor<bool>("SaveiClassAs"));
    EXPECT_TRUE(host.prompter.messages.empty());  // the lower-case extension counts as IIF
    EXPECT_EQ(host.chooser.folder, host.path("encode"));
    host.onDialog = [](QDialog& d) { return addFieldInEditor(d, 21, 2); };
    host.call("AddField");
    EXPECT_FALSE(host.get("Saved").toBool());
    EXPECT_TRUE(host.callFor<QVariant>("SaveLayout").toBool());
    EXPECT_EQ(host.chooser.calls, 1);
    EXPECT_TRUE(host.get("Saved").toBool());
    EXPECT_TRUE(std::filesystem::exists(host.dir / "encode" / "Card.CHP"));
}

TEST(IClassFiles, WithoutAnEnteredLayoutSaveAsWritesNoFile) {
    Host host;
    host.chooser.answer = host.path("Nothing.IIF");
    EXPECT_FALSE(host.callFor<bool>("SaveiClassAs"));
    EXPECT_EQ(host.get("LayoutFile").toString(), host.path("Nothing.IIF"));
    EXPECT_FALSE(std::filesystem::exists(host.dir / "Nothing.IIF"));
}

struct CloseCase {
    std::vector<Answer> answers;
    bool closed;
    std::vector<std::string> questions;
    bool written;
};

TEST(IClassFiles, CloseLayoutAsksAndKeepsTheLayoutUnlessTheOperatorAgrees) {
    const std::vector<CloseCase> cases = {
        {{Answer::No}, false, {"T3124"}, false},
        {{Answer::Yes, Answer::Cancel}, false, {"T3124", "T3125"}, false},
        {{Answer::Yes, Answer::No}, true, {"T3124", "T3125"}, false},
        {{Answer::Yes, Answer::Yes}, true, {"T3124", "T3125"}, true},
    };
    for (const CloseCase& c : cases) {
        Host host;
        host.startLayout();
        host.chooser.answer = host.path("Open.IIF");
        ASSERT_TRUE(host.callFor<bool>("SaveiClassAs"));
        host.onDialog = [](QDialog& d) { return addFieldInEditor(d, 22, 3); };
        host.call("AddField");
        ASSERT_EQ(host.control.records().size(), 1);
        host.prompter.messages.clear();
        for (Answer a : c.answers) host.prompter.answerNext(a);
        EXPECT_EQ(host.callFor<bool>("CloseLayout"), c.closed);
        EXPECT_EQ(host.messageTexts(), c.questions);
        if (c.questions.size() > 1) {
            EXPECT_EQ(host.prompter.messages[1].buttons, Buttons::YesNoCancel);
        }
        EXPECT_EQ(host.control.records().size(), c.closed ? 0 : 1);
        EXPECT_EQ(host.cell("grdItems", 0, 1), c.closed ? "" : "NAME");
        EXPECT_EQ(host.get("CLessLayoutEntered").toBool(), !c.closed);
        // The file on disk holds the added item only when the second question was answered Yes.
        Host reader;
        ASSERT_TRUE(reader.openLayout(host.path("Open.IIF")));
        EXPECT_EQ(reader.control.records().size(), c.written ? 1 : 0);
    }
}

TEST(IClassFiles, FetchDBFieldsTellsWhetherTheProjectGaveFields) {
    Host host;
    host.set("ProjectFile", host.path("None.ini"));
    EXPECT_FALSE(host.callFor<bool>("FetchDBFields"));
    host.set("ProjectFile", host.path("Project.ini"));
    EXPECT_TRUE(host.callFor<bool>("FetchDBFields"));
    EXPECT_EQ(host.control.hostFields().fields()[1].dbField, "NUMBER");
}

struct GateCase {
    const char* member;
    bool gated;
    const char* dialog;
};

TEST(IClassCommands, ItemDialogsOpenOnlyWhileALayoutIsEntered) {
    const std::vector<GateCase> cases = {
        {"AddField", true, "frmEditiClass"},     {"AddFunction", true, "frmEditiClass"},
        {"AddDBUpdateItem", true, "frmDBUpdate"}, {"EditItem", true, "frmEditiClass"},
        {"AddItemOverMultipleTracks", false, "frmMultiTrack"},
    };
    for (const GateCase& c : cases) {
        Host host;
        host.call(c.member);
        EXPECT_EQ(host.dialogs.size(), c.gated ? 0u : 1u) << c.member;
        EXPECT_EQ(host.changedCount(), c.gated ? 0 : 1) << c.member;

        Host entered;
        entered.set("CLessLayoutEntered", true);
        entered.call(c.member);
        EXPECT_EQ(entered.dialogs, std::vector<QString>{c.dialog}) << c.member;
        EXPECT_EQ(entered.events, (std::vector<QString>{"Changed", "GenericEvent Hallo xyz"})) << c.member;
        EXPECT_TRUE(entered.prompter.messages.empty()) << c.member;
    }
}

TEST(IClassCommands, EditItemOpensTheEditorOnTheCurrentRow) {
    Host host;
    host.startLayout();
    host.onDialog = [](QDialog& d) { return addFieldInEditor(d, 23, 5); };
    host.call("AddField");
    host.grid("grdItems")->setCurrentIndex(host.grid("grdItems")->model()->index(0, 1));
    QString block;
    host.onDialog = [&](QDialog& d) {
        auto* rows = d.findChild<QComboBox*>("cboRow");
        block = rows ? rows->currentText() : QString();
        d.reject();
        return static_cast<int>(QDialog::Rejected);
    };
    host.call("EditItem");
    ASSERT_EQ(host.dialogs.size(), 2u);
    EXPECT_EQ(host.dialogs[1], "frmEditiClass");
    EXPECT_EQ(block, "23");  // opened on the item, not for a new one
    EXPECT_EQ(host.control.records().size(), 1);
}

struct RemoveCase {
    const char* member;
    const char* gridName;
};

TEST(IClassCommands, RemovingTheEmptyRowOnlyTellsToSelectAnItem) {
    for (const RemoveCase& c : {RemoveCase{"RemoveItem", "grdItems"}, RemoveCase{"RemoveDBUpdateItem", "grdDBUpdateFields"}}) {
        Host host;
        host.startLayout();
        host.events.clear();
        host.call(c.member);
        ASSERT_EQ(host.prompter.messages.size(), 1u) << c.member;
        EXPECT_EQ(host.prompter.messages[0].text, "T3104");
        EXPECT_EQ(host.prompter.messages[0].icon, Icon::Exclamation);
        EXPECT_FALSE(host.prompter.messages[0].question);
        EXPECT_TRUE(host.events.empty()) << c.member;
        EXPECT_EQ(host.grid(c.gridName)->model()->rowCount(), 1);
    }
}

TEST(IClassCommands, RemoveItemAsksAndRemovesTheRowsRecordOnYes) {
    Host host;
    host.startLayout();
    host.onDialog = [](QDialog& d) { return addFieldInEditor(d, 24, 2); };
    host.call("AddField");
    host.onDialog = [](QDialog& d) { return addFieldInEditor(d, 25, 2); };
    host.call("AddField");
    ASSERT_EQ(host.control.records().size(), 2);
    host.grid("grdItems")->setCurrentIndex(host.grid("grdItems")->model()->index(0, 1));

    host.prompter.answerNext(Answer::No);
    host.events.clear();
    host.call("RemoveItem");
    EXPECT_EQ(host.control.records().size(), 2);
    EXPECT_TRUE(host.events.empty());
    ASSERT_EQ(host.prompter.messages.size(), 1u);
    EXPECT_EQ(host.prompter.messages[0].text, "T3104\r\nT3105");
    EXPECT_EQ(host.prompter.messages[0].buttons, Buttons::YesNo);
    EXPECT_EQ(host.prompter.messages[0].icon, Icon::Question);

    host.call("RemoveItem");
    ASSERT_EQ(host.control.records().size(), 1);
    EXPECT_EQ(host.control.records()[0].block, 25);
    EXPECT_EQ(host.cell("grdItems", 0, 4), "25");
    EXPECT_EQ(host.changedCount(), 1);
}

TEST(IClassCommands, ShowPreviewNeedsACard) {
    Host host;
    host.call("ShowPreview");
    EXPECT_EQ(host.messageTexts(), std::vector<std::string>{"Error: no iClass object found!"});
    EXPECT_TRUE(host.dialogs.empty());
    host.call("NewLayout", false);
    host.call("ShowPreview");
    EXPECT_EQ(host.dialogs, std::vector<QString>{"frmPreview"});
    EXPECT_EQ(host.prompter.messages.size(), 1u);
}

TEST(IClassCommands, SetPropertiesAdoptsTheConfirmedCardAndRaisesChanged) {
    Host host;
    host.call("NewLayout", false);
    host.events.clear();
    host.call("SetProperties");  // the default operator cancels
    EXPECT_TRUE(host.events.empty());
    EXPECT_FALSE(host.control.card()->EnableBitwise());

    host.onDialog = [](QDialog& d) {
        d.show();
        d.findChild<QCheckBox*>("chkICBitwise")->setChecked(true);
        d.findChild<QPushButton*>("cmdOK")->click();
        return d.result();
    };
    host.call("SetProperties");
    EXPECT_EQ(host.dialogs, (std::vector<QString>{"frmProperties", "frmProperties"}));
    EXPECT_TRUE(host.control.card()->EnableBitwise());
    EXPECT_TRUE(host.get("UseBit").toBool());
    EXPECT_EQ(host.events, std::vector<QString>{"Changed"});
}

TEST(IClassCommands, NewLayoutWithThePropertiesDialogOpensItFirst) {
    Host host;
    host.call("NewLayout", true);
    EXPECT_EQ(host.dialogs, std::vector<QString>{"frmProperties"});
    EXPECT_TRUE(host.get("CLessLayoutEntered").toBool());
    EXPECT_NE(host.control.card(), nullptr);
}

TEST(IClassCommands, ChipTypeAndBoundariesGoToTheCard) {
    Host host;
    host.call("NewLayout", false);
    EXPECT_TRUE(QMetaObject::invokeMethod(&host.control, "SetChipType", Q_ARG(int, iBigEightPages)));
    EXPECT_EQ(host.control.card()->ChipSize(), iBigEightPages);
    host.call("SetAppBoundaries", QString("10|12|13|14|15|16|17|18"));
    EXPECT_EQ(host.control.card()->GetBoundary(1), 12);
    EXPECT_EQ(host.control.card()->GetBoundary(7), 18);
    EXPECT_EQ(host.changedCount(), 1);  // only the NewLayout
}

}  // namespace
}  // namespace kestrin::test
