#pragma once

#include <optional>
#include <string>

namespace glintar::platform {

/// Where the user's message bus listens: $DBUS_SESSION_BUS_ADDRESS without its "autolaunch:" and "disabled:" entries,
/// else $XDG_RUNTIME_DIR/bus if that exists. Empty where there is no bus; whoever asks GLib or libdbus for the bus then
/// makes them start one, which outlives the program.
[[nodiscard]] std::optional<std::string> sessionBusAddress();

}  // namespace glintar::platform
