#pragma once

#include "platform/RunLoop.h"
#include "platform/posix/Descriptor.h"

namespace glintar::platform {

class NotificationCenter;

/// Posts `kMachineResumed` when the machine has woken from sleep. Main thread only.
///
/// Nothing is polled: the kernel makes a descriptor readable whenever the calendar clock jumps, which it does at the
/// end of each sleep, and also when somebody sets it. Which of the two it was, the run loop's clocks tell.
class WakeWatch {
public:
    WakeWatch(const RunLoop& loop, NotificationCenter& notifications, Descriptor clockChanges = watchClockChanges());

    /// Call `onReadable` when this can be read; -1 where the kernel has nothing of the kind.
    [[nodiscard]] int descriptor() const { return clockChanges_.number(); }
    void onReadable();

    /// Can be read once the calendar clock has jumped; -1 where that cannot be watched.
    [[nodiscard]] static Descriptor watchClockChanges();

private:
    [[nodiscard]] Duration slept() const;

    const RunLoop& loop_;
    NotificationCenter& notifications_;
    Descriptor clockChanges_;
    Duration sleptBefore_;
};

}  // namespace glintar::platform
