#pragma once

#include "platform/Task.h"

#include <memory>

namespace glintar::platform {

class RunLoop;
class WorkQueue;

/// Counts work that is under way and says when all of it has ended. Copies share one count; thread-safe.
///
/// Every `enter` needs one `leave`. A `notify` runs once, on its queue: it is handed over at once when nothing is under
/// way, else by the `leave` that empties the group.
class DispatchGroup {
public:
    DispatchGroup();

    void enter() const;
    void leave() const;
    void notify(RunLoop& runLoop, Task task);
    void notify(WorkQueue& queue, Task task);

private:
    struct State;
    void notifyWhenEmpty(Task deliver);
    std::shared_ptr<State> state_;
};

}  // namespace glintar::platform
