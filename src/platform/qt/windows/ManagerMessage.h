#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <string_view>

class QWidget;
class QWindow;

namespace glintar::platform {

// Messages about a window of Qt's go over Qt's connection: on another one the window might not exist yet.

/// Null where there is no X server.
[[nodiscard]] xcb_connection_t* connectionOfQt();

/// One round trip.
[[nodiscard]] xcb_atom_t atomOn(xcb_connection_t* connection, std::string_view name);

/// Asks the window manager for something, by a message to the root window (EWMH 1.5, "Root Window Properties").
void askManager(xcb_connection_t* connection, xcb_window_t window, std::string_view what,
                const std::array<std::uint32_t, 5>& data);

/// Whether there is a window manager now. Qt goes on believing in one that has gone. Two round trips.
[[nodiscard]] bool hasManager(xcb_connection_t* connection);

/// Shows the window in front of all others, restored if it was minimized, with the focus. A window manager that guards
/// the focus gives it too: the user wanted the window, though perhaps by a click in a tray, of which the X server does
/// not tell the time.
void bringToFront(QWidget& window);

}  // namespace glintar::platform
