#include "WindowsDesktop.h"

#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    glintar::test::Display display;
    glintar::platform::WindowsDesktop::screen = &display;
    qputenv("QT_SCREEN_SCALE_FACTORS", "RIGHT=2");
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
