// The strip on its way from one place, size, screen or scale to another.

#include "platform/qt/strip/StripFixture.h"

namespace glintar::test {

namespace {

using platform::Color;
using platform::Rect;
using platform::StatusItem;
using platform::XcbConnection;
using platform::XcbOwned;

constexpr Pixel kBlue{0, 0, 255};

class StripScreens : public StripFixture {
protected:
    /// Whether the second pill is soon there with all the pixels that it has at that scale.
    [[nodiscard]] testing::AssertionResult comesToShowPillsAt(double scale) const {
        const auto wanted = std::lround((80 * scale - 2) * (24 * scale - 2));
        std::ptrdiff_t blue = 0;
        const bool comes = soon([&] {
            const Rect frame = seen().value().frame;
            const auto shown = display().pixels(int(frame.x), int(frame.y), int(frame.width), int(frame.height));
            blue = std::ranges::count(shown, kBlue);
            return blue == wanted;
        });
        return (comes ? testing::AssertionSuccess() : testing::AssertionFailure())
               << blue << " blue pixels instead of " << wanted;
    }
};

/// Every place that a window of somebody else's has on its way to another, as the X server and the window manager tell
/// of it: in pixels, with the frame that a window manager may put around it.
class PlacesSeen {
public:
    explicit PlacesSeen(xcb_window_t window) {
        const std::uint32_t mask = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        for (xcb_window_t next = window; next != connection_->root(); next = parentOf(next)) {
            outermost_ = next;
            xcb_change_window_attributes(connection_->get(), next, XCB_CW_EVENT_MASK, &mask);
        }
        parentOf(window);  // a round trip: from now on nothing is missed
    }

    [[nodiscard]] std::vector<Rect> soFar() {
        parentOf(outermost_);
        connection_->handOutQueued();
        return places_;
    }

private:
    xcb_window_t parentOf(xcb_window_t window) {
        const XcbOwned<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(connection_->get(), xcb_query_tree(connection_->get(), window), nullptr));
        return tree ? tree->parent : connection_->root();
    }

    void see(const xcb_generic_event_t& event) {
        if ((event.response_type & 0x7f) != XCB_CONFIGURE_NOTIFY) {
            return;
        }
        const auto& place = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        // What the server says of a window counts from its parent, what a manager says from the corner of the screen.
        const bool isFromManager = (event.response_type & 0x80) != 0;
        if (isFromManager || place.window == outermost_) {
            places_.push_back({double(place.x), double(place.y), double(place.width), double(place.height)});
        }
    }

    std::unique_ptr<XcbConnection> connection_ = XcbConnection::open();
    platform::Listening events_ = connection_->onEvent([this](const auto& event) { see(event); });
    xcb_window_t outermost_ = XCB_NONE;
    std::vector<Rect> places_;
};

class StripUnderAnyManager : public StripScreens, public testing::WithParamInterface<std::optional<Display::Manager>> {
protected:
    static void startManager() {
        if (const auto manager = GetParam()) {
            display().startManager(*manager);
        }
    }
};

TEST_P(StripUnderAnyManager, KeepsItsRightEndInPlaceWhateverItShows) {
    startManager();
    start();
    showPills();
    ASSERT_TRUE(comesToEndAt(1280, 0));
    settle();
    PlacesSeen places(seen().value().id);
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
    startManager();
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
                         testing::Values(std::nullopt, Display::Manager::Openbox, Display::Manager::Xfwm4),
                         [](const auto& row) {
                             return !row.param ? "None" : *row.param == Display::Manager::Openbox ? "Openbox" : "Xfwm4";
                         });

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

}  // namespace

}  // namespace glintar::test
