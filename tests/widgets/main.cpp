#include <QApplication>
#include <gtest/gtest.h>

// LeakSanitizer's stop-the-world step crashes now and then on Qt's threads at exit, so
// these tests run under AddressSanitizer without the leak check (the core tests keep it).
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}

// Widgets need an application object; the offscreen platform lets the tests run without a display.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
