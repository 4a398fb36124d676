#include "support/Display.h"

#include "platform/xcb/SelectionWatch.h"
#include "support/MessageBus.h"

#include <fmt/format.h>
#include <xcb/shape.h>

#include <charconv>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <ranges>
#include <stdexcept>
#include <string_view>
#include <thread>

namespace glintar::test {

namespace {

using platform::XcbConnection;
using platform::XcbOwned;

void await(const std::function<bool()>& condition, const std::string& what,
           const std::function<void()>& meanwhile = {}) {
    if (!eventually(condition, meanwhile)) {
        throw std::runtime_error(what);
    }
}

bool isOwned(XcbConnection& connection, const char* selection) {
    return platform::SelectionWatch(connection, selection).isOwned();
}

/// Whether it takes care of windows by now. Openbox, for one, says earlier that it is there, and what it is sent while
/// it starts can lie until it is sent something else.
bool doesManage(XcbConnection& connection, xcb_window_t probe) {
    xcb_connection_t* const xcb = connection.get();
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, connection.screen().root, connection.atom("_GLINTAR_TEST"),
                        XCB_ATOM_CARDINAL, 32, 0, nullptr);
    const auto asked = xcb_get_property(xcb, 0, probe, connection.atom("WM_STATE"), XCB_ATOM_ANY, 0, 1);
    const XcbOwned<xcb_get_property_reply_t> state(xcb_get_property_reply(xcb, asked, nullptr));
    return state && state->type != XCB_ATOM_NONE;
}

std::vector<Pixel> pixelsOf(XcbConnection& connection, int x, int y, int width, int height) {
    const auto asked = xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, connection.screen().root,
                                     static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                                     static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height), ~0U);
    const XcbOwned<xcb_get_image_reply_t> image(xcb_get_image_reply(connection.get(), asked, nullptr));
    if (!image) {
        throw std::runtime_error("not on the screen");
    }
    std::vector<Pixel> seen;
    const auto* bytes = xcb_get_image_data(image.get());
    for (int count = width * height; count > 0; --count, bytes += 4) {
        seen.push_back({bytes[2], bytes[1], bytes[0]});
    }
    return seen;
}

int number(std::string_view text) {
    int value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
}

}  // namespace

Display::Display(const std::string& screen, Bus bus) {
    const auto runtime = home_.path() / "run";
    std::filesystem::create_directory(runtime);
    std::filesystem::permissions(runtime, std::filesystem::perms::owner_all);
    set("HOME", home_.path().string());
    set("XDG_RUNTIME_DIR", runtime.string());
    set("QT_QPA_PLATFORM", "xcb");
    for (const char* const variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME",
                                       "XDG_CURRENT_DESKTOP", "XDG_SESSION_TYPE", "DESKTOP_SESSION", "WAYLAND_DISPLAY",
                                       "XAUTHORITY", "AT_SPI_BUS_ADDRESS", "DBUS_SESSION_BUS_ADDRESS"}) {
        set(variable, std::nullopt);
    }
    startServer(screen);
    if (bus == Bus::Private) {
        startBus();
    }
}

Display::~Display() {
    for (Child* const child : {&panel_, &tray_, &compositor_, &manager_, &bus_}) {
        child->stop();
    }
    // They would leave their sockets and locks behind.
    wayland_.terminate();
    server_.terminate();
    for (const auto& [variable, value] : before_ | std::views::reverse) {
        value ? ::setenv(variable.c_str(), value->c_str(), 1) : ::unsetenv(variable.c_str());
    }
}

void Display::set(const char* variable, const std::optional<std::string>& value) {
    const char* const before = std::getenv(variable);
    before_.emplace_back(variable, before == nullptr ? std::nullopt : std::optional<std::string>(before));
    value ? ::setenv(variable, value->c_str(), 1) : ::unsetenv(variable);
}

std::unique_ptr<XcbConnection> Display::connect() const {
    auto connection = XcbConnection::open(name_);
    if (!connection) {
        throw std::runtime_error("the screen cannot be reached");
    }
    return connection;
}

void Display::startServer(const std::string& screen) {
    width_ = number(screen);
    height_ = number(std::string_view(screen).substr(screen.find('x') + 1));
    auto [server, told] =
        startTelling({"Xvfb", "-displayfd", "3", "-screen", "0", screen, "-nolisten", "tcp", "-noreset"});
    server_ = std::move(server);
    name_ = ":" + told;
    set("DISPLAY", name_);
}

void Display::startBus() {
    const auto socket = (home_.path() / "run" / "bus").string();
    auto [bus, told] =
        startTelling({"dbus-daemon", "--session", "--nofork", "--print-address=3", "--address=unix:path=" + socket});
    bus_ = std::move(bus);
    set("DBUS_SESSION_BUS_ADDRESS", told);
}

void Display::startManager(Manager manager) {
    stopManager();
    manager_ = manager == Manager::Openbox ? Child({"openbox", "--sm-disable"})
                                           : Child({"xfwm4", "--compositor=off", "--replace"});
    const auto connection = connect();
    await([&] { return isOwned(*connection, "WM_S0"); }, "the window manager does not start");
    // Goes with the connection.
    const auto probe = xcb_generate_id(connection->get());
    xcb_create_window(connection->get(), XCB_COPY_FROM_PARENT, probe, connection->screen().root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_map_window(connection->get(), probe);
    await([&] { return doesManage(*connection, probe); }, "the window manager manages nothing");
}

void Display::stopManager() {
    manager_.stop();
    const auto connection = connect();
    await([&] { return !isOwned(*connection, "WM_S0"); }, "the window manager does not end");
}

void Display::startCompositor() {
    compositor_ = Child({"picom", "--config", "/dev/null", "--backend", "xrender"});
    const auto connection = connect();
    await([&] { return isOwned(*connection, "_NET_WM_CM_S0"); }, "the compositor does not start");
}

void Display::startTray() {
    tray_ = Child({"trayer", "--edge", "bottom", "--align", "left", "--widthtype", "pixel", "--width", "100"});
    const auto connection = connect();
    await([&] { return isOwned(*connection, "_NET_SYSTEM_TRAY_S0"); }, "the tray does not start");
}

void Display::startPanel() {
    panel_ = Child({"xfce4-panel", "--disable-wm-check"});
    await([] { return isOnSessionBus("org.kde.StatusNotifierWatcher"); }, "the panel does not start");
}

/// In a window that is as large as the screen: there it has the screen's pointer, and shows what it composes.
void Display::startWayland() {
    const auto settings = home_.path() / "weston.ini";
    const auto log = home_.path() / "weston.log";
    constexpr Pixel kBackground{0x20, 0x40, 0x60};
    std::ofstream(settings) << "[shell]\npanel-position=none\nlocking=false\nbackground-color=0xff204060\n";
    wayland_ = Child({"weston", "--backend=x11-backend.so", "--use-pixman", fmt::format("--width={}", width_),
                      fmt::format("--height={}", height_), "--xwayland", "--idle-time=0",
                      "--config=" + settings.string(), "--log=" + log.string()});
    await([&] { return pixel(width_ - 5, height_ - 5) == kBackground; }, "the Wayland compositor does not start");
    // It follows the pointer by its steps, from a corner where it need not have begun.
    input(
        {"mousemove", std::to_string(width_ - 1), std::to_string(height_ - 1), "sleep", "0.1", "mousemove", "0", "0"});
    std::ifstream file(log);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    constexpr std::string_view kGuest = "xserver listening on display ";
    const auto at = text.find(kGuest);
    if (at == std::string::npos) {
        throw std::runtime_error("the Wayland compositor has no X server");
    }
    const auto from = at + kGuest.size();
    set("DISPLAY", text.substr(from, text.find('\n', from) - from));
}

void Display::split(int leftWidth) {
    outputOf({"xrandr", "--setmonitor", "*LEFT", fmt::format("{0}/{0}x{1}/{1}+0+0", leftWidth, height_), "screen"});
    outputOf({"xrandr", "--setmonitor", "RIGHT",
              fmt::format("{0}/{0}x{1}/{1}+{2}+0", width_ - leftWidth, height_, leftWidth), "none"});
}

void Display::unsplit() {
    outputOf({"xrandr", "--delmonitor", "RIGHT"});
    outputOf({"xrandr", "--delmonitor", "LEFT"});
}

void Display::paintWall(Pixel color) {
    outputOf({"hsetroot", "-solid", fmt::format("#{:02x}{:02x}{:02x}", color[0], color[1], color[2])});
}

std::optional<SeenWindow> Display::window(const std::string& title) {
    const auto text = outputOf({"xwininfo", "-name", title, "-int"});
    if (!text.contains("IsViewable")) {
        return {};
    }
    const auto after = [&](std::string_view name) {
        const auto from = text.find_first_not_of(' ', text.find(name) + name.size());
        return number(std::string_view(text).substr(from));
    };
    return SeenWindow{.id = static_cast<xcb_window_t>(after("Window id:")),
                      .frame = {double(after("Absolute upper-left X:")), double(after("Absolute upper-left Y:")),
                                double(after("Width:")), double(after("Height:"))}};
}

std::vector<Pixel> Display::pixels(int x, int y, int width, int height) const {
    return pixelsOf(*connect(), x, y, width, height);
}

void Display::input(const std::vector<std::string>& words) const {
    std::vector<std::string> command{"env", "DISPLAY=" + name_, "xdotool"};
    command.insert(command.end(), words.begin(), words.end());
    outputOf(command);
}

std::string listedPrograms() {
    return outputOf({"xprop", "-root", "_NET_CLIENT_LIST"});
}

OtherWindow::OtherWindow(Kind kind, const Pixel& color, const xcb_rectangle_t& place) {
    const bool isListed = kind == Kind::Managed || kind == Kind::FullScreen;
    const auto isShown = [&] {
        return window_ != XCB_NONE && (!isListed || listedPrograms().contains(fmt::format("{:#x}", window_))) &&
               pixelsOf(*connection_, place.x + place.width / 2, place.y + place.height / 2, 1, 1).front() == color;
    };
    int looks = 0;
    const auto lookAgain = [&] {
        if (looks++ % 50 == 0) {  // a window manager that has just started may lose a window
            xcb_destroy_window(connection_->get(), window_);
            open(kind, color, place);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds{10});
    };
    await([&] { return isShown(); }, "another window is not seen", lookAgain);
}

void OtherWindow::open(Kind kind, const Pixel& color, const xcb_rectangle_t& place) {
    xcb_connection_t* const xcb = connection_->get();
    window_ = xcb_generate_id(xcb);
    const bool isUnmanaged = kind == Kind::Unmanaged || kind == Kind::ClickedThrough;
    const std::array values{static_cast<std::uint32_t>(color[0] << 16 | color[1] << 8 | color[2]),
                            std::uint32_t{isUnmanaged}, std::uint32_t{XCB_EVENT_MASK_BUTTON_PRESS}};
    xcb_create_window(xcb, connection_->screen().root_depth, window_, connection_->root(), place.x, place.y,
                      place.width, place.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, connection_->screen().root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
    // WM_NORMAL_HINTS that say: the user wants it there.
    const std::array<std::uint32_t, 18> hints{3, std::uint32_t(place.x), std::uint32_t(place.y), place.width,
                                              place.height};
    xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 32,
                        hints.size(), hints.data());
    if (kind == Kind::FullScreen) {
        const auto state = connection_->atom("_NET_WM_STATE_FULLSCREEN");
        xcb_change_property(xcb, XCB_PROP_MODE_REPLACE, window_, connection_->atom("_NET_WM_STATE"), XCB_ATOM_ATOM, 32,
                            1, &state);
    } else if (kind == Kind::ClickedThrough) {
        xcb_shape_rectangles(xcb, XCB_SHAPE_SO_SET, XCB_SHAPE_SK_INPUT, 0, window_, 0, 0, 0, nullptr);
    }
    xcb_map_window(xcb, window_);
    connection_->flush();
}

bool OtherWindow::wasPressed() {
    bool pressed = false;
    const platform::Listening presses = connection_->onEvent(
        [&](const xcb_generic_event_t& event) { pressed = pressed || event.response_type == XCB_BUTTON_PRESS; });
    connection_->readEvents();
    return pressed;
}

void OtherWindow::lower() const {
    const std::uint32_t below = XCB_STACK_MODE_BELOW;
    xcb_configure_window(connection_->get(), window_, XCB_CONFIG_WINDOW_STACK_MODE, &below);
    connection_->flush();
}

}  // namespace glintar::test
