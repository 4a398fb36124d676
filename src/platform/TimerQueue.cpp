#include "platform/TimerQueue.h"

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

TimerQueue::TimerQueue() : pending_(std::make_shared<Pending>()) {}
TimerQueue::~TimerQueue() = default;

TimerHandle TimerQueue::after(Instant due, Task task) {
    auto timer = std::make_shared<Repeating>();
    timer->key = insert(due, std::move(task));
    return std::make_unique<Handle>(pending_, std::move(timer));
}

TimerHandle TimerQueue::every(Instant firstDue, Duration interval, std::function<void()> tick) {
    auto timer = std::make_shared<Repeating>(Repeating{interval, std::move(tick), {}});
    insertTick(firstDue, timer);
    return std::make_unique<Handle>(pending_, std::move(timer));
}

std::optional<Instant> TimerQueue::nextDue() const {
    return pending_->empty() ? std::nullopt : std::optional(pending_->begin()->first.first);
}

std::optional<std::pair<Instant, Task>> TimerQueue::takeDue(Instant now) {
    if (pending_->empty() || pending_->begin()->first.first > now) {
        return std::nullopt;
    }
    now_ = now;
    auto due = pending_->extract(pending_->begin());
    return std::pair{due.key().first, std::move(due.mapped())};
}

TimerQueue::Key TimerQueue::insert(Instant due, Task task) {
    const Key key{due, nextOrder_++};
    pending_->emplace(key, std::move(task));
    return key;
}

void TimerQueue::insertTick(Instant due, const std::shared_ptr<Repeating>& timer) {
    timer->key = insert(due, [this, due, timer] {
        const auto missed = (now_ - due) / timer->interval;
        insertTick(due + timer->interval * (missed + 1), timer);
        const auto tick = timer->tick;  // a copy: the tick may destroy its own handle
        tick();
    });
}

}  // namespace glintar::platform
