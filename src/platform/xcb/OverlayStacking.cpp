#include "platform/xcb/OverlayStacking.h"

#include <array>
#include <chrono>
#include <cstdint>

namespace glintar::platform {

namespace {

/// Two windows that both want to be on top must not keep the machine busy.
constexpr auto kBetweenRaises = std::chrono::milliseconds(100);

}  // namespace

OverlayStacking::OverlayStacking(XcbConnection& connection, RunLoop& loop, xcb_window_t window)
    : connection_(connection),
      loop_(loop),
      window_(window),
      locks_(*xcb_get_setup(connection.get()), connection.screen(), window),
      events_(connection.onEvent([this](const xcb_generic_event_t& event) { see(event); })) {
    connection.selectRootEvents(XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY);
}

void OverlayStacking::keepOnTop() {
    isKept_ = true;
    raise();
}

void OverlayStacking::leaveAlone() {
    isKept_ = false;
    raiseLater_.reset();
}

void OverlayStacking::see(const xcb_generic_event_t& event) {
    const bool wasLocked = locks_.lowest().has_value();
    locks_.see(event);
    if (const auto other = newlyAbove(event)) {
        goAbove(*other);
    } else if (event.response_type == XCB_MAP_NOTIFY &&
               locks_.isLock(reinterpret_cast<const xcb_map_notify_event_t&>(event).window)) {
        raise();  // as high as it may be now, which is lower than before if the lock had been made before
        connection_.flush();
    }
    if (wasLocked && !locks_.lowest()) {
        goAbove(XCB_NONE);
    }
}

/// A window comes to lie above others when it is made, when it is put there and when it leaves its parent.
std::optional<xcb_window_t> OverlayStacking::newlyAbove(const xcb_generic_event_t& event) const {
    switch (event.response_type) {
        case XCB_CREATE_NOTIFY:
            return reinterpret_cast<const xcb_create_notify_event_t&>(event).window;
        case XCB_CONFIGURE_NOTIFY: {
            const auto& configured = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
            return configured.above_sibling == window_ ? std::optional(configured.window) : std::nullopt;
        }
        case XCB_REPARENT_NOTIFY: {
            const auto& reparented = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
            return reparented.parent == connection_.root() ? std::optional(reparented.window) : std::nullopt;
        }
        case XCB_CIRCULATE_NOTIFY:
            return reinterpret_cast<const xcb_circulate_notify_event_t&>(event).window;
        default:
            return std::nullopt;
    }
}

void OverlayStacking::goAbove(xcb_window_t other) {
    if (!isKept_ || other == window_ || locks_.isLock(other) || raiseLater_) {
        return;
    }
    const auto wait = raised_ ? *raised_ + kBetweenRaises - loop_.now() : Duration::zero();
    if (wait <= Duration::zero()) {
        raise();
        connection_.flush();
    } else {
        raiseLater_ = loop_.after(wait, [this] {
            raiseLater_.reset();
            raise();
            connection_.flush();
        });
    }
}

void OverlayStacking::raise() {
    const auto lock = locks_.lowest();
    const std::array<std::uint32_t, 2> belowLock{lock.value_or(XCB_NONE), XCB_STACK_MODE_BELOW};
    const std::uint32_t above = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(connection_.get(), window_,
                         lock ? XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE : XCB_CONFIG_WINDOW_STACK_MODE,
                         lock ? belowLock.data() : &above);
    raised_ = loop_.now();
}

}  // namespace glintar::platform
