#include "WindowsDesktop.h"

#include <QEventLoop>
#include <QTimer>

#include <algorithm>

namespace glintar::platform {

namespace {

/// WM_NORMAL_HINTS that say: the user wants it there.
std::array<std::uint32_t, 18> placedByUser(const xcb_rectangle_t& place) {
    return {3, static_cast<std::uint32_t>(place.x), static_cast<std::uint32_t>(place.y), place.width, place.height};
}

}  // namespace

std::vector<xcb_window_t> listedPrograms(XcbConnection& connection) {
    const auto asked = xcb_get_property(connection.get(), 0, connection.root(), connection.atom("_NET_CLIENT_LIST"),
                                        XCB_ATOM_WINDOW, 0, 100);
    const XcbOwned<xcb_get_property_reply_t> list(xcb_get_property_reply(connection.get(), asked, nullptr));
    const auto* const first = static_cast<const xcb_window_t*>(xcb_get_property_value(list.get()));
    return {first, first + xcb_get_property_value_length(list.get()) / int{sizeof(xcb_window_t)}};
}

void runLoop(int milliseconds) {
    QEventLoop waiting;
    QTimer::singleShot(milliseconds, &waiting, &QEventLoop::quit);
    waiting.exec();
}

OtherWindow::OtherWindow(Kind kind, const Pixel& color, const xcb_rectangle_t& place) : window_(XCB_NONE) {
    const auto isShown = [&] {
        const auto& display = *WindowsDesktop::screen;
        const auto programs = kind == Kind::Unmanaged ? std::vector{window_} : listedPrograms(*connection_);
        return std::ranges::find(programs, window_) != programs.end() &&
               display.pixel(place.x + place.width / 2, place.y + place.height / 2) == color;
    };
    // A window manager that has just started may lose a window: then another is opened.
    for (int tries = 0; tries < 20 && (window_ == XCB_NONE || !isShown()); ++tries) {
        if (window_ != XCB_NONE) {
            xcb_destroy_window(connection_->get(), window_);
        }
        open(kind, color, place);
        for (int waits = 0; waits < 50 && !isShown(); ++waits) {
            runLoop();
        }
    }
    EXPECT_TRUE(isShown());
}

void OtherWindow::open(Kind kind, const Pixel& color, const xcb_rectangle_t& place) {
    xcb_connection_t* const xcb = connection_->get();
    window_ = xcb_generate_id(xcb);
    const std::array values{static_cast<std::uint32_t>(color[0] << 16 | color[1] << 8 | color[2]),
                            std::uint32_t{kind == Kind::Unmanaged}, std::uint32_t{XCB_EVENT_MASK_BUTTON_PRESS}};
    xcb_create_window(xcb, connection_->screen().root_depth, window_, connection_->root(), place.x, place.y,
                      place.width, place.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, connection_->screen().root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
    const auto hints = placedByUser(place);
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 32,
                        hints.size(), hints.data());
    if (kind == Kind::FullScreen) {
        const auto state = connection_->atom("_NET_WM_STATE_FULLSCREEN");
        xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window_, connection_->atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 32,
                            1, &state);
    }
    xcb_map_window(xcb, window_);
    connection_->flush();
}

OtherWindow::~OtherWindow() {
    xcb_destroy_window(connection_->get(), window_);
}

bool OtherWindow::wasPressed() {
    bool pressed = false;
    const Listening presses = connection_->onEvent(
        [&](const xcb_generic_event_t& event) { pressed = pressed || event.response_type == XCB_BUTTON_PRESS; });
    connection_->readEvents();
    return pressed;
}

void OtherWindow::hide() const {
    xcb_unmap_window(connection_->get(), window_);
    connection_->flush();
}

void OtherWindow::show() const {
    xcb_map_window(connection_->get(), window_);
    connection_->flush();
}

void OtherWindow::lower() const {
    const std::uint32_t below = XCB_STACK_MODE_BELOW;
    xcb_configure_window(connection_->get(), window_, XCB_CONFIG_WINDOW_STACK_MODE, &below);
    connection_->flush();
}

WindowsDesktop::WindowsDesktop() {
    display.paintWall(kWhite);
    display.input({"mousemove", "10", "790"});
}

WindowsDesktop::~WindowsDesktop() {
    display.stopCompositor();
    display.stopManager();
    runLoop();
}

ImagePtr WindowsDesktop::picture() {
    QImage pixels(48, 28, QImage::Format_ARGB32_Premultiplied);
    pixels.fill(QColor(0, 0, 0, 51));
    for (int y = 0; y < 20; ++y) {
        for (int x = 0; x < 40; ++x) {
            pixels.setPixelColor(x + 4, y + 4, y < 10 ? QColor(255, 0, 0) : QColor(0, 0, 255, 153));
        }
    }
    return std::make_shared<PixelImage>(pixels, Size{48, 28}, 1);
}

std::unique_ptr<Overlay> WindowsDesktop::showPanel(int x, int y) {
    auto panel = server.makeOverlay("Panel");
    panel->setPicture(picture(), kMargin);
    panel->setFrame({double(x), 800.0 - y - 20, 40, 20});
    panel->orderFront();
    return panel;
}

bool WindowsDesktop::comesToShow(int x, int y, const Pixel& color) {
    const bool shows = soon([&] { return display.pixel(x, y) == color; });
    EXPECT_EQ(display.pixel(x, y), color) << "at " << x << ", " << y;
    return shows;
}

xcb_window_t WindowsDesktop::focus() {
    const XcbOwned<xcb_get_input_focus_reply_t> has(
        xcb_get_input_focus_reply(connection->get(), xcb_get_input_focus(connection->get()), nullptr));
    return has ? has->focus : xcb_window_t{XCB_NONE};
}

}  // namespace glintar::platform
