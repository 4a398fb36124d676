#include "platform/virtual/VirtualRunLoop.h"

#include <algorithm>

namespace glintar::platform {

void VirtualRunLoop::advance(Duration duration) {
    const Instant target = now_ + duration;
    for (auto next = queue_.nextDue(); next && *next <= target; next = queue_.nextDue()) {
        now_ = std::max(now_, *next);
        queue_.takeDue(now_)->second();
    }
    now_ = target;
}

WallTime VirtualRunLoop::wallNow() const {
    // 2026-01-02 03:04:05 UTC at the first moment.
    constexpr auto kStart = std::chrono::sys_days{std::chrono::January / 2 / 2026} + std::chrono::hours{3} +
                            std::chrono::minutes{4} + std::chrono::seconds{5};
    const auto passed = now_ - Instant{std::chrono::hours{24}} + asleep_;
    return WallTime(kStart) + std::chrono::duration_cast<WallTime::duration>(passed);
}

}  // namespace glintar::platform
