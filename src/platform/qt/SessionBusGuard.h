#pragma once

namespace glintar::platform {

/// Has Qt find the session's message bus by $DBUS_SESSION_BUS_ADDRESS, where there is one. If not, that variable names
/// none from now on: Qt's accessibility asks for the bus as soon as there is a QApplication, and its tray later, and
/// libdbus would start one that outlives the program. Call it before there is a QApplication and before any thread, and
/// give the variable to no other program.
void prepareSessionBus();

}  // namespace glintar::platform
