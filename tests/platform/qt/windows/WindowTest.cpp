#include "WindowsDesktop.h"
#include "platform/qt/windows/QtAlert.h"
#include "platform/qt/windows/QtView.h"
#include "platform/qt/windows/QtWorkspace.h"

#include <QApplication>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QDesktopServices>
#include <QLabel>
#include <QTextBrowser>

namespace glintar::platform {

namespace {

using test::Display;
using test::OtherWindow;
using Words = std::vector<std::string>;

/// Under a window manager or none, above somebody else's window.
class AnyManager : public WindowsDesktop, public testing::WithParamInterface<std::optional<Display::Manager>> {
protected:
    AnyManager() {
        if (GetParam()) {
            display.startManager(*GetParam());
        }
        other.emplace(GetParam() ? OtherWindow::Kind::Managed : OtherWindow::Kind::Unmanaged, kYellow,
                      xcb_rectangle_t{300, 200, 700, 400});
    }

    /// A window with red content of 200 by 100 points.
    std::unique_ptr<Window> make(Window::Frame frame, const std::string& title) {
        auto window = server.makeWindow(frame, title);
        content = new QLabel;
        content->setStyleSheet("background: red");
        content->setFixedSize(200, 100);
        window->setView(std::make_unique<QtView>(std::unique_ptr<QWidget>(content)));
        return window;
    }

    static Rect seen(const std::string& title) {
        const auto window = Display::window(title);
        return window ? window->frame : Rect{};
    }
    bool hasFocus(const std::string& title) {
        const auto window = Display::window(title);
        return window && focus() == window->id;
    }

    std::optional<OtherWindow> other;
    QLabel* content = nullptr;
};

TEST_P(AnyManager, ATitledWindowIsAsLargeAsItsContentAndHasTheFocusUntilItIsClosed) {
    const auto window = make(Window::Frame::Titled, "Settings");
    int closed = 0;
    int refitted = 0;
    window->onClosed = [&] { ++closed; };
    window->onFittingSizeChanged = [&] { ++refitted; };
    window->center();
    for (const Words& keys : {Words{"key", "Escape"}, Words{"key", GetParam() ? "alt+F4" : "Escape"}}) {
        const int before = closed;
        window->makeKeyAndOrderFront();
        ASSERT_TRUE(soon([&] { return hasFocus("Settings"); }));
        EXPECT_TRUE(comesToShow(640, 400, kRed));
        content->setFixedSize(250, 300);
        EXPECT_TRUE(soon([&] { return seen("Settings").size() == Size{250, 300}; }));
        content->setFixedSize(250, 5000);
        EXPECT_TRUE(soon([&] { return seen("Settings").height > 700; }));
        EXPECT_LE(seen("Settings").y + seen("Settings").height, 800) << "not larger than the screen";
        EXPECT_EQ(window->fittingSize().height, 5000);
        content->setFixedSize(200, 100);
        EXPECT_TRUE(soon([&] { return seen("Settings").height == 100; }));
        window->center();
        display.input(keys);
        EXPECT_TRUE(soon([&] { return closed == before + 1; }));
        EXPECT_FALSE(window->isVisible());
    }
    EXPECT_EQ(refitted, 6);
}

TEST_P(AnyManager, ABorderlessWindowStaysWhereItIsPutUntilItIsDraggedByItsBackground) {
    auto window = make(Window::Frame::Borderless, "Dashboard");
    int moved = 0;
    window->onMoved = [&] { ++moved; };
    window->setFrame({700, 250, 200, 100});
    window->makeKeyAndOrderFront();
    ASSERT_TRUE(soon([&] { return hasFocus("Dashboard"); }));
    window->setFrame({700, 230, 200, 120});
    EXPECT_TRUE(soon([&] { return seen("Dashboard") == Rect{700, 450, 200, 120}; }));
    EXPECT_TRUE(comesToShow(800, 510, kRed));
    EXPECT_FALSE(isInTranslucentWindow(*content));
    EXPECT_NE(display.pixel(702, 452), kBlack) << "what the content leaves free";
    display.startCompositor();
    EXPECT_TRUE(comesToShow(702, 452, kYellow));
    EXPECT_TRUE(window->isTranslucent() && isInTranslucentWindow(*content));
    if (GetParam()) {
        std::vector<bool> visible;
        window->onVisibilityChanged = [&] { visible.push_back(window->isVisible()); };
        display.input({"getactivewindow", "windowminimize"});
        EXPECT_TRUE(soon([&] { return visible == std::vector{false}; }));
        window->makeKeyAndOrderFront();
        EXPECT_TRUE(soon([&] { return visible == std::vector{false, true} && hasFocus("Dashboard"); }));
    }

    EXPECT_EQ(moved, 0);
    display.input({"mousemove", "750", "500", "mousedown", "1", "mousemove", "770", "500"});
    runLoop(100);
    display.input({"mousemove", "850", "500", "sleep", "0.1", "mouseup", "1"});
    EXPECT_TRUE(soon([&] { return moved > 0 && window->frame().x >= 780; }));
    EXPECT_EQ(seen("Dashboard"), (Rect{window->frame().x, 450, 200, 120}));

    window->onClosed = [&] { window.reset(); };
    display.input({"key", "Escape"});
    EXPECT_TRUE(soon([&] { return !window && !Display::window("Dashboard"); }));
}

TEST_P(AnyManager, AnAlertTakesTheFocusForItsAnswer) {
    const auto window = make(Window::Frame::Borderless, "Dashboard");
    window->setFrame({350, 600, 200, 100});
    window->makeKeyAndOrderFront();
    ASSERT_TRUE(soon([&] { return hasFocus("Dashboard"); }));
    std::size_t expected = 0;
    for (const Words& keys : {Words{"key", "Return"}, Words{"key", "Tab", "key", "space"}, Words{"key", "Escape"}}) {
        std::optional<std::size_t> answer;
        std::unique_ptr<Alert> alert = server.showAlert(
            {.title = "Not Enough", .text = "A <b>\n& B", .buttons = {"Switch & Go", "Open Settings", "OK"}},
            [&](std::size_t button) {
                answer = button;
                alert.reset();
            });
        ASSERT_TRUE(soon([&] { return hasFocus("Not Enough"); }));
        const auto parts = QApplication::activeModalWidget()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
        EXPECT_TRUE(parts.back()->inherits("QDialogButtonBox")) << "which is read out last";
        content->setStyleSheet(QStringLiteral("background: %1").arg(expected % 2 == 0 ? "yellow" : "red"));
        EXPECT_TRUE(comesToShow(450, 150, expected % 2 == 0 ? kYellow : kRed)) << "drawing goes on";
        display.input(keys);
        EXPECT_TRUE(soon([&] { return answer.has_value(); }));
        EXPECT_EQ(answer, expected++);
    }
    EXPECT_TRUE(window->isVisible()) << "it got no keys";
}

TEST_P(AnyManager, AWindowLeavesAScreenThatIsUnplugged) {
    display.split(640);
    ASSERT_TRUE(soon([&] { return screens.map().screenAt({700, 700}).scale == 2; }));
    const auto window = make(Window::Frame::Borderless, "Dashboard");
    int told = 0;
    window->onSurroundingsChanged = [&] { ++told; };
    window->setFrame({660, 500, 200, 100});
    window->makeKeyAndOrderFront();
    ASSERT_TRUE(soon([&] { return seen("Dashboard") == Rect{680, 400, 400, 200}; }));
    test::outputOf({"xrandr", "--delmonitor", "RIGHT"});
    EXPECT_TRUE(soon([&] { return seen("Dashboard").right() <= 640 && seen("Dashboard").width == 200; }));
    EXPECT_GE(told, 1);
    display.unsplit();
}

INSTANTIATE_TEST_SUITE_P(Managers, AnyManager,
                         testing::Values(std::nullopt, Display::Manager::Openbox, Display::Manager::Xfwm4));

/// The desktop's notices, on a connection of its own as the desktop has.
class Notices final : public QDBusVirtualObject {
public:
    Notices() {
        bus_.registerVirtualObject(QStringLiteral("/org/freedesktop/Notifications"), this);
        bus_.registerService(QStringLiteral("org.freedesktop.Notifications"));
    }
    ~Notices() override { QDBusConnection::disconnectFromBus(QStringLiteral("desktop")); }

    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.signature() != u"susssasa{sv}i") {
            return false;
        }
        shown.emplace_back(message.arguments()[3].toString().toStdString(),
                           message.arguments()[4].toString().toStdString());
        return connection.send(message.createReply(1U));
    }

    std::vector<std::pair<std::string, std::string>> shown;

private:
    QDBusConnection bus_ = QDBusConnection::connectToBus(QString::fromLocal8Bit(qgetenv("DBUS_SESSION_BUS_ADDRESS")),
                                                         QStringLiteral("desktop"));
};

TEST_F(WindowsDesktop, NoticesGoToTheDesktopOrToTheConsole) {
    QtWindowServer alone({loop, *connection, compositor, screens}, console, std::nullopt);
    alone.notify("No bus", "at all");
    EXPECT_TRUE(console.printed("No bus: at all"));

    server.notify("Nobody", "there");
    EXPECT_TRUE(soon([&] { return console.printed("Nobody: there"); }));

    Notices desktop;
    server.notify("Version 2", "Faster & better, <really>");
    EXPECT_TRUE(soon([&] { return !desktop.shown.empty(); }));
    EXPECT_THAT(desktop.shown, testing::ElementsAre(testing::Pair("Version 2", "Faster &amp; better, &lt;really&gt;")));
    EXPECT_EQ(console.count("Version 2"), 0);
}

TEST_F(WindowsDesktop, AMailReachesItsProgramAsItWasWritten) {
    QTextBrowser mailProgram;
    QDesktopServices::setUrlHandler("mailto", &mailProgram, "setSource");
    QtWorkspace().compose({.recipient = "dev@example.org", .subject = "A & B?", .body = "Hi,\n\n50 % up"});
    QDesktopServices::unsetUrlHandler("mailto");
    EXPECT_EQ(mailProgram.source().toEncoded().toStdString(),
              "mailto:dev@example.org?subject=A%20%26%20B%3F&body=Hi%2C%0D%0A%0D%0A50%20%25%20up");
}

}  // namespace

}  // namespace glintar::platform
