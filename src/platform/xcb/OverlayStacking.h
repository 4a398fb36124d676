#pragma once

#include "platform/RunLoop.h"
#include "platform/xcb/LockWindows.h"
#include "platform/xcb/XcbConnection.h"

#include <optional>
#include <utility>
#include <vector>

namespace glintar::platform {

/// Keeps a window of ours that no window manager looks after above all others, but below those that lock a screen. It
/// is raised at most ten times a second, since another window may want to be on top too.
class OverlayStacking {
public:
    /// Listens from now on, and does nothing until `keepOnTop`. `loop` is where it waits.
    OverlayStacking(XcbConnection& connection, RunLoop& loop, xcb_window_t window);
    OverlayStacking(const OverlayStacking&) = delete;
    OverlayStacking& operator=(const OverlayStacking&) = delete;

    /// The frames of the single screens.
    void setScreens(std::vector<xcb_rectangle_t> screens) { locks_.setScreens(std::move(screens)); }

    /// From now on, with the next flush of the connection.
    void keepOnTop();
    void leaveAlone();

private:
    void see(const xcb_generic_event_t& event);
    [[nodiscard]] std::optional<xcb_window_t> newlyAbove(const xcb_generic_event_t& event) const;
    void goAbove(xcb_window_t other);
    void raise();

    XcbConnection& connection_;
    RunLoop& loop_;
    xcb_window_t window_;
    LockWindows locks_;
    bool isKept_ = false;
    std::optional<Instant> raised_;
    TimerHandle raiseLater_;
    Listening events_;
};

}  // namespace glintar::platform
