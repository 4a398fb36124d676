#include "platform/qt/windows/ManagerMessage.h"

#include "platform/xcb/XcbConnection.h"

#include <QGuiApplication>
#include <QWidget>

#include <algorithm>
#include <iterator>

namespace glintar::platform {

xcb_connection_t* connectionOfQt() {
    const auto* const x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->connection();
}

xcb_atom_t atomOn(xcb_connection_t* connection, std::string_view name) {
    const auto asked = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const XcbOwned<xcb_intern_atom_reply_t> answer(xcb_intern_atom_reply(connection, asked, nullptr));
    return answer ? answer->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

void askManager(xcb_connection_t* connection, xcb_window_t window, std::string_view what,
                const std::array<std::uint32_t, 5>& data) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = atomOn(connection, what);
    std::ranges::copy(data, std::begin(message.data.data32));
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_send_event(connection, 0, root, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(connection);
}

bool hasManager(xcb_connection_t* connection) {
    const auto asked = xcb_get_selection_owner(connection, atomOn(connection, "WM_S0"));
    const XcbOwned<xcb_get_selection_owner_reply_t> manager(xcb_get_selection_owner_reply(connection, asked, nullptr));
    return manager && manager->owner != XCB_NONE;
}

void bringToFront(QWidget& window) {
    window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
    window.show();
    window.raise();
    window.activateWindow();
    xcb_connection_t* const connection = connectionOfQt();
    if (connection == nullptr) {
        return;
    }
    const auto id = static_cast<xcb_window_t>(window.winId());
    constexpr std::uint32_t kByTheUser = 2;  // "source indication": what only pagers say
    askManager(connection, id, "_NET_ACTIVE_WINDOW", {kByTheUser, XCB_CURRENT_TIME, 0, 0, 0});
    if (!hasManager(connection)) {
        xcb_set_input_focus(connection, XCB_INPUT_FOCUS_POINTER_ROOT, id, XCB_CURRENT_TIME);
        xcb_flush(connection);
    }
}

}  // namespace glintar::platform
