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

std::vector<xcb_window_t> children(const XcbConnection& connection) {
    const XcbOwned<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection.get(), xcb_query_tree(connection.get(), connection.root()), nullptr));
    const auto* const first = xcb_query_tree_children(tree.get());
    return {first, first + xcb_query_tree_children_length(tree.get())};
}

std::string nameOf(const XcbConnection& connection, xcb_window_t window) {
    const auto asked = xcb_get_property(connection.get(), 0, window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 0, 100);
    const XcbOwned<xcb_get_property_reply_t> name(xcb_get_property_reply(connection.get(), asked, nullptr));
    return name ? std::string(static_cast<const char*>(xcb_get_property_value(name.get())),
                              static_cast<std::size_t>(xcb_get_property_value_length(name.get())))
                : std::string();
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
    paintWall();
    display.input({"mousemove", "10", "790"});
}

WindowsDesktop::~WindowsDesktop() {
    display.stopCompositor();
    display.stopManager();
    runLoop();
}

/// White, also for compositors, which take the wallpaper by this name.
void WindowsDesktop::paintWall() {
    xcb_connection_t* const xcb = connection->get();
    const xcb_pixmap_t wall = xcb_generate_id(xcb);
    xcb_create_pixmap(xcb, connection->screen().root_depth, wall, connection->root(), 1, 1);
    const xcb_gcontext_t white = xcb_generate_id(xcb);
    xcb_create_gc(xcb, white, wall, XCB_GC_FOREGROUND, &connection->screen().white_pixel);
    const xcb_rectangle_t all{0, 0, 1, 1};
    xcb_poly_fill_rectangle(xcb, wall, white, 1, &all);
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, connection->root(), connection->atom("_XROOTPMAP_ID"),
                        XCB_ATOM_PIXMAP, 32, 1, &wall);
    xcb_change_window_attributes(xcb, connection->root(), XCB_CW_BACK_PIXMAP, &wall);
    xcb_clear_area(xcb, 0, connection->root(), 0, 0, 0, 0);
    connection->flush();
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

std::unique_ptr<Window> WindowsDesktop::showPanel(int x, int y) {
    auto panel = server.makeOverlay("Panel");
    panel->setPicture(picture(), kMargin);
    panel->setFrame({double(x), 800.0 - y - 20, 40, 20});
    panel->orderFront();
    return panel;
}

bool WindowsDesktop::comesToShow(int x, int y, const Pixel& color) {
    const bool shows = test::eventually([&] { return display.pixel(x, y) == color; }, [] { runLoop(); });
    EXPECT_EQ(display.pixel(x, y), color) << "at " << x << ", " << y;
    return shows;
}

xcb_window_t WindowsDesktop::panelWindow() {
    for (const xcb_window_t window : children(*connection)) {
        if (nameOf(*connection, window) == "Panel") {
            return window;
        }
    }
    return XCB_NONE;
}

xcb_rectangle_t WindowsDesktop::panelPlace() {
    const XcbOwned<xcb_get_geometry_reply_t> place(
        xcb_get_geometry_reply(connection->get(), xcb_get_geometry(connection->get(), panelWindow()), nullptr));
    return place ? xcb_rectangle_t{place->x, place->y, place->width, place->height} : xcb_rectangle_t{};
}

xcb_window_t WindowsDesktop::focus() {
    const XcbOwned<xcb_get_input_focus_reply_t> has(
        xcb_get_input_focus_reply(connection->get(), xcb_get_input_focus(connection->get()), nullptr));
    return has ? has->focus : xcb_window_t{XCB_NONE};
}

}  // namespace glintar::platform
