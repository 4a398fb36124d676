#include "TestBus.h"
#include "platform/NotificationCenter.h"
#include "platform/qt/events/QtDesktopEvents.h"
#include "platform/virtual/VirtualRunLoop.h"

#include <QApplication>
#include <QDBusVariant>
#include <gtest/gtest.h>

namespace glintar::platform {
namespace {

using namespace std::chrono_literals;
using test::eventually;

class DesktopEventsTest : public testing::Test {
protected:
    void SetUp() override {
        QApplication::setPalette(QPalette());
        QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 9));
    }
    void TearDown() override { SetUp(); }

    void start(DesktopSettingsPolicy policy = {}) {
        events.emplace(loop, notifications, QtDesktopEvents::Sources{.session = bus.connect(), .policy = policy});
    }
    [[nodiscard]] bool becomes(Appearance appearance) {
        return eventually([&] { return events->appearance() == appearance; }, pump);
    }
    static Appearance colors() { return appearanceOf(QApplication::palette()); }

    VirtualRunLoop loop;
    NotificationCenter notifications;
    TestBus bus;
    std::optional<QtDesktopEvents> events;
    int notices = 0;
    std::unique_ptr<NotificationCenter::Observation> observation =
        notifications.observe(kAppearanceChanged, [this] { ++notices; });
};

TEST_F(DesktopEventsTest, ADarkDesktopIsKnownBeforeTheFirstWindowAndFollowedLive) {
    const QColor before = QApplication::palette().color(QPalette::Window);
    FakePortal portal(bus, {.scheme = 1});
    start();
    events->finishFirstLook();
    EXPECT_EQ(events->appearance(), Appearance::Dark);
    EXPECT_EQ(colors(), Appearance::Dark);
    notices = 0;
    portal.change(2);
    EXPECT_TRUE(becomes(Appearance::Light));
    EXPECT_EQ(colors(), Appearance::Light);
    EXPECT_EQ(notices, 1);
    portal.change(1);
    EXPECT_TRUE(becomes(Appearance::Dark));
    portal.change(0);
    EXPECT_TRUE(becomes(Appearance::Light)) << "no preference: as the palette is";
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), before) << "the palette there was";

    // Others on the bus have no say in it.
    Peer stranger(bus, QStringLiteral("org.example.Stranger"), QStringLiteral("/org/freedesktop/portal/desktop"),
                  QStringLiteral("org.freedesktop.portal.Settings"));
    notices = 0;
    stranger.tell(QStringLiteral("SettingChanged"),
                  {QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"),
                   QVariant::fromValue(QDBusVariant(QVariant(1U)))});
    portal.change(2);
    portal.change(1);
    EXPECT_TRUE(becomes(Appearance::Dark));
    EXPECT_EQ(notices, 1);
}

TEST_F(DesktopEventsTest, APortalMayComeLateAndGoAndComeBack) {
    start();
    const auto started = std::chrono::steady_clock::now();
    events->finishFirstLook();
    EXPECT_LT(std::chrono::steady_clock::now() - started, 1s);
    EXPECT_EQ(events->appearance(), Appearance::Light);
    {
        const FakePortal portal(bus, {.scheme = 1});
        EXPECT_TRUE(becomes(Appearance::Dark));
    }
    for (int i = 0; i < 20; ++i) {
        pump();
    }
    EXPECT_EQ(events->appearance(), Appearance::Dark) << "its last word";
    const FakePortal portal(bus, {.scheme = 2});
    EXPECT_TRUE(becomes(Appearance::Light));
}

TEST_F(DesktopEventsTest, ABusyPortalHoldsUpNothing) {
    const FakePortal portal(bus, {.scheme = 1, .thinking = 400ms});
    const auto started = std::chrono::steady_clock::now();
    start();
    events->finishFirstLook();
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
    FakePortal portal(bus, {.scheme = 2});
    start({.followsColors = true});
    events->finishFirstLook();
    portal.change(1);
    EXPECT_TRUE(becomes(Appearance::Dark));
    EXPECT_EQ(colors(), Appearance::Light) << "given some time";
    QPalette desktops = plainPalette(Appearance::Dark);
    desktops.setColor(QPalette::Window, QColor(0x20, 0x10, 0x30));
    QApplication::setPalette(desktops);
    loop.advance(5s);
    EXPECT_EQ(QApplication::palette().color(QPalette::Window), QColor(0x20, 0x10, 0x30));

    portal.change(2);
    EXPECT_TRUE(becomes(Appearance::Light));
    loop.advance(5s);
    EXPECT_EQ(colors(), Appearance::Light);
}

TEST_F(DesktopEventsTest, TheDesktopsFontIsTakenWhereQtDoesNotKnowIt) {
    FakePortal portal(bus, {.font = QStringLiteral("Noto Sans Bold 13")});
    start({.hasPortalFont = true});
    events->finishFirstLook();
    EXPECT_EQ(QApplication::font().family(), QStringLiteral("Noto Sans"));
    EXPECT_EQ(QApplication::font().pointSizeF(), 13);
    EXPECT_EQ(notices, 1);
    portal.changeFont(QStringLiteral("Noto Serif 10"));
    EXPECT_TRUE(eventually([&] { return QApplication::font().family() == QStringLiteral("Noto Serif"); }, pump));
    EXPECT_EQ(notices, 2) << "what shows text is drawn anew";

    SetUp();
    start({.hasPortalFont = false});
    events->finishFirstLook();
    EXPECT_EQ(QApplication::font().pointSizeF(), 9) << "Qt knows this desktop's own";
}

}  // namespace
}  // namespace glintar::platform
