#include "platform/qt/strip/StripFixture.h"

#include <QApplication>

namespace glintar::test {

namespace {

Display* theDisplay = nullptr;
DesktopSettings* theSettings = nullptr;

}  // namespace

Display& display() {
    return *theDisplay;
}

DesktopSettings& settings() {
    return *theSettings;
}

}  // namespace glintar::test

/// Of the tray's watcher, whose description Qt makes twice and frees once.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libQt6DBus.so\n";
}

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    glintar::test::Display display;
    glintar::test::theDisplay = &display;
    glintar::test::DesktopSettings settings;
    glintar::test::theSettings = &settings;
    qputenv("QT_SCREEN_SCALE_FACTORS", "RIGHT=2");
    QApplication::setDesktopSettingsAware(false);
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
