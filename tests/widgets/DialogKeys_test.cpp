// The dialogs as the keyboard meets them: a focused button answers Enter with its own action,
// Escape cancels, and Delete works in a number box.
#include <QDialog>
#include <QPushButton>

#include "DialogFixture.h"
#include "dialogs/frmProperties.h"
#include "editor/frmEditiClass.h"
#include "items/frmDBUpdate.h"
#include "items/frmMultiTrack.h"

namespace kestrin::test {
namespace {

struct Keys : DialogFixture {
    using DialogFixture::DialogFixture;
    void activate() const {
        form->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
    void enterOn(const QString& button) const {
        QWidget* b = child<QPushButton>(button);
        b->setFocus(Qt::TabFocusReason);
        QTest::keyClick(b, Qt::Key_Return);
    }
};

TEST(DialogKeys, EnterOnAFocusedCancelCancels) {
    Keys props;
    auto& p = props.open<frmProperties>();
    p.setCard(std::make_unique<CIClass>());
    props.activate();
    props.enterOn("cmdCancel");
    EXPECT_TRUE(p.Cancelled);
    EXPECT_EQ(p.result(), QDialog::Rejected);

    Keys tracks;
    auto& m = tracks.open<frmMultiTrack>(-1);
    tracks.activate();
    tracks.enterOn("cmdCancel");
    EXPECT_TRUE(m.Cancelled);
    EXPECT_TRUE(tracks.prompter.messages.empty());  // OK would have complained of the missing field

    Keys updates;
    auto& u = updates.open<frmDBUpdate>(-1);
    updates.activate();
    updates.enterOn("cmdCancel");
    EXPECT_TRUE(u.Cancelled);
    EXPECT_TRUE(updates.prompter.messages.empty());
}

TEST(DialogKeys, EnterOnAFocusedApplyOrNewRunsItAndEnterInABoxMeansOk) {
    Keys ed;
    auto& e = ed.open<frmEditiClass>(kModeField, -1);
    ed.activate();
    ed.clickField(0);
    ed.place(20, 0, "4");
    ed.enterOn("cmdApply");
    EXPECT_EQ(e.appliedCount(), 1);
    ed.enterOn("cmdNew");
    EXPECT_EQ(ed.text("txtSelectedField"), "");
    ed.clickField(1);
    ed.place(21, 0, "2");
    QLineEdit* size = ed.child<QLineEdit>("txtNrBytes");
    size->setFocus();
    QTest::keyClick(size, Qt::Key_Return);
    EXPECT_FALSE(e.Cancelled);
    EXPECT_EQ(ed.records().size(), 2);
}

TEST(DialogKeys, EscapeInThePropertiesDialogCancels) {
    Keys props;
    auto& p = props.open<frmProperties>();
    p.setCard(std::make_unique<CIClass>());
    props.activate();
    props.click("chkICBitwise");
    QTest::keyClick(&p, Qt::Key_Escape);
    EXPECT_TRUE(p.Cancelled);
    EXPECT_TRUE(p.Unchanged);
}

}  // namespace
}  // namespace kestrin::test

namespace kestrin::test {
namespace {

}  // namespace
}  // namespace kestrin::test
