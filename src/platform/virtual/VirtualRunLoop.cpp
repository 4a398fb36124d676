#include "platform/virtual/VirtualRunLoop.h"

#include <algorithm>
#include <utility>

namespace glintar::platform {

struct VirtualRunLoop::Handle final : Timer {
    Handle(std::weak_ptr<Queue> from, std::shared_ptr<const Due> at) : queue(std::move(from)), due(std::move(at)) {}
    ~Handle() override {
        if (const auto known = queue.lock()) {
            known->erase(*due);
        }
    }
    std::weak_ptr<Queue> queue;
    std::shared_ptr<const Due> due;
};

void VirtualRunLoop::advance(Duration duration) {
    const Instant target = now() + duration;
    while (!queue().empty() && queue_->begin()->first.first <= target) {
        auto next = queue_->extract(queue_->begin());
        now_ = std::max(now(), next.key().first);
        next.mapped()();
    }
    now_ = target;
}

TimerHandle VirtualRunLoop::after(Duration delay, Task task) {
    return std::make_unique<Handle>(queue_, std::make_shared<Due>(schedule(now() + delay, std::move(task))));
}

TimerHandle VirtualRunLoop::every(Duration interval, std::function<void()> tick) {
    const auto next = std::make_shared<Due>();
    scheduleTick(next, now() + interval, interval, tick);
    return std::make_unique<Handle>(queue_, next);
}

void VirtualRunLoop::post(Task task) {
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(task));
}

VirtualRunLoop::Queue& VirtualRunLoop::queue() {
    std::vector<Task> posted;
    {
        const std::lock_guard lock(mutex_);
        posted.swap(posted_);
    }
    for (auto& task : posted) {
        queue_->emplace(Due{now(), arrivals_++}, std::move(task));
    }
    return *queue_;
}

/// After what was posted before.
VirtualRunLoop::Due VirtualRunLoop::schedule(Instant time, Task task) {
    queue();
    return queue_->emplace(Due{time, arrivals_++}, std::move(task)).first->first;
}

void VirtualRunLoop::scheduleTick(const std::shared_ptr<Due>& next, Instant time, Duration interval,
                                  const std::function<void()>& tick) {
    *next = schedule(time, [this, next, time, interval, tick] {
        scheduleTick(next, time + interval, interval, tick);
        tick();
    });
}

WallTime VirtualRunLoop::wallNow() const {
    // 2026-01-02 03:04:05 UTC at the first moment.
    constexpr auto kStart = std::chrono::sys_days{std::chrono::January / 2 / 2026} + std::chrono::hours{3} +
                            std::chrono::minutes{4} + std::chrono::seconds{5};
    const auto passed = now() - Instant{std::chrono::hours{24}} + asleep_;
    return WallTime(kStart) + std::chrono::duration_cast<WallTime::duration>(passed);
}

}  // namespace glintar::platform
