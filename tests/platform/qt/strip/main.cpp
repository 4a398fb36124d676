#include "platform/qt/DisplayGuard.h"
#include "platform/qt/SessionBusGuard.h"
#include "platform/qt/strip/StripFixture.h"

#include <QApplication>
#include <QSystemTrayIcon>
#include <QWidget>
#include <QWindow>
#include <unistd.h>

#include <string_view>

namespace glintar::test {

namespace {

Display* theDisplay = nullptr;
DesktopSettings* theSettings = nullptr;

/// A program with a tray icon that waits for its display to go away. Another process: the end of the display is that of
/// the program.
int waitForTheEnd(int argc, char** argv) {
    const bool hasBus = platform::prepareSessionBus();
    const platform::DisplayGuard guard("strip", [] { [[maybe_unused]] const auto said = ::write(1, "saved\n", 6); });
    QApplication application(argc, argv);
    QWidget window;
    window.show();
    const QSystemTrayIcon tray;
    while (!window.windowHandle()->isExposed()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    QApplication::processEvents();  // what is painted half is complained about by Qt
    [[maybe_unused]] const auto said = ::write(1, hasBus ? "bus\n" : "up\n", hasBus ? 4 : 3);
    return QApplication::exec();
}

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
    if (argc == 2 && std::string_view(argv[1]) == "--wait-for-the-end") {
        return glintar::test::waitForTheEnd(argc, argv);
    }
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
