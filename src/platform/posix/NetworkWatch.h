#pragma once

#include "platform/RunLoop.h"
#include "platform/posix/Descriptor.h"

#include <optional>

namespace glintar::platform {

class NotificationCenter;

/// Posts `kNetworkCameBack` when the kernel tells of a new default route (rtnetlink(7)): the network came back, or the
/// machine has moved to another one. The notice comes a second after the last news, since a network comes in many
/// steps, the name servers last. It comes at most twice a minute, since some routers announce their route all the time.
/// A notice too many costs a connection or an early retry. A route that was there at the start gives none. Main thread
/// only.
class NetworkWatch {
public:
    NetworkWatch(RunLoop& loop, NotificationCenter& notifications);

    /// Call `onReadable` when this can be read; -1 where the kernel does not tell, as in some sandboxes.
    [[nodiscard]] int descriptor() const { return socket_.number(); }

    /// False once there will be nothing more to read.
    [[nodiscard]] bool onReadable();

private:
    void tellSoon();

    RunLoop& loop_;
    NotificationCenter& notifications_;
    Descriptor socket_;
    std::optional<Instant> told_;
    TimerHandle settled_;
};

}  // namespace glintar::platform
