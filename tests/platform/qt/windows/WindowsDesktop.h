#pragma once

#include "platform/qt/XcbReader.h"
#include "platform/qt/graphics/QtImage.h"
#include "platform/qt/windows/QtPointer.h"
#include "platform/qt/windows/QtWindowServer.h"
#include "platform/qtcore/QtRunLoop.h"
#include "platform/virtual/VirtualStores.h"
#include "support/Display.h"

#include <gmock/gmock.h>

namespace glintar::platform {

using test::Pixel;

inline constexpr Pixel kWhite{255, 255, 255};
inline constexpr Pixel kBlack{0, 0, 0};
inline constexpr Pixel kRed{255, 0, 0};
inline constexpr Pixel kYellow{255, 255, 0};

/// Lets Qt work for some milliseconds.
void runLoop(int milliseconds = 10);
[[nodiscard]] inline bool soon(const std::function<bool()>& condition) {
    return test::eventually(condition, [] { runLoop(); });
}

/// The screen that the whole program has, with nothing on it before and after each test.
class WindowsDesktop : public testing::Test {
public:
    static inline test::Display* screen = nullptr;

protected:
    WindowsDesktop();
    ~WindowsDesktop() override;

    /// 40 by 20 points: red, the lower half of it blue and 60 % opaque, in a margin of 4 that is black at 20 %.
    static ImagePtr picture();
    static constexpr double kMargin = 4;

    /// A window with that picture, its top left corner that far from the screen's.
    std::unique_ptr<Overlay> showPanel(int x, int y);

    /// In the end, if not at once.
    [[nodiscard]] bool comesToShow(int x, int y, const Pixel& color);

    [[nodiscard]] static test::SeenWindow seenPanel() { return test::Display::window("Panel").value(); }
    [[nodiscard]] xcb_window_t focus();

    test::Display& display = *screen;
    QtRunLoop loop;
    std::unique_ptr<XcbConnection> connection = XcbConnection::open();
    XcbReader reader{*connection};
    CompositorWatch compositor{*connection};
    QtScreens screens{*connection, loop};
    VirtualConsole console;
    QtWindowServer server{{loop, *connection, compositor, screens}, console, QDBusConnection::sessionBus()};
};

}  // namespace glintar::platform
