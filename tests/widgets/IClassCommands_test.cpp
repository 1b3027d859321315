// The control's commands as a host calls them by member name: a whole session, the gate, what
// a cancelled dialog leaves, a new layout's card, closing, editing and removing the current row.
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTest>
#include <filesystem>

#include "IClass_test.h"
#include "card/CIClass.h"
#include "persist/ProfileDocument.h"

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

const std::vector<QString> kRefresh = {"Changed", "GenericEvent Hallo xyz"};
const IClass::IClassType kEightPages = IClass::iBigEightPages;

TEST(IClassSession, AHostMakesSavesClosesAndReopensALayoutByMemberName) {
    Host host;
    host.startLayout();
    host.onDialog = [](QDialog& d) { return addFieldInEditor(d, 20, 4); };
    host.events.clear();
    host.call("AddField");
    EXPECT_EQ(host.dialogs, std::vector<QString>{"frmEditiClass"});
    EXPECT_EQ(host.cell("grdItems", 0, 1), "NAME");
    EXPECT_EQ(host.events, kRefresh);
    EXPECT_FALSE(host.get("Saved").toBool());
    const QStringList rows = host.rowsOf("grdItems");

    host.chooser.answer = host.path("Staff");
    EXPECT_TRUE(host.callFor<bool>("SaveiClassAs"));
    EXPECT_EQ(host.chooser.title, "T3122");
    EXPECT_EQ(host.chooser.folder, host.path(""));
    EXPECT_EQ(host.chooser.filter, "Lumisk (*.IIF);;T3121 (*.*)");
    EXPECT_EQ(host.messageTexts(), std::vector<std::string>{"T3123"});
    EXPECT_EQ(host.get("LayoutFile").toString(), host.path("Staff.IIF"));
    EXPECT_TRUE(host.get("Saved").toBool());

    host.prompter.messages.clear();
    EXPECT_TRUE(host.callFor<bool>("CloseLayout"));
    EXPECT_EQ(host.messageTexts(), std::vector<std::string>{"T3124"});
    EXPECT_EQ(host.rowsOf("grdItems").size(), 1);
    EXPECT_EQ(host.cell("grdItems", 0, 1), "");
    EXPECT_FALSE(host.get("CLessLayoutEntered").toBool());
    EXPECT_FALSE(host.get("Saved").toBool());
    EXPECT_EQ(host.get("LayoutFile").toString(), "");

    host.events.clear();
    EXPECT_TRUE(host.openLayout(host.path("Staff.IIF")));
    EXPECT_EQ(host.rowsOf("grdItems"), rows);
    EXPECT_TRUE(host.get("Saved").toBool());
    EXPECT_EQ(host.events, kRefresh);
}

TEST(IClassSession, OpenLayoutRaisesTheReadersErrorAndSaveLayoutUsesTheEncodePath) {
    Host host;
    EXPECT_FALSE(host.openLayout(""));
    host.startLayout();
    std::filesystem::create_directories(host.dir / "encode");
    host.set("EncodePath", host.path("encode"));
    EXPECT_FALSE(host.callFor<QVariant>("SaveLayout").toBool());  // no name chosen yet: cancelled
    EXPECT_EQ(host.chooser.calls, 1);
    host.chooser.answer = host.path("Card.IIF");
    EXPECT_TRUE(host.callFor<QVariant>("SaveLayout").toBool());
    EXPECT_EQ(host.chooser.folder, host.path("encode"));
    EXPECT_TRUE(std::filesystem::exists(host.dir / "encode" / "Card.CHP"));
}

TEST(IClassCommands, ANewLayoutUsesTheHidAreaAndSavesIt) {
    Host host;
    host.startLayout();
    EXPECT_TRUE(host.get("UseHID").toBool());
    EXPECT_FALSE(host.get("UseBit").toBool());
    host.chooser.answer = host.path("New.IIF");
    ASSERT_TRUE(host.callFor<bool>("SaveiClassAs"));
    const auto file = ProfileDocument::parse(readBytes(host.dir / "New.IIF"));
    EXPECT_EQ(file.getInt("CARDDESIGN", "UseHID", 0), 1);
}

struct GateCase {
    const char* member;
    bool gated;
    const char* dialog;
};

// A dialog the operator cancels leaves the grids, the card and the saved mark as they were.
TEST(IClassCommands, ItemDialogsOpenWhileALayoutIsEnteredAndACancelledOneChangesNothing) {
    for (const GateCase& c : {GateCase{"AddField", true, "frmEditiClass"}, GateCase{"AddFunction", true, "frmEditiClass"},
                              GateCase{"AddDBUpdateItem", true, "frmDBUpdate"}, GateCase{"EditItem", true, "frmEditiClass"},
                              GateCase{"AddItemOverMultipleTracks", false, "frmMultiTrack"}}) {
        Host host;
        host.call(c.member);
        EXPECT_EQ(host.dialogs.size(), c.gated ? 0u : 1u) << c.member;

        Host saved;
        saved.startLayout();
        saved.chooser.answer = saved.path("Saved.IIF");
        ASSERT_TRUE(saved.callFor<bool>("SaveiClassAs"));
        saved.events.clear();
        saved.prompter.messages.clear();
        saved.call(c.member);
        EXPECT_EQ(saved.dialogs, std::vector<QString>{c.dialog}) << c.member;
        EXPECT_TRUE(saved.events.empty()) << c.member;
        EXPECT_TRUE(saved.get("Saved").toBool()) << c.member;
        EXPECT_TRUE(saved.callFor<bool>("CloseLayout"));
        EXPECT_EQ(saved.messageTexts(), std::vector<std::string>{"T3124"}) << c.member;
    }
}

TEST(IClassCommands, EditItemOpensTheEditorOnTheCurrentRowAndRemoveItemRemovesIt) {
    Host host;
    host.startLayout();
    for (int block : {23, 25}) {
        host.onDialog = [block](QDialog& d) { return addFieldInEditor(d, block, 2); };
        host.call("AddField");
    }
    host.grid("grdItems")->setCurrentIndex(host.grid("grdItems")->model()->index(1, 1));
    QString block;
    host.onDialog = [&](QDialog& d) {
        block = d.findChild<QComboBox*>("cboRow")->currentText();
        d.reject();
        return static_cast<int>(QDialog::Rejected);
    };
    host.call("EditItem");
    EXPECT_EQ(block, "25");

    host.events.clear();
    host.call("RemoveItem");
    EXPECT_EQ(host.messageTexts().back(), "T3104\r\nT3105");
    ASSERT_EQ(host.control.document().records().size(), 1);
    EXPECT_EQ(host.cell("grdItems", 0, 4), "23");
    EXPECT_EQ(host.events, kRefresh);
}

TEST(IClassCommands, PropertiesConfirmedOnANewLayoutAreOneChange) {
    auto confirmBitwise = [](QDialog& d) {
        d.show();
        d.findChild<QCheckBox*>("chkICBitwise")->setChecked(true);
        d.findChild<QPushButton*>("cmdOK")->click();
        return d.result();
    };
    Host host;
    host.onDialog = confirmBitwise;
    host.call("NewLayout", true);
    EXPECT_EQ(host.dialogs, std::vector<QString>{"frmProperties"});
    EXPECT_EQ(host.events, kRefresh);
    EXPECT_TRUE(host.get("UseBit").toBool());

    host.events.clear();
    host.onDialog = nullptr;  // cancelled
    host.call("SetProperties");
    EXPECT_TRUE(host.events.empty());
    host.onDialog = confirmBitwise;
    host.call("SetProperties");
    EXPECT_EQ(host.events, std::vector<QString>{"Changed"});
    EXPECT_FALSE(host.get("Saved").toBool());
}

TEST(IClassCommands, WithoutALayoutTheCardCommandsLeaveNoCardForThePreview) {
    Host host;
    EXPECT_TRUE(QMetaObject::invokeMethod(&host.control, "SetChipType", QGenericArgument("IClassType", &kEightPages)));
    host.call("SetAppBoundaries", QString("10|12|13|14|15|16|17|18"));
    host.call("ShowPreview");
    EXPECT_EQ(host.messageTexts(), std::vector<std::string>{"Error: no iClass object found!"});
    EXPECT_TRUE(host.dialogs.empty());

    host.call("NewLayout", false);
    EXPECT_TRUE(QMetaObject::invokeMethod(&host.control, "SetChipType", QGenericArgument("IClassType", &kEightPages)));
    host.call("SetAppBoundaries", QString("10|12|13|14|15|16|17|18"));
    EXPECT_EQ(host.control.document().card()->GetBoundary(1), 12);
    host.call("ShowPreview");
    EXPECT_EQ(host.dialogs, std::vector<QString>{"frmPreview"});
}

}  // namespace
}  // namespace kestrin::test
