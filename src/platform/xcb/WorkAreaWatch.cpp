#include "platform/xcb/WorkAreaWatch.h"

#include <cstdint>
#include <utility>

namespace glintar::platform {

WorkAreaWatch::WorkAreaWatch(XcbConnection& connection, RunLoop& loop)
    : connection_(connection), loop_(loop), property_(connection.atom("_NET_WORKAREA")) {
    events_ = connection_.onEvent([this](const xcb_generic_event_t& event) { see(event); });
    connection_.selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
    area_ = ask();
    connection_.handOutQueued();
}

void WorkAreaWatch::see(const xcb_generic_event_t& event) {
    if ((event.response_type & 0x7f) != XCB_PROPERTY_NOTIFY) {
        return;
    }
    const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
    if (change.window == connection_.screen().root && change.atom == property_) {
        // Not here: the other listeners would wait for the answer.
        look_ = loop_.after(Duration::zero(), [this] { look(); });
    }
}

void WorkAreaWatch::look() {
    const auto now = ask();
    connection_.handOutQueued();
    if (connection_.isAlive() && std::exchange(area_, now) != now) {
        listeners_.call();
    }
}

/// Of the first desktop: panels are on all of them.
std::optional<PixelArea> WorkAreaWatch::ask() const {
    xcb_connection_t* const xcb = connection_.get();
    const auto asked = xcb_get_property(xcb, 0, connection_.screen().root, property_, XCB_ATOM_CARDINAL, 0, 4);
    const XcbOwned<xcb_get_property_reply_t> answer(xcb_get_property_reply(xcb, asked, nullptr));
    if (!answer || answer->format != 32 || xcb_get_property_value_length(answer.get()) != 16) {
        return {};
    }
    const auto* const numbers = static_cast<const std::int32_t*>(xcb_get_property_value(answer.get()));
    return PixelArea{numbers[0], numbers[1], numbers[2], numbers[3]};
}

}  // namespace glintar::platform
