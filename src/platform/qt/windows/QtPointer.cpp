#include "platform/qt/windows/QtPointer.h"

namespace glintar::platform {

namespace {

/// Newer guests of Wayland's say what they are.
bool hasWaylandExtension(const XcbConnection& connection) {
    constexpr std::string_view kName = "XWAYLAND";
    const auto cookie = xcb_query_extension(connection.get(), kName.size(), kName.data());
    const XcbOwned<xcb_query_extension_reply_t> reply(xcb_query_extension_reply(connection.get(), cookie, nullptr));
    return reply && reply->present != 0;
}

}  // namespace

QtPointer::QtPointer(XcbConnection& connection, const QtScreens& screens)
    : connection_(connection),
      screens_(screens),
      isSeenEverywhere_(!screens.areOfWayland() && !hasWaylandExtension(connection)) {}

std::optional<Point> QtPointer::position() {
    if (!isSeenEverywhere_) {
        return std::nullopt;
    }
    const auto cookie = xcb_query_pointer_unchecked(connection_.get(), connection_.root());
    const XcbOwned<xcb_query_pointer_reply_t> reply(xcb_query_pointer_reply(connection_.get(), cookie, nullptr));
    connection_.handOutQueued();
    if (!reply || reply->same_screen == 0) {  // the server has gone, or has the pointer on another screen of its own
        return std::nullopt;
    }
    return screens_.map().toPoints({reply->root_x, reply->root_y});
}

}  // namespace glintar::platform
