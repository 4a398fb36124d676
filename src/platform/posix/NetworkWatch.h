#pragma once

#include "platform/RunLoop.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/RouteTable.h"

namespace glintar::platform {

class NotificationCenter;

/// Posts `kNetworkCameBack` when there is a new way to other machines: after there was none, and also when the machine
/// has moved to another network. A second after the last news, since a network comes in many steps, the name
/// servers last. Never for what was so at the start. Main thread only.
class NetworkWatch {
public:
    NetworkWatch(RunLoop& loop, NotificationCenter& notifications);

    /// Call `onReadable` when this can be read; -1 where the kernel does not tell, as in some sandboxes.
    [[nodiscard]] int descriptor() const { return socket_.number(); }

    /// False once there will be nothing more to read.
    [[nodiscard]] bool onReadable();

private:
    bool askForAll();

    RunLoop& loop_;
    NotificationCenter& notifications_;
    Descriptor socket_;
    RouteTable routes_;
    std::uint32_t sequence_ = 0;
    bool mustAskAgain_ = false;
    TimerHandle settled_;
};

}  // namespace glintar::platform
