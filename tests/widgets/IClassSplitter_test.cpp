#include <gtest/gtest.h>

#include <QTableView>
#include <QTest>

#include "control/IClass.h"

using namespace kestrin;

// Dragging the boundary between the grids moves it to the pointer; the update grid takes the
// rest of the height, and design mode ignores the drag.
TEST(IClassSplitter, DragMovesTheBoundaryBetweenTheGrids) {
    IClass control;
    control.resize(400, 300);
    control.show();
    ASSERT_EQ(control.itemGrid()->height(), 150);
    QTest::mousePress(&control, Qt::LeftButton, {}, QPoint(200, 150));
    QTest::mouseMove(&control, QPoint(200, 90));
    QTest::mouseRelease(&control, Qt::LeftButton, {}, QPoint(200, 90));
    EXPECT_EQ(control.itemGrid()->height(), 90);
    EXPECT_EQ(control.dbUpdateGrid()->y(), 90);
    EXPECT_EQ(control.dbUpdateGrid()->height(), 210);
    EXPECT_TRUE(control.dbUpdateGrid()->isVisible());

    control.setProperty("designMode", true);
    QTest::mousePress(&control, Qt::LeftButton, {}, QPoint(200, 90));
    QTest::mouseMove(&control, QPoint(200, 30));
    QTest::mouseRelease(&control, Qt::LeftButton, {}, QPoint(200, 30));
    control.setProperty("designMode", false);
    EXPECT_EQ(control.itemGrid()->height(), 90);
}
