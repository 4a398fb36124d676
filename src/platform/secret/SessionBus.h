#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace glintar::platform {

/// Where the user's message bus listens: $DBUS_SESSION_BUS_ADDRESS without its "autolaunch:" and "disabled:" entries,
/// else $XDG_RUNTIME_DIR/bus if that exists. Empty where there is no bus; whoever asks GLib or libdbus for the bus then
/// makes them start one, which outlives the program.
[[nodiscard]] std::optional<std::string> sessionBusAddress();

/// False when something listens at the (first) address and has not answered after half a second: libdbus and with it Qt
/// would wait for it without end. A bus that is started by the first call of the session needs a part of that.
[[nodiscard]] bool answersSoon(std::string_view address);

}  // namespace glintar::platform
