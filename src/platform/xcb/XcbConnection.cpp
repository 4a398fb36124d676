#include "platform/xcb/XcbConnection.h"

namespace glintar::platform {

std::unique_ptr<XcbConnection> XcbConnection::open(const std::string& display) {
    int screenNumber = 0;
    xcb_connection_t* const connection = xcb_connect(display.empty() ? nullptr : display.c_str(), &screenNumber);
    std::unique_ptr<XcbConnection> opened(new XcbConnection(connection, screenNumber));
    return opened->screen_ == nullptr ? nullptr : std::move(opened);
}

XcbConnection::XcbConnection(xcb_connection_t* connection, int screenNumber)
    : connection_(connection), screenNumber_(screenNumber) {
    if (!isAlive()) {
        return;
    }
    auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection_));
    for (int skipped = 0; screens.rem > 0 && skipped < screenNumber; ++skipped) {
        xcb_screen_next(&screens);
    }
    screen_ = screens.rem > 0 ? screens.data : nullptr;
}

XcbConnection::~XcbConnection() {
    xcb_disconnect(connection_);
}

xcb_atom_t XcbConnection::atom(std::string_view name) {
    const auto [known, isNew] = atoms_.try_emplace(std::string(name), XCB_ATOM_NONE);
    if (isNew) {
        const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
        const XcbOwned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
        known->second = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }
    return known->second;
}

void XcbConnection::selectRootEvents(std::uint32_t mask) {
    if ((rootEvents_ | mask) != rootEvents_) {
        rootEvents_ |= mask;
        xcb_change_window_attributes(connection_, root(), XCB_CW_EVENT_MASK, &rootEvents_);
        flush();
    }
}

Listening XcbConnection::onRootProperty(std::string_view name, std::function<void()> listener) {
    selectRootEvents(XCB_EVENT_MASK_PROPERTY_CHANGE);
    return onEvent([this, property = atom(name), listener = std::move(listener)](const xcb_generic_event_t& event) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if ((event.response_type & 0x7f) == XCB_PROPERTY_NOTIFY && change.window == root() && change.atom == property) {
            listener();
        }
    });
}

std::vector<std::uint32_t> XcbConnection::property(xcb_window_t window, std::string_view name, std::uint32_t most) {
    const auto asked = xcb_get_property(connection_, 0, window, atom(name), XCB_ATOM_ANY, 0, most);
    const XcbOwned<xcb_get_property_reply_t> reply(xcb_get_property_reply(connection_, asked, nullptr));
    if (!reply || reply->format != 32) {
        return {};
    }
    const auto* const first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

bool XcbConnection::readEvents() {
    while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
        listeners_.call(*event);
    }
    flush();
    return isAlive();
}

void XcbConnection::handOutQueued() {
    while (const XcbOwned<xcb_generic_event_t> event{xcb_poll_for_queued_event(connection_)}) {
        listeners_.call(*event);
    }
}

}  // namespace glintar::platform
