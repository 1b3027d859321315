// The demo host as an operator meets it: commands that need a layout wait for one, the title
// names the layout and marks it while unsaved, and the window shows the grids.
#include <QAction>
#include <QApplication>
#include <QFile>
#include <QTableView>
#include <QTemporaryDir>
#include <QToolBar>
#include <gtest/gtest.h>

#include "HostWindow.h"
#include "control/IClass.h"
#include "support/TestSupport.h"

namespace kestrin {
namespace {

QAction* action(HostWindow& window, const QString& text) {
    for (QAction* a : window.findChild<QToolBar*>("toolbar")->actions())
        if (a->text() == text) return a;
    ADD_FAILURE() << "no toolbar button " << text.toStdString();
    return nullptr;
}

TEST(HostWindow, TheTitleAndTheCommandsFollowTheLayout) {
    QTemporaryDir work;
    HostWindow window(work.path());
    window.resize(1000, 700);
    window.show();
    EXPECT_FALSE(action(window, "&Save")->isEnabled());
    EXPECT_FALSE(action(window, "Add &Field...")->isEnabled());
    EXPECT_TRUE(action(window, "&Open...")->isEnabled());

    ASSERT_TRUE(window.openLayout(work.filePath("layouts/Staff.IIF")));
    EXPECT_EQ(window.windowTitle(), "Staff.IIF[*] - Kestrin demo host");
    EXPECT_FALSE(window.isWindowModified());
    EXPECT_TRUE(action(window, "&Save")->isEnabled());
    auto* items = window.control().findChild<QTableView*>("grdItems");
    EXPECT_TRUE(items->isVisible());
    EXPECT_GT(items->model()->rowCount(), 5);
    const QImage picture = window.grab().toImage();
    EXPECT_EQ(picture.size(), window.size());
    EXPECT_EQ(picture.pixelColor(items->mapTo(&window, QPoint(10, 10))), items->grab().toImage().pixelColor(10, 10));

    test::RecordingPrompter operatorSaysYes(Answer::Yes);
    window.control().setPrompter(&operatorSaysYes);
    action(window, "&Remove")->trigger();
    EXPECT_EQ(operatorSaysYes.messages.size(), 1u);
    EXPECT_TRUE(window.isWindowModified());
}

}  // namespace
}  // namespace kestrin
