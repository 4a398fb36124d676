#include "platform/qt/strip/StripFixture.h"

#include <QApplication>
#include <QMenu>
#include <gmock/gmock.h>

namespace glintar::test {

namespace {

using platform::MouseButton;

constexpr Pixel kOrange{255, 128, 0};

/// Qt makes its choice of tray once a process, so each kind has a process of its own (CMakeLists.txt).
using Tray = StripFixture;

TEST_F(Tray, OfTheWindowKindMayComeLateAndGoAndComeAgain) {
    display().startManager(Display::Manager::Openbox);
    session = QDBusConnection::sessionBus();
    start();
    icon->setToolTip("Glintar");
    icon->setMenu({{.title = "Quit"}});
    icon->onMouseUp = [&](MouseButton button) {
        EXPECT_EQ(button, MouseButton::Left);
        icon->popUpMenu({-10, -16});
    };
    settle();
    const auto isInTray = [] { return std::ranges::count(display().pixels(0, 760, 100, 40), kOrange) > 50; };
    for (int time = 0; time < 2; ++time) {
        EXPECT_FALSE(isInTray());
        display().startTray();
        ASSERT_TRUE(soon(isInTray));
        ASSERT_TRUE(soon([] {
            // Again if need be: the tray passes no clicks on while it still arranges itself.
            display().input({"mousemove", "12", "787", "click", "1", "sleep", "0.1"});
            settle();
            return QApplication::activePopupWidget() != nullptr;
        }));
        EXPECT_LT(QApplication::activePopupWidget()->geometry().left(), 50) << "the menu opens at the icon clicked";
        QApplication::activePopupWidget()->close();
        display().stopTray();
        ASSERT_TRUE(soon([&] { return !isInTray(); }));
    }
}

TEST_F(Tray, OfTheBusKindIsThatOfAPanelBelowWhichTheStripHangs) {
    display().startManager(Display::Manager::Xfwm4);
    session = QDBusConnection::sessionBus();
    start();
    showText("Loading...");
    settle();
    display().startPanel();
    const auto items = [] {
        return outputOf({"dbus-send", "--session", "--print-reply", "--dest=org.kde.StatusNotifierWatcher",
                         "/StatusNotifierWatcher", "org.freedesktop.DBus.Properties.Get",
                         "string:org.kde.StatusNotifierWatcher", "string:RegisteredStatusNotifierItems"});
    };
    EXPECT_TRUE(soon([&] { return items().contains("StatusNotifierItem"); })) << items();
    const auto hangsAt = [&](double right) {
        return soon([&] { return seen() && seen()->frame.y > 10 && seen()->frame.right() == right; });
    };
    EXPECT_TRUE(hangsAt(1280));
    display().split(640);
    EXPECT_TRUE(hangsAt(640)) << "of two screens Qt does not know what is free";
    display().unsplit();
    EXPECT_TRUE(hangsAt(1280));
}

}  // namespace

}  // namespace glintar::test
