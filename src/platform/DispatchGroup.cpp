#include "platform/DispatchGroup.h"

#include "platform/RunLoop.h"
#include "platform/WorkQueue.h"

#include <cassert>
#include <mutex>
#include <utility>
#include <vector>

namespace glintar::platform {

struct DispatchGroup::State {
    std::mutex mutex;
    int underWay = 0;
    std::vector<Task> deliveries;
};

DispatchGroup::DispatchGroup() : state_(std::make_shared<State>()) {}

void DispatchGroup::enter() const {
    const std::lock_guard lock(state_->mutex);
    ++state_->underWay;
}

void DispatchGroup::leave() const {
    std::vector<Task> due;
    {
        const std::lock_guard lock(state_->mutex);
        assert(state_->underWay > 0);
        if (--state_->underWay == 0) {
            due.swap(state_->deliveries);
        }
    }
    for (auto& deliver : due) {
        deliver();
    }
}

void DispatchGroup::notify(RunLoop& runLoop, Task task) {
    notifyWhenEmpty([&runLoop, task = std::move(task)]() mutable { runLoop.post(std::move(task)); });
}

void DispatchGroup::notify(WorkQueue& queue, Task task) {
    notifyWhenEmpty([&queue, task = std::move(task)]() mutable { queue.async(std::move(task)); });
}

void DispatchGroup::notifyWhenEmpty(Task deliver) {
    {
        const std::lock_guard lock(state_->mutex);
        if (state_->underWay > 0) {
            state_->deliveries.push_back(std::move(deliver));
            return;
        }
    }
    deliver();
}

}  // namespace glintar::platform
