// The demo host as an operator meets it: commands that need a layout wait for one, the title
// names the layout and marks it while unsaved, and the window shows the grids.
#include <QtWidgets>
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
    EXPECT_EQ(std::make_tuple(action(window, "&Save")->isEnabled(), action(window, "Add &Field...")->isEnabled(),
                              action(window, "&Open...")->isEnabled()),
              std::make_tuple(false, false, true));

    ASSERT_TRUE(window.openLayout(work.filePath("layouts/Staff.IIF")));
    auto* items = window.control().findChild<QTableView*>("grdItems");
    EXPECT_EQ(std::make_tuple(window.windowTitle(), window.isWindowModified(), action(window, "&Save")->isEnabled(),
                              items->isVisible(), items->model()->rowCount() > 5),
              std::make_tuple(QString("Staff.IIF[*] - Kestrin demo host"), false, true, true, true));
    const QImage picture = window.grab().toImage();
    EXPECT_EQ(std::make_pair(picture.size(), picture.pixelColor(items->mapTo(&window, QPoint(10, 10)))),
              std::make_pair(window.size(), items->grab().toImage().pixelColor(10, 10)));

    test::RecordingPrompter operatorSaysYes(Answer::Yes);
    window.control().setPrompter(&operatorSaysYes);
    action(window, "&Remove")->trigger();
    EXPECT_EQ(std::make_pair(operatorSaysYes.messages.size(), window.isWindowModified()), std::make_pair(std::size_t(1), true));
}

}  // namespace
}  // namespace kestrin
