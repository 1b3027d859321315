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

// A thin horizontal line of the picture: a row that one colour fills for at least three fifths
// of the width while the rows two above and two below do not (a grid's row lines; not the ground).
std::map<int, QRgb> thinLines(const QImage& shot) {
    std::vector<QRgb> filling(shot.height(), 0);  // the colour filling each row, 0 for none
    for (int y = 0; y < shot.height(); ++y) {
        std::map<QRgb, int> counts;
        for (int x = 0; x < shot.width(); ++x) ++counts[shot.pixel(x, y) | 0xff000000u];
        for (const auto& [colour, count] : counts)
            if (count * 5 >= shot.width() * 3) filling[y] = colour;
    }
    std::map<int, QRgb> lines;  // the colour of each line's row
    for (int y = 2; y + 2 < shot.height(); ++y)
        if (filling[y] && filling[y - 2] != filling[y] && filling[y + 2] != filling[y]) lines[y] = filling[y];
    return lines;
}

}  // namespace
}  // namespace kestrin::test

TEST(Container, RunModeShowsTheTwoGrids) {
    const QImage shot = kestrin::test::photographControl(false, kestrin::test::example("layouts/Staff.IIF"));
    ASSERT_FALSE(shot.isNull()) << "the container could not create Kestrin.iClass";
    // The row lines of both grids: the colour most lines have.
    std::map<QRgb, int> colours;
    const auto lines = kestrin::test::thinLines(shot);
    for (const auto& [y, colour] : lines) ++colours[colour];
    ASSERT_FALSE(colours.empty()) << "no grid lines on the control";
    const auto fewer = [](const auto& a, const auto& b) { return a.second < b.second; };
    const QRgb rowLine = std::max_element(colours.begin(), colours.end(), fewer)->first;
    std::vector<int> upper, lower;
    for (const auto& [y, colour] : lines)
        if (colour == rowLine) (y < shot.height() / 2 ? upper : lower).push_back(y);
    // The item grid above shows the sample's items a row each, evenly spaced; the update grid
    // below its header and its one row.
    ASSERT_GE(upper.size(), 5u);
    for (std::size_t i = 1; i < upper.size(); ++i) EXPECT_EQ(upper[i] - upper[i - 1], upper[1] - upper[0]);
    EXPECT_GE(lower.size(), 1u);
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
