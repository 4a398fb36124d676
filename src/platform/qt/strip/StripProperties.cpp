#include "platform/qt/strip/StripProperties.h"

#include "platform/xcb/XcbConnection.h"

#include <QGuiApplication>
#include <QWindow>

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <string_view>

namespace glintar::platform {

namespace {

xcb_atom_t atom(xcb_connection_t* connection, std::string_view name) {
    const auto asked = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const XcbOwned<xcb_intern_atom_reply_t> answer(xcb_intern_atom_reply(connection, asked, nullptr));
    return answer ? answer->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

/// Qt's connection: on another one the window might not exist yet. Null where there is no X server.
xcb_connection_t* connectionOfQt() {
    const auto* const x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->connection();
}

/// Not "above": docks are above other windows, but for one that fills the screen, which may cover them. Some window
/// managers would show a dock that is "above" over such a window as well.
constexpr std::array<std::string_view, 3> kState{"_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER",
                                                 "_NET_WM_STATE_STICKY"};
constexpr std::uint32_t kAllDesktops = 0xffffffff;

/// As the window manager's conventions want it: to the root window.
void tellManager(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t what,
                 const std::array<std::uint32_t, 5>& data) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = what;
    std::ranges::copy(data, std::begin(message.data.data32));
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_send_event(connection, 0, root, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
}

}  // namespace

void writeStripProperties(const QWindow& window) {
    xcb_connection_t* const connection = connectionOfQt();
    if (connection == nullptr) {
        return;
    }
    const auto id = static_cast<xcb_window_t>(window.winId());
    std::array<xcb_atom_t, kState.size()> state{};
    std::ranges::transform(kState, state.begin(), [&](std::string_view name) { return atom(connection, name); });
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, atom(connection, "_NET_WM_STATE"), XCB_ATOM_ATOM, 32,
                        state.size(), state.data());
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, atom(connection, "_NET_WM_DESKTOP"), XCB_ATOM_CARDINAL,
                        32, 1, &kAllDesktops);
    constexpr std::string_view kClass("glintar\0glintar\0", 16);
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, kClass.size(),
                        kClass.data());
}

void requestStripProperties(const QWindow& window) {
    xcb_connection_t* const connection = connectionOfQt();
    if (connection == nullptr) {
        return;
    }
    const auto id = static_cast<xcb_window_t>(window.winId());
    constexpr std::uint32_t kAdd = 1;
    constexpr std::uint32_t kApplication = 1;
    for (const auto state : kState) {
        tellManager(connection, id, atom(connection, "_NET_WM_STATE"),
                    {kAdd, atom(connection, state), XCB_ATOM_NONE, kApplication, 0});
    }
    tellManager(connection, id, atom(connection, "_NET_WM_DESKTOP"), {kAllDesktops, kApplication, 0, 0, 0});
    xcb_flush(connection);
}

}  // namespace glintar::platform
