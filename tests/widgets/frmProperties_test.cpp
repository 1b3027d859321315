#include "dialogs/frmProperties.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTest>
#include <gtest/gtest.h>
#include <memory>

#include "DialogFixture.h"
#include "card/CIClass.h"
#include "items/RecordArray.h"
#include "support/Records.h"
#include "support/TestSupport.h"
#include "base/Prompter.h"
#include "text/CatalogRegistry.h"
#include "text/Translator.h"

namespace kestrin {
namespace {

using test::RecordingPrompter;

// The dialog's messages read "T<number>"; its captions keep their built-in defaults.
const std::string kCutMessage = "T4610\r\nT4611";
const std::string kHidMessage = "T4643\r\nT4644";
const std::string kRangeMessage = "T3189 5 & 31!";

struct Properties : test::DialogFixture {
    std::unique_ptr<frmProperties> form;

    explicit Properties(std::vector<ItemRecord> items = {}) : DialogFixture(std::move(items)) {
        prompter.messages.clear();
    }
    // A card of the given chip with the HID area and bitwise encoding as told.
    void open(IClassType chip, bool hid = false, bool bitwise = false, const std::string& boundaries = {}) {
        auto card = std::make_unique<CIClass>();
        card->setChipSize(chip);
        card->setUseHIDSection(hid);
        card->setEnableBitwise(bitwise);
        if (!boundaries.empty()) card->SetBoundaries(boundaries);
        openWith(std::move(card));
    }
    void openWith(std::unique_ptr<CIClass> card) {
        form = std::make_unique<frmProperties>(doc);
        form->setCard(std::move(card));
        form->show();
        form->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(form.get()));
    }
    template <class T>
    T* child(const QString& name) const {
        T* w = form->findChild<T*>(name);
        EXPECT_NE(w, nullptr) << name.toStdString();
        return w;
    }
    QRadioButton* option(int i) const { return child<QRadioButton>(QStringLiteral("optChipType(%1)").arg(i)); }
    QComboBox* memoryType() const { return child<QComboBox>("cboMemoryType"); }
    QLineEdit* box(int p) const { return child<QLineEdit>(QStringLiteral("txtBoundary(%1)").arg(p)); }
    bool boundaryTab() const { return child<QTabWidget>("tabIClass")->isTabEnabled(1); }
    void setBoxes(const std::vector<std::pair<int, QString>>& values) const {
        for (const auto& [page, value] : values) box(page)->setText(value);
    }
    void click(const char* name) const { child<QPushButton>(name)->click(); }
    std::vector<std::string> messages() const {
        std::vector<std::string> out;
        for (const auto& m : prompter.messages) out.push_back(m.text);
        return out;
    }
    bool cutColoured(int p) const {
        const QPalette pal = box(p)->palette();
        return pal.color(QPalette::Base) == QApplication::palette().color(QPalette::ToolTipBase) &&
               pal.color(QPalette::Text) == QColor(255, 0, 0);
    }
    bool normalColoured(int p) const {
        const QPalette pal = box(p)->palette();
        return pal.color(QPalette::Base) == QColor(Qt::white) && pal.color(QPalette::Text) == QColor(Qt::black);
    }
};

// The chip type, the switches and the boundaries of the card fill the controls; items (not
// database updates) lock the chip type.
struct LoadCase {
    IClassType chip;
    bool hid, bitwise;
    std::vector<ItemRecord> items;
    bool big, memoryEnabled, tabEnabled, chipLocked;
};

TEST(frmPropertiesTest, LoadsTheCardIntoTheControls) {
    const LoadCase cases[] = {
        {iSmallOnePage, true, false, {}, false, false, false, false},
        {iBigOnePage, false, true, {}, true, true, false, false},
        {iBigEightPages, true, true, {test::dbUpdate("Field", "Count", "1")}, true, true, true, false},
        {iBigEightPages, false, false, {test::field("Name", 0, 20, 0, 4)}, true, false, true, true},
    };
    for (const LoadCase& c : cases) {
        SCOPED_TRACE(c.chip);
        Properties p(c.items);
        p.open(c.chip, c.hid, c.bitwise, c.chip == iBigEightPages ? "5|6|7|8|9|10|11|12" : "");
        EXPECT_EQ(p.option(1)->isChecked(), c.big);
        EXPECT_EQ(p.option(0)->isChecked(), !c.big);
        EXPECT_EQ(p.memoryType()->isEnabled(), c.memoryEnabled);
        EXPECT_EQ(p.option(0)->isEnabled(), !c.chipLocked);
        EXPECT_EQ(p.boundaryTab(), c.tabEnabled);
        EXPECT_EQ(p.child<QCheckBox>("chkICHID")->isChecked(), c.hid);
        EXPECT_EQ(p.child<QCheckBox>("chkICBitwise")->isChecked(), c.bitwise);
        EXPECT_EQ(p.box(7)->text(), c.chip == iBigEightPages ? "12" : "18");
    }
}

TEST(frmPropertiesTest, ChipTypeClicksDriveTheMemoryListAndTheBoundaryTab) {
    Properties p;
    p.open(iSmallOnePage);
    p.option(1)->click();
    EXPECT_TRUE(p.memoryType()->isEnabled());
    p.memoryType()->setCurrentIndex(1);
    EXPECT_TRUE(p.boundaryTab());
    p.option(0)->click();
    EXPECT_FALSE(p.memoryType()->isEnabled());
    EXPECT_FALSE(p.boundaryTab());
}

TEST(frmPropertiesTest, WithoutACardOKMakesOne) {
    Properties p;
    p.openWith(nullptr);
    EXPECT_FALSE(p.option(0)->isChecked() || p.option(1)->isChecked());
    p.option(0)->click();
    p.click("cmdOK");
    ASSERT_NE(p.form->Card, nullptr);
    EXPECT_EQ(p.form->Card->ChipSize(), iSmallOnePage);
}

TEST(frmPropertiesTest, OKWritesTheControlsBack) {
    Properties p;
    p.open(iSmallOnePage, true, false);
    p.option(1)->click();
    p.memoryType()->setCurrentIndex(1);
    p.child<QCheckBox>("chkICHID")->click();
    p.child<QCheckBox>("chkICBitwise")->click();
    p.setBoxes({{0, "5"}, {3, "20"}, {7, "31"}});
    p.click("cmdOK");
    EXPECT_TRUE(p.messages().empty());
    EXPECT_EQ(p.form->result(), QDialog::Accepted);
    EXPECT_FALSE(p.form->Cancelled);
    EXPECT_FALSE(p.form->Unchanged);
    const CIClass& card = *p.form->Card;
    EXPECT_EQ(card.ChipSize(), iBigEightPages);
    EXPECT_FALSE(card.UseHIDSection());
    EXPECT_TRUE(card.EnableBitwise());
    const int expected[8] = {5, 18, 18, 20, 18, 18, 18, 31};
    for (int page = 0; page < 8; ++page) EXPECT_EQ(card.GetBoundary(page), expected[page]) << page;
}

// A boundary that cuts an item refuses OK: both warnings in turn, the cut box marked until it
// is edited, nothing written back.
TEST(frmPropertiesTest, OKIsRefusedWhileABoundaryCutsAnItem) {
    Properties p({test::field("Low", 0, 10, 0, 8), test::field("Cut", 1, 10, 0, 24)});
    p.open(iBigEightPages, true);
    p.box(0)->setText("11");
    p.click("cmdOK");
    EXPECT_EQ(p.messages(), (std::vector<std::string>{kCutMessage, kHidMessage}));
    EXPECT_EQ(p.prompter.messages.front().icon, Icon::Exclamation);
    EXPECT_TRUE(p.form->isVisible());
    EXPECT_TRUE(p.form->Unchanged);
    EXPECT_EQ(p.form->Card->GetBoundary(0), 18);
    EXPECT_TRUE(p.cutColoured(0));
    EXPECT_TRUE(p.normalColoured(1));
    p.box(0)->setFocus();
    QTest::keyClick(p.box(0), Qt::Key_Backspace);
    EXPECT_TRUE(p.normalColoured(0));
}

// Boxes take digits only; leaving one trims it and checks 5 to 31, keeping the focus on a
// refused value.
TEST(frmPropertiesTest, BoundaryBoxesFilterAndCheckOnLeaving) {
    for (const auto& [typed, kept, ok] : {std::tuple<QString, QString, bool>{"1x2", "12", true}, {"4", "4", false}}) {
        Properties p;
        p.open(iBigEightPages);
        p.child<QTabWidget>("tabIClass")->setCurrentIndex(1);
        p.box(1)->setFocus();
        p.box(1)->clear();
        QTest::keyClicks(p.box(1), typed);
        p.box(2)->setFocus(Qt::TabFocusReason);
        EXPECT_EQ(p.box(1)->text(), kept);
        EXPECT_EQ(p.messages(), ok ? std::vector<std::string>{} : std::vector<std::string>{kRangeMessage});
        EXPECT_EQ(QApplication::focusWidget(), ok ? p.box(2) : p.box(1));
    }
}

TEST(frmPropertiesTest, CancelChangesNothing) {
    Properties p;
    p.open(iBigOnePage);
    p.child<QCheckBox>("chkICBitwise")->click();
    p.click("cmdCancel");
    EXPECT_EQ(p.form->result(), QDialog::Rejected);
    EXPECT_TRUE(p.form->Cancelled);
    EXPECT_TRUE(p.form->Unchanged);
}

// The window's close button writes the controls back without the OK checks.
TEST(frmPropertiesTest, WindowCloseButtonWritesBackWithoutTheChecks) {
    Properties p({test::field("Cut", 1, 10, 0, 24)});
    p.open(iBigEightPages, false, false);
    p.child<QCheckBox>("chkICBitwise")->click();
    p.box(0)->setText("11");
    p.form->close();
    EXPECT_TRUE(p.messages().empty());
    EXPECT_FALSE(p.form->Cancelled);
    EXPECT_TRUE(p.form->Card->EnableBitwise());
    EXPECT_EQ(p.form->Card->GetBoundary(0), 11);
}

}  // namespace
}  // namespace kestrin
