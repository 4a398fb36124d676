#include "platform/qt/SessionBusGuard.h"

#include "platform/secret/SessionBus.h"

#include <cstdlib>

namespace glintar::platform {

void prepareSessionBus() {
    const auto address = sessionBusAddress();
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address ? address->c_str() : "disabled:", 1);
}

}  // namespace glintar::platform
