#pragma once

#include "platform/RunLoop.h"
#include "platform/posix/Descriptor.h"

#include <optional>

namespace glintar::platform {

class NotificationCenter;

/// Posts `kNetworkCameBack` when the kernel tells of a new default route (rtnetlink(7)): the network came back, or the
/// machine has moved to another one. A second after the last news, since a network comes in many steps, the name
/// servers last; at most twice a minute, since some routers have their route told anew all the time. A notice too many
/// costs a connection or an early retry. Never for what was so at the start. Main thread only.
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
