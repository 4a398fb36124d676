#include "platform/qt/SessionBusGuard.h"

#include "platform/secret/SessionBus.h"

#include <cstdlib>

namespace glintar::platform {

bool prepareSessionBus() {
    const auto address = sessionBusAddress();
    ::setenv("DBUS_SESSION_BUS_ADDRESS", address ? address->c_str() : "disabled:", 1);
    return address.has_value();
}

}  // namespace glintar::platform
