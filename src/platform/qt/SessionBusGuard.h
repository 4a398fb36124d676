#pragma once

namespace glintar::platform {

/// Whether there is a session's message bus; if so Qt will find it by $DBUS_SESSION_BUS_ADDRESS. If not, that variable
/// names none from now on: Qt's accessibility asks for the bus as soon as there is a QApplication, and its tray later,
/// and libdbus would start one that outlives the program. Call it before there is a QApplication and before any thread,
/// and give the variable to no other program.
bool prepareSessionBus();

}  // namespace glintar::platform
