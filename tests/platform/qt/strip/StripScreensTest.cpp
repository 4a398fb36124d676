// The strip on its way from one place, size, screen or scale to another, and its icon in trays.

#include "platform/qt/strip/StripFixture.h"

#include <QApplication>
#include <QMenu>
#include <gmock/gmock.h>

#include <set>

namespace glintar::test {

namespace {

using platform::Color;
using platform::MouseButton;
using platform::Rect;
using platform::StatusItem;
using platform::XcbConnection;
using platform::XcbOwned;

class StripScreens : public StripFixture {
protected:
    /// Whether the second pill is soon there with all the pixels that it has at that scale.
    [[nodiscard]] static bool comesToShowPillsAt(double scale) {
        const auto wanted = std::lround((80 * scale - 2) * (24 * scale - 2));
        return soon([&] {
            const Rect frame = seen().value().frame;
            const int width = std::min(int(frame.width), 1280 - int(frame.x));
            const auto shown = display().pixels(int(frame.x), int(frame.y), width, int(frame.height));
            return std::ranges::count(shown, kBlue) == wanted;
        });
    }
};

/// Every place on the screen that the strip, or the frame of a window manager around it, has on its way to another.
class PlacesSeen {
public:
    PlacesSeen() { connection_->selectRootEvents(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY); }
    [[nodiscard]] std::vector<Rect> soFar() {
        xcb_connection_t* const xcb = connection_->get();
        XcbOwned<xcb_get_input_focus_reply_t>(xcb_get_input_focus_reply(xcb, xcb_get_input_focus(xcb), nullptr));
        connection_->handOutQueued();
        return places_;
    }

private:
    void see(const xcb_generic_event_t& event) {
        const auto& place = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        // A window of xfwm4's for the strip's shape, which is never shown, lies in the left corner.
        if (event.response_type == XCB_CONFIGURE_NOTIFY && place.height == 28 && place.x != 0) {
            places_.push_back({double(place.x), double(place.y), double(place.width), 28});
        }
    }

    std::unique_ptr<XcbConnection> connection_ = XcbConnection::open();
    platform::Listening events_ = connection_->onEvent([this](const auto& event) { see(event); });
    std::vector<Rect> places_;
};

class StripUnderAnyManager : public StripScreens, public testing::WithParamInterface<std::optional<Display::Manager>> {
protected:
    StripUnderAnyManager() {
        if (const auto manager = GetParam()) {
            display().startManager(*manager);
        }
    }
};

TEST_P(StripUnderAnyManager, KeepsItsRightEndInPlaceWhateverItShows) {
    start();
    showPills();
    ASSERT_TRUE(comesToEndAt(1280, 0));
    settle();
    PlacesSeen places;
    std::size_t told = 0;
    const auto width = [&] { return seen().value().frame.width; };
    for (const auto& change : std::initializer_list<std::function<void()>>{
             [&] { showText("Net Error"); },
             [&] { showPills(); },
             [&] { line->setLength(StatusItem::Length::Collapsed); },
             [&] { line->setLength(StatusItem::Length::Variable); },
             [&] { line->setImage(pill(28, Color::white(0.5))); },
         }) {
        const double before = width();
        change();
        ASSERT_TRUE(soon([&] { return width() != before; }));
        settle();
        EXPECT_GT(places.soFar().size(), told);
        told = places.soFar().size();
    }
    for (const Rect& place : places.soFar()) {
        EXPECT_EQ(place.right(), 1280) << "with a width of " << place.width;
    }
    line->setLength(StatusItem::Length::Collapsed);
    EXPECT_TRUE(soon([&] { return standsAt({1280 - 28, 0, 28, 28}); })) << "the icon alone";
    EXPECT_EQ(line->frame(), Rect{});
    line->setLength(StatusItem::Length::Variable);
    line.reset();
    EXPECT_TRUE(soon([&] { return standsAt({1280 - 28, 0, 28, 28}); }));
}

TEST_P(StripUnderAnyManager, LeavesAScreenThatIsUnpluggedAndReturnsWithIt) {
    start();
    showPills();
    bar->onScaleChanged = [&] { showPills(); };
    ASSERT_TRUE(comesToEndAt(1280, 0));
    display().split(640);
    ASSERT_TRUE(comesToEndAt(640, 0)) << "the primary one is the left";
    EXPECT_EQ(line->frame().right(), 640 - 28) << "the line ends where the icon begins";
    EXPECT_EQ(line->frame().top(), 800) << "counted from the lower end of the screen";
    display().input(
        {"mousemove", "626", "14", "mousedown", "1", "mousemove", "700", "300", "mousemove", "1266", "790"});
    ASSERT_TRUE(comesToEndAt(1280, 744)) << "the bottom right corner of the right screen";
    display().input({"mouseup", "1"});
    EXPECT_TRUE(comesToShowPillsAt(2));
    for (int time = 0; time < 2; ++time) {
        outputOf({"xrandr", "--delmonitor", "RIGHT"});
        EXPECT_TRUE(comesToEndAt(640, 772)) << "the same corner of the screen that is left";
        EXPECT_EQ(icon->frame().right(), 640);
        EXPECT_TRUE(comesToShowPillsAt(1));
        showText("Net Error");
        EXPECT_TRUE(comesToEndAt(640, 772));
        outputOf({"xrandr", "--setmonitor", "RIGHT", "640/640x800/800+640+0", "none"});
        EXPECT_TRUE(comesToEndAt(1280, 744));
        EXPECT_EQ(icon->frame().right(), 640 + 640 / 2);
        EXPECT_TRUE(comesToShowPillsAt(2));
    }
}

INSTANTIATE_TEST_SUITE_P(Managers, StripUnderAnyManager,
                         testing::Values(std::nullopt, Display::Manager::Openbox, Display::Manager::Xfwm4));

TEST_F(StripScreens, StaysWhereTheUserDragsIt) {
    display().startManager(Display::Manager::Openbox);
    start();
    showPills();
    ASSERT_TRUE(comesToEndAt(1280, 0));
    int clicks = 0;
    icon->onMouseUp = [&](MouseButton) { ++clicks; };

    // By the icon, from the top right corner down to the bottom edge.
    display().input(
        {"mousemove", "1266", "14", "mousedown", "1", "mousemove", "1200", "300", "mousemove", "1066", "790"});
    EXPECT_TRUE(comesToEndAt(1080, 772));
    display().input({"mouseup", "1"});
    settle();
    EXPECT_EQ(clicks, 0) << "a drag is no click";
    EXPECT_TRUE(line->sight().isPlacedByUser);

    showText("Loading...");
    EXPECT_TRUE(comesToEndAt(1080, 772)) << "the end near the corner stays";
    start();
    showPills();
    EXPECT_TRUE(comesToEndAt(1080, 772)) << "after a restart";

    display().input({"mousemove", "1066", "790", "click", "1"});
    icon->onMouseUp = [&](MouseButton) { ++clicks; };
    display().input({"mousemove", "1066", "790", "click", "1"});
    EXPECT_TRUE(soon([&] { return clicks > 0; })) << "a click is no drag";
}

TEST_F(StripScreens, LeavesOutTheLastPillsWholeWhereTheScreenIsTooNarrow) {
    start();
    showPills();
    ASSERT_TRUE(comesToEndAt(1280, 0));
    const double whole = bar->frame().width;
    const auto shows = [&](const std::set<Pixel>& expected) {
        return soon([&] {
            const Rect frame = seen().value().frame;
            const auto pixels = display().pixels(int(frame.x), 0, int(frame.width), 28);
            std::set<Pixel> colors(pixels.begin(), pixels.end());
            std::erase_if(colors,
                          [](const Pixel& pixel) { return pixel == kBlack || pixel == Pixel{0xf2, 0xf2, 0xf2}; });
            return colors == expected;
        });
    };
    EXPECT_TRUE(shows({kRed, kBlue, kOrange}));
    display().split(int(whole) - 1);
    ASSERT_TRUE(comesToEndAt(whole - 1, 0));
    EXPECT_TRUE(soon([&] { return bar->frame().width < whole - 80; }));
    EXPECT_TRUE(shows({kRed, kOrange}));
    EXPECT_EQ(line->sight().leftOut, 1);
    EXPECT_EQ(icon->frame().right(), whole - 1) << "the menu stays in reach";
    display().unsplit();
    EXPECT_TRUE(shows({kRed, kBlue, kOrange}));
}

/// Run at other scales too (CMakeLists.txt).
TEST_F(StripScreens, ShowsPicturesPixelByPixel) {
    start();
    showPills();
    ASSERT_TRUE(soon([&] { return seen() && seen()->frame.right() >= 1280 - bar->scale(); }));
    EXPECT_TRUE(comesToShowPillsAt(bar->scale()));
}

TEST_F(StripScreens, TakesAnotherScaleWhileItRuns) {
    start();
    showPills();
    ASSERT_TRUE(comesToEndAt(1280, 0));
    int told = 0;
    bar->onScaleChanged = [&] {
        ++told;
        showPills();
    };
    const auto takes = [&](double scale, double end) {
        settings().setScale(scale);
        EXPECT_TRUE(soon([&] { return bar->scale() == scale; })) << scale;
        EXPECT_TRUE(comesToEndAt(end, 0)) << scale;
        EXPECT_EQ(seen().value().frame.height, 28 * scale);
        EXPECT_TRUE(comesToShowPillsAt(scale));
    };
    takes(2, 1280);
    takes(1.25, 1280);
    takes(1, 1280);
    EXPECT_EQ(told, 3);
    display().split(640);
    takes(2, 640);  // as a screen that has come later does
}

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
