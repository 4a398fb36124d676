#include "platform/qt/StripProperties.h"

#include "platform/xcb/XcbConnection.h"

#include <QGuiApplication>
#include <QWindow>

#include <array>
#include <cstdint>

namespace glintar::platform {

namespace {

xcb_atom_t atom(xcb_connection_t* connection, std::string_view name) {
    const auto asked = xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const XcbOwned<xcb_intern_atom_reply_t> answer(xcb_intern_atom_reply(connection, asked, nullptr));
    return answer ? answer->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

}  // namespace

void writeStripProperties(const QWindow& window) {
    const auto* const x11 = qApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr) {
        return;
    }
    // Qt's connection: on another one the window might not exist yet.
    xcb_connection_t* const connection = x11->connection();
    const auto id = static_cast<xcb_window_t>(window.winId());
    const std::array<xcb_atom_t, 4> state{
        atom(connection, "_NET_WM_STATE_SKIP_TASKBAR"), atom(connection, "_NET_WM_STATE_SKIP_PAGER"),
        atom(connection, "_NET_WM_STATE_STICKY"), atom(connection, "_NET_WM_STATE_ABOVE")};
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, atom(connection, "_NET_WM_STATE"), XCB_ATOM_ATOM, 32,
                        state.size(), state.data());
    constexpr std::uint32_t kAllDesktops = 0xffffffff;
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, atom(connection, "_NET_WM_DESKTOP"), XCB_ATOM_CARDINAL,
                        32, 1, &kAllDesktops);
    constexpr std::string_view kClass("glintar\0glintar\0", 16);
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, kClass.size(),
                        kClass.data());
}

}  // namespace glintar::platform
