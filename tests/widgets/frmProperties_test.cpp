#include "dialogs/frmProperties.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
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

// --- loading ---

TEST(frmPropertiesTest, CaptionsComeFromTheTextTable) {
    Properties p;
    p.open(iBigEightPages);
    EXPECT_EQ(p.form->windowTitle(), "iClass Properties");
    auto* tabs = p.child<QTabWidget>("tabIClass");
    EXPECT_EQ(tabs->tabText(0), "General properties");
    EXPECT_EQ(tabs->tabText(1), "Application Boundaries");
    const std::pair<const char*, QString> texts[] = {
        {"optChipType(0)", "2Kbit Chip"},
        {"optChipType(1)", "16Kbit Chip"},
        {"chkICHID", "Encode HID Access Control Application"},
        {"chkICBitwise", "Enable bitwise encoding"},
    };
    for (const auto& [name, caption] : texts) EXPECT_EQ(p.child<QAbstractButton>(name)->text(), caption) << name;
    EXPECT_EQ(p.child<QGroupBox>("fraChipType")->title(), "Chip Configuration");
    EXPECT_EQ(p.child<QGroupBox>("fraExtra")->title(), "Extra options");
    EXPECT_EQ(p.child<QGroupBox>("fraBoundaries")->title(), "Set the application boundaries for your pages:");
    EXPECT_EQ(p.child<QLabel>("lblPageHeader")->text(), "Page:");
    EXPECT_EQ(p.child<QLabel>("lblBoundary")->text(), "Put Application boundary before block:");
    ASSERT_EQ(p.memoryType()->count(), 2);
    EXPECT_EQ(p.memoryType()->itemText(0), "1 Page");
    EXPECT_EQ(p.memoryType()->itemText(1), "2 Pages");
    for (int page = 0; page < 8; ++page)
        EXPECT_EQ(p.child<QLabel>(QStringLiteral("lblPage(%1)").arg(page))->text(), QStringLiteral("Page %1").arg(page));
    // Each page row stands below the one before it.
    tabs->setCurrentIndex(1);
    QApplication::processEvents();
    for (int page = 1; page < 8; ++page) EXPECT_GT(p.box(page)->y(), p.box(page - 1)->y()) << page;
}

struct LoadCase {
    IClassType chip;
    bool hid, bitwise;
    bool small, big;
    int memoryIndex;  // -1: not looked at
    bool memoryEnabled, tabEnabled;
};

TEST(frmPropertiesTest, LoadsEachChipTypeIntoTheControls) {
    const LoadCase cases[] = {
        {iSmallOnePage, true, false, true, false, -1, false, false},
        {iBigOnePage, false, true, false, true, 0, true, false},
        {iBigEightPages, true, true, false, true, 1, true, true},
    };
    for (const LoadCase& c : cases) {
        SCOPED_TRACE(c.chip);
        Properties p;
        p.open(c.chip, c.hid, c.bitwise);
        EXPECT_EQ(p.option(0)->isChecked(), c.small);
        EXPECT_EQ(p.option(1)->isChecked(), c.big);
        if (c.memoryIndex >= 0) {
            EXPECT_EQ(p.memoryType()->currentIndex(), c.memoryIndex);
        }
        EXPECT_EQ(p.memoryType()->isEnabled(), c.memoryEnabled);
        EXPECT_EQ(p.boundaryTab(), c.tabEnabled);
        EXPECT_EQ(p.child<QCheckBox>("chkICHID")->isChecked(), c.hid);
        EXPECT_EQ(p.child<QCheckBox>("chkICBitwise")->isChecked(), c.bitwise);
        EXPECT_TRUE(p.option(0)->isEnabled() && p.option(1)->isEnabled());
        EXPECT_TRUE(p.form->Unchanged);
        EXPECT_FALSE(p.form->Cancelled);
        if (c.chip != iBigEightPages) {
            for (int page = 0; page < 8; ++page) EXPECT_EQ(p.box(page)->text(), "18") << page;
        }
    }
}

TEST(frmPropertiesTest, EightPageCardFillsTheBoxesWithItsBoundaries) {
    Properties p;
    p.open(iBigEightPages, false, false, "5|6|7|8|9|10|11|12");
    for (int page = 0; page < 8; ++page) EXPECT_EQ(p.box(page)->text(), QString::number(page + 5)) << page;
}

TEST(frmPropertiesTest, ItemsLockTheChipTypeWhileTheTabFollowsIt) {
    const std::pair<IClassType, bool> cases[] = {{iSmallOnePage, false}, {iBigOnePage, false}, {iBigEightPages, true}};
    for (const auto& [chip, tab] : cases) {
        SCOPED_TRACE(chip);
        Properties p({test::field("Name", 0, 20, 0, 4)});
        p.open(chip);
        EXPECT_FALSE(p.option(0)->isEnabled());
        EXPECT_FALSE(p.option(1)->isEnabled());
        EXPECT_FALSE(p.memoryType()->isEnabled());
        EXPECT_EQ(p.boundaryTab(), tab);
    }
}

TEST(frmPropertiesTest, DatabaseUpdatesAloneDoNotLockTheChipType) {
    Properties p({test::dbUpdate("Field", "Word", "x")});
    p.open(iBigEightPages);
    EXPECT_TRUE(p.option(0)->isEnabled());
    EXPECT_TRUE(p.memoryType()->isEnabled());
}

TEST(frmPropertiesTest, ChipTypeClicksDriveTheMemoryListAndTheBoundaryTab) {
    Properties p;
    p.open(iSmallOnePage);
    p.option(1)->click();
    EXPECT_TRUE(p.memoryType()->isEnabled());
    p.memoryType()->setCurrentIndex(1);
    EXPECT_TRUE(p.boundaryTab());
    p.memoryType()->setCurrentIndex(0);
    EXPECT_FALSE(p.boundaryTab());
    p.memoryType()->setCurrentIndex(1);
    p.option(0)->click();
    EXPECT_FALSE(p.memoryType()->isEnabled());
    EXPECT_FALSE(p.boundaryTab());
}

TEST(frmPropertiesTest, WithoutACardNothingIsFilledAndOKMakesOne) {
    Properties p;
    p.openWith(nullptr);
    EXPECT_FALSE(p.option(0)->isChecked());
    EXPECT_FALSE(p.option(1)->isChecked());
    p.option(0)->click();
    p.click("cmdOK");
    ASSERT_NE(p.form->Card, nullptr);
    EXPECT_EQ(p.form->Card->ChipSize(), iSmallOnePage);
}

// --- the OK checks ---

struct CutCase {
    const char* what;
    ItemRecord item;
    int box;
    QString value;
    bool cut;
};

TEST(frmPropertiesTest, BoxBeforeAPageIsCheckedAgainstTheNextPage) {
    // The item covers blocks 10 to 12 of its page.
    const CutCase cases[] = {
        {"box 0 against page 1", test::field("A", 1, 10, 0, 24), 0, "11", true},
        {"box of the item's own page", test::field("A", 2, 10, 0, 24), 2, "11", false},
        {"boundary at the first block", test::field("A", 3, 10, 0, 24), 2, "10", false},
    };
    for (const CutCase& c : cases) {
        SCOPED_TRACE(c.what);
        Properties p({c.item});
        p.open(iBigEightPages);
        p.box(c.box)->setText(c.value);
        p.click("cmdOK");
        if (c.cut) {
            EXPECT_EQ(p.messages(), std::vector<std::string>{kCutMessage});
            EXPECT_EQ(p.prompter.messages.front().icon, Icon::Exclamation);
            EXPECT_TRUE(p.cutColoured(c.box));
            for (int other = 0; other < 8; ++other) {
                if (other != c.box) {
                    EXPECT_TRUE(p.normalColoured(other)) << other;
                }
            }
            EXPECT_TRUE(p.form->isVisible());
            EXPECT_TRUE(p.form->Unchanged);
            EXPECT_EQ(p.form->Card->GetBoundary(c.box), 18) << "nothing written back";
        } else {
            EXPECT_TRUE(p.messages().empty());
            EXPECT_FALSE(p.form->isVisible());
            EXPECT_EQ(p.form->result(), QDialog::Accepted);
            EXPECT_TRUE(p.normalColoured(c.box));
        }
    }
}

TEST(frmPropertiesTest, BothWarningsShowInTurnBoundaryFirst) {
    Properties p({test::field("Low", 0, 10, 0, 8), test::field("Cut", 1, 10, 0, 24)});
    p.open(iBigEightPages, true);
    p.box(0)->setText("11");
    p.click("cmdOK");
    EXPECT_EQ(p.messages(), (std::vector<std::string>{kCutMessage, kHidMessage}));
    EXPECT_TRUE(p.form->isVisible());
}

TEST(frmPropertiesTest, HidAreaRefusesItemsBelowBlock19) {
    const std::pair<int, bool> cases[] = {{18, false}, {19, true}};
    for (const auto& [block, accepted] : cases) {
        SCOPED_TRACE(block);
        Properties p({test::field("Item", 0, block, 0, 8)});
        p.open(iSmallOnePage, false);
        p.child<QCheckBox>("chkICHID")->click();
        p.click("cmdOK");
        EXPECT_EQ(p.form->isVisible(), !accepted);
        EXPECT_EQ(p.messages(), accepted ? std::vector<std::string>{} : std::vector<std::string>{kHidMessage});
    }
}

TEST(frmPropertiesTest, HidOffIgnoresPageZeroItems) {
    Properties p({test::field("Item", 0, 6, 0, 8)});
    p.open(iSmallOnePage, true);
    p.child<QCheckBox>("chkICHID")->click();
    p.click("cmdOK");
    EXPECT_TRUE(p.messages().empty());
    EXPECT_FALSE(p.form->Card->UseHIDSection());
}

TEST(frmPropertiesTest, EditingACutBoxRestoresItsColours) {
    Properties p({test::field("Cut", 1, 10, 0, 24)});
    p.open(iBigEightPages);
    p.box(0)->setText("11");
    p.click("cmdOK");
    ASSERT_TRUE(p.cutColoured(0));
    p.box(0)->setFocus();
    QTest::keyClick(p.box(0), Qt::Key_End);
    QTest::keyClick(p.box(0), Qt::Key_Backspace);
    EXPECT_EQ(p.box(0)->text(), "1");
    EXPECT_TRUE(p.normalColoured(0));
}

// --- the boundary boxes ---

TEST(frmPropertiesTest, TypingKeepsOnlyDigits) {
    Properties p;
    p.open(iBigEightPages);
    p.child<QTabWidget>("tabIClass")->setCurrentIndex(1);
    QLineEdit* box = p.box(2);
    box->setFocus();
    box->clear();
    QTest::keyClicks(box, "ab c");
    EXPECT_EQ(box->text(), "");
    QTest::keyClicks(box, "1x2");
    EXPECT_EQ(box->text(), "12");
}

TEST(frmPropertiesTest, FocusSelectsTheWholeBox) {
    Properties p;
    p.open(iBigEightPages);
    p.child<QTabWidget>("tabIClass")->setCurrentIndex(1);
    p.box(3)->setFocus(Qt::MouseFocusReason);
    QApplication::processEvents();
    EXPECT_EQ(p.box(3)->selectedText(), "18");
}

struct LeaveCase {
    QString typed;
    QString kept;
    bool ok;
};

TEST(frmPropertiesTest, LeavingABoxTrimsAndChecksTheRange) {
    const LeaveCase cases[] = {
        {"05", "05", true}, {" 7 ", "7", true}, {"31", "31", true}, {"5", "5", true},
        {"4", "4", false},  {"32", "32", false}, {"", "", false},   {"  ", "", false},
    };
    for (const LeaveCase& c : cases) {
        SCOPED_TRACE(c.typed.toStdString());
        Properties p;
        p.open(iBigEightPages);
        p.child<QTabWidget>("tabIClass")->setCurrentIndex(1);
        p.box(1)->setFocus();
        p.box(1)->setText(c.typed);
        p.box(2)->setFocus(Qt::TabFocusReason);
        EXPECT_EQ(p.box(1)->text(), c.kept);
        EXPECT_EQ(p.messages(), c.ok ? std::vector<std::string>{} : std::vector<std::string>{kRangeMessage});
        EXPECT_EQ(QApplication::focusWidget(), c.ok ? p.box(2) : p.box(1));
    }
}

TEST(frmPropertiesTest, EnterOnARefusedBoxKeepsTheDialogOpen) {
    Properties p;
    p.open(iBigEightPages);
    p.child<QTabWidget>("tabIClass")->setCurrentIndex(1);
    p.box(4)->setFocus();
    p.box(4)->setText("40");
    QTest::keyClick(p.box(4), Qt::Key_Return);
    EXPECT_EQ(p.messages(), std::vector<std::string>{kRangeMessage});
    EXPECT_TRUE(p.form->isVisible());
    EXPECT_TRUE(p.form->Unchanged);
}

// --- closing ---

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

TEST(frmPropertiesTest, OnePageChipWritesNoBoundaries) {
    Properties p;
    p.open(iBigEightPages, false, false, "5|6|7|8|9|10|11|12");
    p.memoryType()->setCurrentIndex(0);
    EXPECT_FALSE(p.boundaryTab());
    p.click("cmdOK");
    CIClass fresh;
    fresh.setChipSize(iBigOnePage);
    const CIClass& card = *p.form->Card;
    EXPECT_EQ(card.ChipSize(), iBigOnePage);
    EXPECT_EQ(card.PagesCount(), fresh.PagesCount());
    EXPECT_EQ(card.GetBoundary(0), fresh.GetBoundary(0));
}

TEST(frmPropertiesTest, CancelMarksTheDialogCancelled) {
    Properties p;
    p.open(iBigOnePage);
    p.child<QCheckBox>("chkICBitwise")->click();
    p.click("cmdCancel");
    EXPECT_EQ(p.form->result(), QDialog::Rejected);
    EXPECT_TRUE(p.form->Cancelled);
    EXPECT_TRUE(p.form->Unchanged);
    EXPECT_FALSE(p.form->isVisible());
}

TEST(frmPropertiesTest, WindowCloseButtonWritesBackWithoutTheChecks) {
    // An item the boundary cuts: OK would refuse, the close button does not check.
    Properties p({test::field("Cut", 1, 10, 0, 24)});
    p.open(iBigEightPages, false, false);
    p.child<QCheckBox>("chkICBitwise")->click();
    p.box(0)->setText("11");
    p.form->close();
    EXPECT_FALSE(p.form->isVisible());
    EXPECT_TRUE(p.messages().empty());
    EXPECT_FALSE(p.form->Cancelled);
    EXPECT_TRUE(p.form->Unchanged);
    EXPECT_TRUE(p.form->Card->EnableBitwise());
    EXPECT_EQ(p.form->Card->GetBoundary(0), 11);
}

}  // namespace
}  // namespace kestrin
