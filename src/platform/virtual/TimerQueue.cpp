#include "platform/virtual/TimerQueue.h"

namespace glintar::platform {

struct TimerQueue::Repeating {
    Duration interval;
    std::function<void()> tick;
    Key key;  ///< of the next tick
};

class TimerQueue::Handle final : public Timer {
public:
    Handle(std::weak_ptr<Pending> pending, std::shared_ptr<Repeating> timer)
        : pending_(std::move(pending)), timer_(std::move(timer)) {}

    ~Handle() override {
        if (const auto pending = pending_.lock()) {
            pending->erase(timer_->key);
        }
    }

private:
    std::weak_ptr<Pending> pending_;
    std::shared_ptr<Repeating> timer_;
};

TimerHandle TimerQueue::after(Instant due, Task task) {
    auto timer = std::make_shared<Repeating>();
    timer->key = schedule(due, std::move(task));
    return std::make_unique<Handle>(pending_, std::move(timer));
}

TimerHandle TimerQueue::every(Instant firstDue, Duration interval, std::function<void()> tick) {
    auto timer = std::make_shared<Repeating>(Repeating{interval, std::move(tick), {}});
    scheduleTick(firstDue, timer);
    return std::make_unique<Handle>(pending_, std::move(timer));
}

std::optional<Instant> TimerQueue::nextDue() const {
    return pending_->empty() ? std::nullopt : std::optional(pending_->begin()->first.first);
}

TimerQueue::Key TimerQueue::schedule(Instant due, Task task) {
    const Key key{due, nextOrder_++};
    pending_->emplace(key, std::move(task));
    return key;
}

void TimerQueue::scheduleTick(Instant due, const std::shared_ptr<Repeating>& timer) {
    timer->key = schedule(due, [this, due, timer] {
        scheduleTick(due + timer->interval, timer);
        const auto tick = timer->tick;  // a copy: the tick may destroy its own handle
        tick();
    });
}

}  // namespace glintar::platform
