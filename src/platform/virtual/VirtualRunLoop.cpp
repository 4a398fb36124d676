#include "platform/virtual/VirtualRunLoop.h"

#include <algorithm>
#include <utility>

namespace glintar::platform {

void VirtualRunLoop::advance(Duration duration) {
    const Instant target = now() + duration;
    for (auto next = queue().nextDue(); next && *next <= target; next = queue().nextDue()) {
        now_ = std::max(now(), *next);
        queue_.takeNext()();
    }
    now_ = target;
}

void VirtualRunLoop::post(Task task) {
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(task));
}

TimerQueue& VirtualRunLoop::queue() {
    const std::lock_guard lock(mutex_);
    for (auto& task : std::exchange(posted_, {})) {
        queue_.schedule(now(), std::move(task));
    }
    return queue_;
}

WallTime VirtualRunLoop::wallNow() const {
    // 2026-01-02 03:04:05 UTC at the first moment.
    constexpr auto kStart = std::chrono::sys_days{std::chrono::January / 2 / 2026} + std::chrono::hours{3} +
                            std::chrono::minutes{4} + std::chrono::seconds{5};
    const auto passed = now() - Instant{std::chrono::hours{24}} + asleep_;
    return WallTime(kStart) + std::chrono::duration_cast<WallTime::duration>(passed);
}

}  // namespace glintar::platform
