#pragma once

#include "platform/RunLoop.h"
#include "platform/Task.h"

namespace glintar::platform {

/// Work off the main thread. Both calls may come from any thread; tasks may run at once and in any order.
/// What is still waiting when the queue is destroyed is dropped, not run.
class WorkQueue {
public:
    virtual ~WorkQueue() = default;
    virtual void async(Task task) = 0;
    virtual void asyncAfter(Duration delay, Task task) = 0;
};

}  // namespace glintar::platform
