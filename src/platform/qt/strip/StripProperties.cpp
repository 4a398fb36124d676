#include "platform/qt/strip/StripProperties.h"

#include "platform/qt/windows/ManagerMessage.h"

#include <QWindow>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace glintar::platform {

namespace {

/// Not "above": docks are above other windows, but for one that fills the screen, which may cover them. Some window
/// managers would show a dock that is "above" over such a window as well.
constexpr std::array<std::string_view, 3> kState{"_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER",
                                                 "_NET_WM_STATE_STICKY"};
constexpr std::uint32_t kAllDesktops = 0xffffffff;

}  // namespace

void writeStripProperties(const QWindow& window) {
    xcb_connection_t* const connection = connectionOfQt();
    if (connection == nullptr) {
        return;
    }
    const auto id = static_cast<xcb_window_t>(window.winId());
    std::array<xcb_atom_t, kState.size()> state{};
    std::ranges::transform(kState, state.begin(), [&](std::string_view name) { return atomOn(connection, name); });
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, atomOn(connection, "_NET_WM_STATE"), XCB_ATOM_ATOM, 32,
                        state.size(), state.data());
    xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, atomOn(connection, "_NET_WM_DESKTOP"), XCB_ATOM_CARDINAL,
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
        askManager(connection, id, "_NET_WM_STATE", {kAdd, atomOn(connection, state), XCB_ATOM_NONE, kApplication, 0});
    }
    askManager(connection, id, "_NET_WM_DESKTOP", {kAllDesktops, kApplication, 0, 0, 0});
}

}  // namespace glintar::platform
