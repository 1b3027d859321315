#include <QApplication>
#include <gtest/gtest.h>

// Widgets need an application object; the offscreen platform lets the tests run without a display.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
