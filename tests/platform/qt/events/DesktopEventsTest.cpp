#include "platform/NotificationCenter.h"
#include "platform/qt/events/ActiveWindowWatch.h"
#include "platform/qt/events/DesktopLook.h"
#include "platform/qt/events/QtDesktopEvents.h"
#include "platform/virtual/VirtualRunLoop.h"
#include "support/Display.h"
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

TEST(DesktopLookTest, KnowsTheDesktopsThatQtWouldLoadGtkFor) {
    struct Row {
        const char* desktops;
        const char* platformTheme;
        DesktopSettingsPolicy expected;
    };
    constexpr DesktopSettingsPolicy kGtk{.isSettingsAware = false, .hasPortalFont = true};
    constexpr DesktopSettingsPolicy kOther{.hasPortalFont = true};
    const Row rows[] = {
        {"GNOME", "", kGtk},
        {"ubuntu:GNOME", "", kGtk},
        {"XFCE", "", kGtk},
        {"MATE", "", kGtk},
        {"xfce", "", kGtk},
        {"XFCE", "qt6ct", {.isSettingsAware = false, .hasPortalFont = false}},
        {"KDE", "", {.followsColors = true}},
        {"LXQt", "", {}},
        {"sway", "", kOther},
        {"", "", kOther},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(desktopSettingsPolicy(row.desktops, row.platformTheme), row.expected) << row.desktops;
    }
}

TEST(DesktopLookTest, ReadsFontsAsGtkNamesThem) {
    struct Row {
        const char* name;
        QStringList families;
        double points;
        int pixels;
        int weight;
        bool isItalic;
    };
    const Row rows[] = {
        {"Cantarell 11", {"Cantarell"}, 11, -1, QFont::Normal, false},
        {"Noto Sans Bold Italic 10.5", {"Noto Sans"}, 10.5, -1, QFont::Bold, true},
        {"DejaVu Sans Condensed 9", {"DejaVu Sans Condensed"}, 9, -1, QFont::Normal, false},
        {"Inter Semi-Bold, sans-serif 14px", {"Inter Semi-Bold", "sans-serif"}, -1, 14, QFont::Normal, false},
        {" Adwaita Sans 11 @wght=450", {"Adwaita Sans"}, 11, -1, QFont::Normal, false},
        {"Source Code Pro Medium 12", {"Source Code Pro"}, 12, -1, QFont::Medium, false},
    };
    for (const auto& row : rows) {
        const auto font = fontNamed(row.name);
        ASSERT_TRUE(font) << row.name;
        EXPECT_EQ(font->families(), row.families) << row.name;
        EXPECT_EQ(font->pointSizeF(), row.points) << row.name;
        EXPECT_EQ(font->pixelSize(), row.pixels) << row.name;
        EXPECT_EQ(font->weight(), row.weight) << row.name;
        EXPECT_EQ(font->italic(), row.isItalic) << row.name;
    }
    for (const auto* name : {"", "Cantarell", "11", " 11", "Cantarell nan", "Cantarell 0", "Cantarell 1e9", ", 11"}) {
        EXPECT_FALSE(fontNamed(name)) << name;
    }
}

/// A program with its windows, which also plays the window manager.
struct XProgram {
    std::unique_ptr<XcbConnection> connection = XcbConnection::open();
    xcb_window_t window() const {
        const auto id = xcb_generate_id(connection->get());
        xcb_create_window(connection->get(), XCB_COPY_FROM_PARENT, id, connection->root(), 0, 0, 10, 10, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        return id;
    }
};

TEST(ActiveWindowWatchTest, TellsWhenTheUserTurnsToAnotherProgram) {
    const test::Display display("640x480x24", test::Display::Bus::None);
    const XProgram ours, first, second;
    const auto own = ours.window();
    const auto a1 = first.window(), a2 = first.window(), b = second.window();
    VirtualRunLoop loop;
    int notices = 0;
    const auto activate = [&](xcb_window_t window, const char* property = "_NET_ACTIVE_WINDOW") {
        xcb_change_property(second.connection->get(), XCB_PROP_MODE_REPLACE, second.connection->root(),
                            second.connection->atom(property), XCB_ATOM_WINDOW, 32, 1, &window);
        // An answer says that the server has dealt with the change, and told of it.
        std::free(xcb_get_input_focus_reply(second.connection->get(), xcb_get_input_focus(second.connection->get()),
                                            nullptr));
    };
    activate(a1);
    const ActiveWindowWatch watch(
        loop, *ours.connection, [&](xcb_window_t window) { return window == own; }, [&] { ++notices; });
    ours.connection->selectRootEvents(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);  // another listener's
    const auto noticesAfter = [&](xcb_window_t window, const char* property = "_NET_ACTIVE_WINDOW") {
        activate(window, property);
        ours.connection->readEvents();
        loop.settle();
        return std::exchange(notices, 0);
    };
    EXPECT_EQ(noticesAfter(a1), 0) << "it was active at the start";
    EXPECT_EQ(noticesAfter(b), 1);
    EXPECT_EQ(noticesAfter(a1), 1);
    EXPECT_EQ(noticesAfter(a2), 0) << "another window of the same program";
    EXPECT_EQ(noticesAfter(own), 0) << "a window of ours";
    EXPECT_EQ(noticesAfter(a1), 0) << "and back";
    EXPECT_EQ(noticesAfter(b, "_NET_SOMETHING_ELSE"), 0);
    EXPECT_EQ(noticesAfter(XCB_WINDOW_NONE), 1) << "the desktop, or a window of Wayland's";
}

}  // namespace
}  // namespace glintar::platform

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");  // Qt itself looks for no bus
    const QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
