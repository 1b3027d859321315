// The control on a host's form, held by ActiveQt's container the way a Windows host holds an
// ActiveX control: created by its ProgID, shown in a window on the desktop and photographed.
#include <QAxWidget>
#include <QGuiApplication>
#include <QImage>
#include <QScreen>
#include <QEventLoop>
#include <QTimer>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <vector>

#include "Automation.h"

// The container's answer to a control that asks for the ambient user mode.
extern bool qax_runsInDesignMode;

namespace kestrin::test {
namespace {

// A form 640 by 480 pixels with the control filling it, photographed after it settled.
QImage photographControl(bool designMode, const std::wstring& layout = {}) {
    qax_runsInDesignMode = designMode;
    QWidget form;
    form.resize(640, 480);
    QAxWidget control(&form);
    const bool created = control.setControl(QStringLiteral("Kestrin.iClass"));
    qax_runsInDesignMode = false;
    if (!created) return {};
    control.setGeometry(form.rect());
    form.show();
    if (!layout.empty()) control.dynamicCall("OpenLayout(QString)", QString::fromStdWString(layout));
    QEventLoop settle;
    QTimer::singleShot(1000, &settle, &QEventLoop::quit);
    settle.exec();
    QImage shot = QGuiApplication::primaryScreen()->grabWindow(form.winId()).toImage();
    shot.save(QStringLiteral("container-%1.png").arg(designMode ? "design" : "run"));
    return shot;
}

// The thin horizontal lines of the picture by colour, top to bottom: rows that one colour fills for
// at least three fifths of the width while the rows two above and two below do not (a grid's row
// lines; not the ground).
std::map<QRgb, std::vector<int>> thinLines(const QImage& shot) {
    std::vector<QRgb> filling(shot.height(), 0);  // the colour filling each row, 0 for none
    for (int y = 0; y < shot.height(); ++y) {
        std::map<QRgb, int> counts;
        for (int x = 0; x < shot.width(); ++x) ++counts[shot.pixel(x, y) | 0xff000000u];
        for (const auto& [colour, count] : counts)
            if (count * 5 >= shot.width() * 3) filling[y] = colour;
    }
    std::map<QRgb, std::vector<int>> lines;
    for (int y = 2; y + 2 < shot.height(); ++y)
        if (filling[y] && filling[y - 2] != filling[y] && filling[y + 2] != filling[y]) lines[filling[y]].push_back(y);
    return lines;
}

}  // namespace
}  // namespace kestrin::test

TEST(Container, RunModeShowsTheTwoGrids) {
    const QImage shot = kestrin::test::photographControl(false, kestrin::test::example("layouts/Staff.IIF"));
    ASSERT_FALSE(shot.isNull()) << "the container could not create Kestrin.iClass";
    // The row lines of both grids: the colour most lines have.
    const auto lines = kestrin::test::thinLines(shot);
    ASSERT_FALSE(lines.empty()) << "no grid lines on the control";
    const auto fewer = [](const auto& a, const auto& b) { return a.second.size() < b.second.size(); };
    const std::vector<int>& rows = std::max_element(lines.begin(), lines.end(), fewer)->second;
    const auto lower = std::find_if(rows.begin(), rows.end(), [&](int y) { return y >= shot.height() / 2; });
    // The item grid above shows the sample's items a row each, evenly spaced; the update grid
    // below its header and its one row.
    ASSERT_GE(lower - rows.begin(), 5);
    for (auto y = rows.begin() + 1; y != lower; ++y) EXPECT_EQ(*y - y[-1], rows[1] - rows[0]);
    EXPECT_NE(lower, rows.end());
}

TEST(Container, DesignModeShowsThePictureInsteadOfTheGrids) {
    const QImage shot = kestrin::test::photographControl(true);
    ASSERT_FALSE(shot.isNull()) << "the container could not create Kestrin.iClass";
    EXPECT_TRUE(kestrin::test::thinLines(shot).empty());
    // The picture: some pixels differ from the ground around it.
    const QRgb ground = shot.pixel(0, 0);
    int drawn = 0;
    for (int y = 0; y < shot.height(); ++y)
        for (int x = 0; x < shot.width(); ++x) drawn += shot.pixel(x, y) != ground;
    EXPECT_GT(drawn, 500);
}
