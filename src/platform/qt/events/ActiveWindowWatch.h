#pragma once

#include "platform/RunLoop.h"
#include "platform/xcb/XcbConnection.h"

#include <functional>

namespace glintar::platform {

/// Tells when the user turns to another program, by the window that the window manager names as active
/// (_NET_ACTIVE_WINDOW). Silent where there is no such manager. Main thread only.
class ActiveWindowWatch {
public:
    /// `isOwn` says whether a window is one of ours; turning to those, and coming from them, tells nothing.
    ActiveWindowWatch(RunLoop& loop, XcbConnection& connection, std::function<bool(xcb_window_t)> isOwn,
                      std::function<void()> onOtherProgram);

private:
    [[nodiscard]] xcb_window_t activeWindow() const;
    [[nodiscard]] std::uint32_t programOf(xcb_window_t window) const;
    void look();

    XcbConnection& connection_;
    std::function<bool(xcb_window_t)> isOwn_;
    std::function<void()> onOtherProgram_;
    std::uint32_t program_ = 0;  ///< of the user's; what the numbers of all its windows have in common
    TimerHandle look_;
    Listening changed_;
};

}  // namespace glintar::platform
