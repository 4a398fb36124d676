#pragma once

#include <xcb/xcb.h>

#include <optional>
#include <vector>

namespace glintar::platform {

/// Finds lock screens: windows that no window manager looks after, that cover a whole screen and do not lie at the
/// bottom. It knows those that were made or put above our window since it began to look.
class LockWindows {
public:
    /// `own` is the window that lies below them.
    LockWindows(const xcb_setup_t& setup, const xcb_screen_t& screen, xcb_window_t own);

    /// The frames of the single screens, in pixels. All of them together always count as one.
    void setScreens(std::vector<xcb_rectangle_t> screens);

    /// Takes note of what becomes of the children of the root window.
    void see(const xcb_generic_event_t& event);

    /// As they lie on screen, as far as is known. None when nothing is locked.
    [[nodiscard]] std::optional<xcb_window_t> lowest() const;

    /// Whether it will lock the screen once it is mapped, or does already.
    [[nodiscard]] bool isLock(xcb_window_t window) const;

private:
    struct Candidate {
        xcb_window_t window = XCB_NONE;
        int left = 0, top = 0, right = 0, bottom = 0;
        bool isMapped = false;
        bool isAbove = false;
    };

    [[nodiscard]] bool hidesScreen(const Candidate& candidate) const;
    void create(const xcb_create_notify_event_t& created);
    void configure(const xcb_configure_notify_event_t& configured);
    void setMapped(xcb_window_t window, bool isMapped);
    void forget(xcb_window_t window);
    [[nodiscard]] bool isOfServer(xcb_window_t window) const { return (window & clientBits_) == 0; }

    xcb_rectangle_t whole_;
    std::vector<xcb_rectangle_t> screens_;
    xcb_window_t own_;
    xcb_window_t clientBits_;  // of a window's id: who made it
    std::vector<Candidate> candidates_;
};

}  // namespace glintar::platform
