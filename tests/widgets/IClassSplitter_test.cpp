#include <gtest/gtest.h>

#include <QTableView>
#include <QTest>

#include "control/IClass.h"

using namespace kestrin;

namespace {

// Presses at a point of the shown control, drags to another and lets go, as a mouse does:
// the events go to whichever widget lies under the pointer.
void drag(IClass& control, QPoint from, QPoint to) {
    QWidget* target = control.childAt(from);
    ASSERT_NE(target, nullptr);
    QTest::mousePress(target, Qt::LeftButton, {}, target->mapFrom(&control, from));
    QTest::mouseMove(target, target->mapFrom(&control, to));
    QTest::mouseRelease(target, Qt::LeftButton, {}, target->mapFrom(&control, to));
}

}  // namespace

// The boundary between the grids is a strip with the resize pointer; dragging it moves the
// boundary to the pointer and the update grid takes the rest. Elsewhere a press lands on a
// grid, and in design mode there is nothing to drag.
TEST(IClassSplitter, DraggingTheStripMovesTheBoundaryBetweenTheGrids) {
    IClass control;
    control.resize(400, 300);
    control.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&control));
    ASSERT_EQ(control.itemGrid()->height(), 150);
    QWidget* strip = control.childAt(200, 150);
    ASSERT_NE(strip, nullptr);
    EXPECT_EQ(strip->cursor().shape(), Qt::SplitVCursor);

    drag(control, {200, 150}, {200, 90});
    EXPECT_EQ(control.itemGrid()->height(), 90);
    EXPECT_EQ(control.dbUpdateGrid()->y(), 90);
    EXPECT_EQ(control.dbUpdateGrid()->height(), 210);
    EXPECT_TRUE(control.dbUpdateGrid()->isVisible());

    drag(control, {200, 40}, {200, 10});  // inside the item grid: no drag
    EXPECT_EQ(control.itemGrid()->height(), 90);

    control.setDesignMode(true);
    drag(control, {200, 90}, {200, 30});
    control.setDesignMode(false);
    EXPECT_EQ(control.itemGrid()->height(), 90);
}
