#include "preview/frmPreview.h"

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <gtest/gtest.h>
#include <memory>

#include "items/RecordArray.h"
#include "support/Records.h"
#include "text/Translator.h"

namespace kestrin {
namespace {

// A preview of a card of the given type, HID section on, with the given items.
struct Preview {
    CIClass card;
    RecordArray records;
    Translator translator;
    std::unique_ptr<frmPreview> form;
    explicit Preview(IClassType chip, std::vector<ItemRecord> items = {}) {
        card.setChipSize(chip);
        for (const ItemRecord& r : items) records.add(r);
        form = std::make_unique<frmPreview>(card, records, translator, "card.iif", PrintServices{});
    }
    template <class T>
    T* child(const char* name) const { return form->findChild<T*>(name); }
    void click(const char* name) const { child<QPushButton>(name)->click(); }
    QString text(const char* label) const { return child<QLabel>(label)->text(); }
    QString cell(const char* grid, int row, int column) const { return child<QTableWidget>(grid)->item(row, column)->text(); }
};

TEST(Preview, ButtonsStepThroughTheViewsAndShowEachViewsPages) {
    Preview p(iBigEightPages, {test::field("Badge", 5, 8, 0, 1, 0, 0x0000FF)});
    EXPECT_EQ(p.text("lblChip"), "<16 kbit (2 kbyte) card, paged>");
    p.click("cmdPrevious");
    EXPECT_EQ(p.form->viewIndex(), 0);
    EXPECT_FALSE(p.child<QPushButton>("cmdPrevious")->isEnabled());
    for (int i = 0; i < 4; ++i) p.click("cmdNext");
    EXPECT_EQ(p.form->viewIndex(), 3);
    EXPECT_FALSE(p.child<QPushButton>("cmdNext")->isEnabled());
    p.click("cmdPrevious");
    EXPECT_EQ(p.text("lblPreview0"), "Page 4");
    EXPECT_EQ(p.text("lblPreview1"), "Page 5");
    EXPECT_EQ(p.text("lblPageOf"), "Pages 4/5 of 7");
    EXPECT_EQ(p.cell("grdPreview1", 9, 1), "Badge");
    EXPECT_EQ(p.child<QTableWidget>("grdPreview1")->item(9, 1)->background().color(), QColor(255, 0, 0));
    EXPECT_EQ(p.cell("grdPreview0", 9, 1), QString());
    EXPECT_TRUE(p.child<QPushButton>("cmdPrevious")->isEnabled() && p.child<QPushButton>("cmdNext")->isEnabled());
}

TEST(Preview, OnePage16kGridsShowTheirBlocksAndTheSmallCardOneGrid) {
    Preview big(iBigOnePage);
    big.click("cmdNext");
    EXPECT_EQ(big.text("lblPreview0"), "Blocks 64 - 95 ");
    EXPECT_EQ(big.cell("grdPreview0", 1, 0), "64");
    EXPECT_EQ(big.cell("grdPreview1", 32, 0), "127");

    Preview small(iSmallOnePage);
    EXPECT_EQ(small.form->windowTitle(), "Preview iClass Layout");
    EXPECT_EQ(small.text("lblPreview0"), "<Card Layout>");
    EXPECT_TRUE(small.child<QTableWidget>("grdPreview1")->isHidden());
    EXPECT_TRUE(small.child<QLabel>("lblPreview1")->isHidden());
    EXPECT_TRUE(small.child<QLabel>("lblPageOf")->isHidden());
    EXPECT_FALSE(small.child<QPushButton>("cmdNext")->isEnabled());
}

// Enter runs the focused button; with the focus elsewhere it runs OK, the default button.
TEST(Preview, EnterRunsTheFocusedButtonElseOk) {
    Preview p(iBigEightPages);
    p.form->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(p.form.get()));
    EXPECT_EQ(QApplication::focusWidget(), p.child<QPushButton>("cmdOK"));
    p.child<QPushButton>("cmdNext")->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_EQ(p.form->viewIndex(), 1);
    EXPECT_TRUE(p.form->isVisible());

    p.child<QScrollArea>("scrPreview")->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
    EXPECT_FALSE(p.form->isVisible());
    EXPECT_EQ(p.form->result(), QDialog::Accepted);

    p.form->show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(p.form.get()));
    QString asked;
    QTimer::singleShot(0, [&] {
        QWidget* box = QApplication::activeModalWidget();
        asked = box ? box->objectName() : QString();
        if (box) box->findChild<QPushButton*>("cmdCancel")->click();
    });
    p.child<QPushButton>("cmdPrint")->setFocus();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Enter);
    EXPECT_EQ(asked, "frmPrintPreview");
    EXPECT_TRUE(p.form->isVisible());
    EXPECT_EQ(p.form->viewIndex(), 1);
}

// On a screen lower than the grids the window fits and keeps its buttons; the grids scroll to their last row.
TEST(Preview, FitsASmallScreenWithTheGridsScrolling) {
    Preview p(iBigEightPages);
    const QSize room(1024, 480);
    p.form->fitInto(room);
    p.form->show();
    EXPECT_LE(p.form->height(), room.height());
    EXPECT_LE(p.form->width(), room.width());
    for (const char* name : {"cmdPrevious", "cmdNext", "cmdPrint", "cmdOK"}) {
        const QPushButton* button = p.child<QPushButton>(name);
        EXPECT_TRUE(p.form->rect().contains(QRect(button->mapTo(p.form.get(), QPoint()), button->size()))) << name;
    }
    auto* scroll = p.child<QScrollArea>("scrPreview");
    EXPECT_GT(scroll->verticalScrollBar()->maximum(), 0);
    EXPECT_EQ(scroll->horizontalScrollBar()->maximum(), 0);
    scroll->verticalScrollBar()->setValue(scroll->verticalScrollBar()->maximum());
    const QTableWidget* grid = p.child<QTableWidget>("grdPreview1");
    const QPoint lastRow = grid->viewport()->mapTo(scroll->viewport(), grid->visualItemRect(grid->item(32, 8)).bottomRight());
    EXPECT_TRUE(scroll->viewport()->rect().contains(lastRow));

    p.form->fitInto(QSize(4000, 4000));
    EXPECT_EQ(scroll->verticalScrollBar()->maximum(), 0) << "with room to spare, everything shows";
}

}  // namespace
}  // namespace kestrin
