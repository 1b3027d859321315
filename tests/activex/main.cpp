// The Windows hosts' tests: a single-threaded apartment, as every host of the control gives it,
// and a Qt application for the tests that hold the control in ActiveQt's container.
#include <QApplication>
#include <gtest/gtest.h>
#include <objbase.h>

int main(int argc, char** argv) {
    OleInitialize(nullptr);
    QApplication app(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    const int failed = RUN_ALL_TESTS();
    OleUninitialize();
    return failed;
}
