#pragma once

#include "support/TemporaryFolder.h"

#include <sys/types.h>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace glintar::platform {
class XcbConnection;
}

namespace glintar::test {

/// Another program, which is killed with its owner and with the test. What it prints is dropped.
class Child {
public:
    Child() = default;
    /// The program finds `pipe` as its descriptor 3.
    explicit Child(const std::vector<std::string>& command, int pipe = -1);
    Child(Child&& other) noexcept : id_(std::exchange(other.id_, -1)) {}
    Child& operator=(Child&& other) noexcept {
        std::swap(id_, other.id_);
        return *this;
    }
    ~Child() { stop(); }

    void stop();
    [[nodiscard]] bool isRunning() const { return id_ > 0; }
    [[nodiscard]] pid_t id() const { return id_; }

private:
    pid_t id_ = -1;
};

using Pixel = std::array<std::uint8_t, 3>;  ///< red, green and blue

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
    void stopCompositor();
    void startTray();  ///< of the XEmbed kind, in the bottom left corner
    void stopTray();
    void startPanel();  ///< that of Xfce, along the top edge, with a tray of the D-Bus kind
    void stopPanel();
    void stop();  ///< the screen goes away

    /// As two monitors side by side, of which the left one is the primary and so many pixels wide.
    void split(int leftWidth);
    void unsplit();

    /// Puts a window of that colour behind all others. (Of what is painted on the root window compositors know
    /// nothing.)
    void paintBackground(Pixel color);
    void clearBackground();

    /// What somebody in front of the screen sees, row by row.
    [[nodiscard]] std::vector<Pixel> pixels(int x, int y, int width, int height) const;
    [[nodiscard]] Pixel pixel(int x, int y) const { return pixels(x, y, 1, 1).front(); }

    /// Pointer and keys, by xdotool: `input({"mousemove", "10", "20", "click", "1"})`.
    void input(const std::vector<std::string>& words) const;

    [[nodiscard]] const std::string& name() const { return name_; }  ///< such as ":3"
    [[nodiscard]] const std::string& busAddress() const { return busAddress_; }
    [[nodiscard]] const std::filesystem::path& home() const { return home_.path(); }

private:
    void set(const char* variable, const std::optional<std::string>& value);
    void startServer(const std::string& screen);
    void startBus();

    TemporaryFolder home_;
    std::vector<std::pair<std::string, std::optional<std::string>>> before_;  ///< of the environment
    std::string name_;
    std::string busAddress_;
    int width_ = 0;
    int height_ = 0;
    std::unique_ptr<platform::XcbConnection> background_;
    Child bus_, server_, manager_, compositor_, tray_, panel_;
};

/// Runs a program to its end; what it wrote to its standard output.
std::string outputOf(const std::vector<std::string>& command);

/// Whether the condition comes true within some seconds. `meanwhile` runs between two looks, and should wait a moment.
[[nodiscard]] bool eventually(const std::function<bool()>& condition, const std::function<void()>& meanwhile = {});

}  // namespace glintar::test
