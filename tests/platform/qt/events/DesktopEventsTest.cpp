#include "platform/NotificationCenter.h"
#include "platform/qt/events/QtDesktopEvents.h"
#include "platform/virtual/VirtualRunLoop.h"
#include "support/MessageBus.h"
#include "support/Program.h"

#include <QApplication>
#include <QDBusConnection>
#include <gtest/gtest.h>

#include <thread>

namespace glintar::platform {
namespace {

using namespace std::chrono_literals;

void pump() {
    QCoreApplication::processEvents();
    std::this_thread::sleep_for(1ms);
}

/// The desktop portal, which is told by lines on its terminal.
class Portal : public test::Program {
public:
    Portal(const test::MessageBus& bus, const std::vector<std::string>& settings)
        : Program(command(settings), {{"DBUS_SESSION_BUS_ADDRESS", bus.address()}}, Output::Terminal) {
        EXPECT_TRUE(waitForOutput("ready")) << output();
    }

private:
    static std::vector<std::string> command(std::vector<std::string> settings) {
        settings.insert(settings.begin(), {"/usr/bin/python3", GLINTAR_PORTAL});
        return settings;
    }
};

class DesktopEventsTest : public testing::Test {
protected:
    DesktopEventsTest() {
        bus.start();
        resetLook();
    }
    ~DesktopEventsTest() override {
        events.reset();
        QDBusConnection::disconnectFromBus(QStringLiteral("test"));
        resetLook();
    }
    static void resetLook() {
        QApplication::setPalette(QPalette());
        QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 9));
    }
    void start(DesktopSettingsPolicy policy = {}) {
        const auto session =
            QDBusConnection::connectToBus(QString::fromStdString(bus.address()), QStringLiteral("test"));
        events.emplace(loop, notifications, QtDesktopEvents::Sources{.session = session, .policy = policy});
        events->finishFirstLook();
    }
    [[nodiscard]] bool becomes(Appearance appearance) {
        return test::eventually([&] { return events->appearance() == appearance; }, pump);
    }
    static Appearance colors() { return appearanceOf(QApplication::palette()); }

    VirtualRunLoop loop;
    NotificationCenter notifications;
    test::MessageBus bus;
    std::optional<QtDesktopEvents> events;
    int notices = 0;
    std::unique_ptr<NotificationCenter::Observation> observation =
        notifications.observe(kAppearanceChanged, [this] { ++notices; });
};

TEST_F(DesktopEventsTest, ADarkDesktopIsKnownBeforeTheFirstWindowAndFollowedLive) {
    const QColor before = QApplication::palette().color(QPalette::Window);
    const Portal portal(bus, {"dark"});
    start();
    EXPECT_EQ(events->appearance(), Appearance::Dark);
    EXPECT_EQ(colors(), Appearance::Dark);
    notices = 0;
    portal.type("light\n");
    EXPECT_TRUE(becomes(Appearance::Light));
    EXPECT_EQ(colors(), Appearance::Light);
    EXPECT_EQ(notices, 1);
    portal.type("dark\n");
    EXPECT_TRUE(becomes(Appearance::Dark));
    portal.type("none\n");
    EXPECT_TRUE(becomes(Appearance::Light)) << "no preference: as the palette is";
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), before) << "the palette there was";

    // Others on the bus have no say in it.
    notices = 0;
    test::outputOf({"dbus-send", "--bus=" + bus.address(), "--type=signal", "/org/freedesktop/portal/desktop",
                    "org.freedesktop.portal.Settings.SettingChanged", "string:org.freedesktop.appearance",
                    "string:color-scheme", "variant:uint32:1"});
    portal.type("light\n");
    portal.type("dark\n");
    EXPECT_TRUE(becomes(Appearance::Dark));
    EXPECT_EQ(notices, 1);
}

TEST_F(DesktopEventsTest, APortalMayComeLateAndGoAndComeBack) {
    const auto started = std::chrono::steady_clock::now();
    start();
    EXPECT_LT(std::chrono::steady_clock::now() - started, 1s);
    EXPECT_EQ(events->appearance(), Appearance::Light);
    {
        const Portal portal(bus, {"dark"});
        EXPECT_TRUE(becomes(Appearance::Dark));
    }
    for (int i = 0; i < 20; ++i) {
        pump();
    }
    EXPECT_EQ(events->appearance(), Appearance::Dark) << "its last word";
    const Portal portal(bus, {"light"});
    EXPECT_TRUE(becomes(Appearance::Light));
}

TEST_F(DesktopEventsTest, ABusyPortalHoldsUpNothing) {
    const Portal portal(bus, {"dark", "slow"});
    const auto started = std::chrono::steady_clock::now();
    start();
    EXPECT_LT(std::chrono::steady_clock::now() - started, 300ms);
    EXPECT_EQ(events->appearance(), Appearance::Light);
    EXPECT_TRUE(becomes(Appearance::Dark)) << "but it is asked again";
}

TEST_F(DesktopEventsTest, WithoutAPortalThePaletteDecides) {
    events.emplace(loop, notifications, QtDesktopEvents::Sources{});
    events->finishFirstLook();
    EXPECT_EQ(events->appearance(), Appearance::Light);
    QApplication::setPalette(plainPalette(Appearance::Dark));
    EXPECT_EQ(events->appearance(), Appearance::Dark);
    EXPECT_EQ(notices, 1);
}

TEST_F(DesktopEventsTest, ColorsThatQtFollowsByItselfAreLeftAloneUntilItIsClearThatItDoesNot) {
    const Portal portal(bus, {"light"});
    start({.followsColors = true});
    portal.type("dark\n");
    EXPECT_TRUE(becomes(Appearance::Dark));
    EXPECT_EQ(colors(), Appearance::Light) << "given some time";
    QPalette desktops = plainPalette(Appearance::Dark);
    desktops.setColor(QPalette::Window, QColor(0x20, 0x10, 0x30));
    QApplication::setPalette(desktops);
    loop.advance(5s);
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), QColor(0x20, 0x10, 0x30));

    portal.type("light\n");
    EXPECT_TRUE(becomes(Appearance::Light));
    loop.advance(5s);
    EXPECT_EQ(colors(), Appearance::Light);
}

TEST_F(DesktopEventsTest, TheDesktopsFontIsTakenWhereQtDoesNotKnowIt) {
    const Portal portal(bus, {"font Noto Sans Bold 13"});
    start({.hasPortalFont = true});
    EXPECT_EQ(QApplication::font().family(), QStringLiteral("Noto Sans"));
    EXPECT_EQ(QApplication::font().pointSizeF(), 13);
    EXPECT_EQ(notices, 1);
    portal.type("font Noto Serif 10\n");
    EXPECT_TRUE(test::eventually([&] { return QApplication::font().family() == QStringLiteral("Noto Serif"); }, pump));
    EXPECT_EQ(notices, 2) << "what shows text is drawn anew";

    resetLook();
    start({.hasPortalFont = false});
    EXPECT_EQ(QApplication::font().pointSizeF(), 9) << "Qt knows this desktop's own";
}

}  // namespace
}  // namespace glintar::platform
