#include "platform/xcb/LockWindows.h"

#include <algorithm>

namespace glintar::platform {

LockWindows::LockWindows(const xcb_setup_t& setup, const xcb_screen_t& screen, xcb_window_t own)
    : whole_{0, 0, screen.width_in_pixels, screen.height_in_pixels}, own_(own), clientBits_(~setup.resource_id_mask) {}

void LockWindows::setScreens(std::vector<xcb_rectangle_t> screens) {
    screens_ = std::move(screens);
}

void LockWindows::see(const xcb_generic_event_t& event) {
    switch (event.response_type) {
        case XCB_CREATE_NOTIFY:
            create(reinterpret_cast<const xcb_create_notify_event_t&>(event));
            break;
        case XCB_CONFIGURE_NOTIFY:
            configure(reinterpret_cast<const xcb_configure_notify_event_t&>(event));
            break;
        case XCB_MAP_NOTIFY:
            setMapped(reinterpret_cast<const xcb_map_notify_event_t&>(event).window, true);
            break;
        case XCB_UNMAP_NOTIFY:
            setMapped(reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window, false);
            break;
        case XCB_DESTROY_NOTIFY:
            forget(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
            break;
        case XCB_REPARENT_NOTIFY:
            forget(reinterpret_cast<const xcb_reparent_notify_event_t&>(event).window);
            break;
        default:
            break;
    }
}

/// Windows are made on top of all others. One of the X server's own is what a compositor paints on: nobody lies above
/// it, and it hides nobody.
void LockWindows::create(const xcb_create_notify_event_t& created) {
    if (created.override_redirect != 0 && created.window != own_ && !isOfServer(created.window)) {
        candidates_.push_back({.window = created.window,
                               .left = created.x,
                               .top = created.y,
                               .right = created.x + created.width,
                               .bottom = created.y + created.height,
                               .isAbove = true});
    }
}

/// Some window managers and wallpapers cover the whole screen with a window at the bottom.
void LockWindows::configure(const xcb_configure_notify_event_t& configured) {
    const xcb_window_t beneath = configured.above_sibling;
    const bool isRaised = beneath != XCB_NONE && (beneath == own_ || isLock(beneath));
    auto candidate = std::ranges::find(candidates_, configured.window, &Candidate::window);
    if (candidate == candidates_.end()) {
        if (configured.override_redirect == 0 || configured.window == own_ || isOfServer(configured.window)) {
            return;
        }
        candidate = candidates_.insert(candidates_.end(), {.window = configured.window});
    }
    candidate->left = configured.x;
    candidate->top = configured.y;
    candidate->right = configured.x + configured.width;
    candidate->bottom = configured.y + configured.height;
    candidate->isAbove = isRaised || (candidate->isAbove && beneath != XCB_NONE);
    if (isRaised) {
        std::rotate(candidate, candidate + 1, candidates_.end());
    }
}

void LockWindows::setMapped(xcb_window_t window, bool isMapped) {
    const auto known = std::ranges::find(candidates_, window, &Candidate::window);
    if (known != candidates_.end()) {
        known->isMapped = isMapped;
    }
}

void LockWindows::forget(xcb_window_t window) {
    std::erase_if(candidates_, [window](const auto& candidate) { return candidate.window == window; });
}

bool LockWindows::hidesScreen(const Candidate& candidate) const {
    const auto covers = [&](const xcb_rectangle_t& screen) {
        return candidate.left <= screen.x && candidate.top <= screen.y && candidate.right >= screen.x + screen.width &&
               candidate.bottom >= screen.y + screen.height;
    };
    return candidate.isAbove && (covers(whole_) || std::ranges::any_of(screens_, covers));
}

std::optional<xcb_window_t> LockWindows::lowest() const {
    const auto lock = std::ranges::find_if(
        candidates_, [this](const auto& candidate) { return candidate.isMapped && hidesScreen(candidate); });
    return lock != candidates_.end() ? std::optional(lock->window) : std::nullopt;
}

bool LockWindows::isLock(xcb_window_t window) const {
    const auto known = std::ranges::find(candidates_, window, &Candidate::window);
    return known != candidates_.end() && hidesScreen(*known);
}

}  // namespace glintar::platform
