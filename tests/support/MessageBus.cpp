#include "support/MessageBus.h"

#include <fstream>

namespace glintar::test {

bool isOnSessionBus(const std::string& name) {
    return outputOf({"dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/",
                     "org.freedesktop.DBus.NameHasOwner", "string:" + name})
        .contains("true");
}

MessageBus::MessageBus() {
    std::ofstream(folder() / "bus.conf") << "<busconfig><type>session</type><listen>" << address() << "</listen>"
                                         << R"(<policy context="default"><allow send_destination="*"/>
        <allow receive_sender="*"/><allow own="*"/></policy></busconfig>)";
}

void MessageBus::start() {
    std::filesystem::remove(socket());
    const auto configuration = "--config-file=" + (folder() / "bus.conf").string();
    daemon_ = startTelling({"dbus-daemon", "--nofork", "--print-address=3", configuration}).first;
}

}  // namespace glintar::test
