#pragma once

#include "platform/Geometry.h"
#include "platform/xcb/XcbConnection.h"
#include "support/Program.h"
#include "support/TemporaryFolder.h"

#include <signal.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace glintar::test {

using Pixel = std::array<std::uint8_t, 3>;  ///< red, green and blue

struct SeenWindow {
    xcb_window_t id = XCB_NONE;
    platform::Rect frame;  ///< pixels from the top left
};

/// A screen without a monitor, on which a test puts what desktops have. While it lives, $DISPLAY and
/// $DBUS_SESSION_BUS_ADDRESS name it and a message bus of its own, the home and XDG folders are a temporary one, and
/// nothing else of the user's desktop is known. Programs that are started find all that in their environment. One at a
/// time, or one inside the life of another.
///
/// The starting functions come back once the program does its work. They throw `std::runtime_error` where it does not:
/// a test without its desktop has no result.
class Display {
public:
    enum class Bus { Private, None };
    explicit Display(const std::string& screen = "1280x800x24", Bus bus = Bus::Private);
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;
    ~Display();

    enum class Manager { Openbox, Xfwm4 };
    void startManager(Manager manager);
    void stopManager();
    void startCompositor();  ///< picom; openbox and xfwm4 are run without one of their own
    void stopCompositor() { compositor_.stop(); }
    void startTray();  ///< of the XEmbed kind, in the bottom left corner
    void stopTray() { tray_.stop(); }
    void startPanel();                    ///< that of Xfce, along the top edge, with a tray of the D-Bus kind
    void stop() { server_.terminate(); }  ///< the screen goes away
    void freeze() { server_.signal(SIGSTOP); }
    void freezeBus() { bus_.signal(SIGSTOP); }

    /// A Wayland compositor over the whole screen. From then on $DISPLAY is the X server that it has as a guest, and no
    /// longer the screen, on which pointer, keys and pixels stay.
    void startWayland();

    /// As two monitors side by side, of which the left one is the primary and so many pixels wide.
    void split(int leftWidth);
    void unsplit();

    /// Behind all windows, also for compositors, which take the wallpaper by a name of its own.
    static void paintWall(Pixel color);

    /// What other programs see of the window with that title on $DISPLAY; none while it is not shown.
    [[nodiscard]] static std::optional<SeenWindow> window(const std::string& title);

    /// What somebody in front of the screen sees, row by row.
    [[nodiscard]] std::vector<Pixel> pixels(int x, int y, int width, int height) const;
    [[nodiscard]] Pixel pixel(int x, int y) const { return pixels(x, y, 1, 1).front(); }

    /// Pointer and keys, by xdotool: `input({"mousemove", "10", "20", "click", "1"})`.
    void input(const std::vector<std::string>& words) const;

    [[nodiscard]] const std::string& name() const { return name_; }  ///< such as ":3"
    [[nodiscard]] const std::filesystem::path& home() const { return home_.path(); }

private:
    void set(const char* variable, const std::optional<std::string>& value);
    [[nodiscard]] std::unique_ptr<platform::XcbConnection> connect() const;
    void startServer(const std::string& screen);
    void startBus();

    TemporaryFolder home_;
    std::vector<std::pair<std::string, std::optional<std::string>>> before_;  ///< of the environment
    std::string name_;
    int width_ = 0;
    int height_ = 0;
    Child bus_, server_, wayland_, manager_, compositor_, tray_, panel_;
};

/// The windows that the window manager tells task bars of, as xprop prints them.
[[nodiscard]] std::string listedPrograms();

/// A window of somebody else's on $DISPLAY, in one colour. Comes back once it is seen, its centre at least.
class OtherWindow {
public:
    enum class Kind { Managed, Unmanaged, ClickedThrough, FullScreen };  ///< the middle two without a window manager
    OtherWindow(Kind kind, const Pixel& color, const xcb_rectangle_t& place);
    ~OtherWindow() { xcb_destroy_window(connection_->get(), window_); }

    /// Whether a button was pressed over it since the last question.
    [[nodiscard]] bool wasPressed();

    void hide() const { outputOf({"xdotool", "windowunmap", std::to_string(window_)}); }
    void show() const { outputOf({"xdotool", "windowmap", std::to_string(window_)}); }
    /// Below all others.
    void lower() const;

private:
    void open(Kind kind, const Pixel& color, const xcb_rectangle_t& place);

    std::unique_ptr<platform::XcbConnection> connection_ = platform::XcbConnection::open();
    xcb_window_t window_ = XCB_NONE;
};

}  // namespace glintar::test
