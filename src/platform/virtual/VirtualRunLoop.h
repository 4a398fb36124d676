#pragma once

#include "platform/RunLoop.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace glintar::platform {

/// A run loop whose time moves only when the test moves it. `post` and `now` from any thread, the rest from one.
class VirtualRunLoop final : public RunLoop {
public:
    /// Moves all clocks by the duration, running what falls due on the way, in order.
    void advance(Duration duration);

    /// Runs what is due now, without moving time.
    void settle() { advance(Duration::zero()); }

    /// The machine sleeps: the monotonic clock and the timers stand still, the other clocks move.
    void sleep(Duration duration) { asleep_ += duration; }

    /// Posts and timers that have not run yet.
    [[nodiscard]] std::size_t pending() { return queue().size(); }

    void post(Task task) override;
    void postAfter(Duration delay, Task task) override { schedule(now() + delay, std::move(task)); }
    TimerHandle after(Duration delay, Task task) override;
    TimerHandle every(Duration interval, std::function<void()> tick) override;
    Instant now() const override { return now_; }
    BootInstant bootNow() const override { return BootInstant(now().time_since_epoch() + asleep_); }
    WallTime wallNow() const override;

private:
    struct Handle;
    using Due = std::pair<Instant, std::uint64_t>;  ///< the time, and the order of arrival
    using Queue = std::map<Due, Task>;

    /// With all that was posted so far.
    Queue& queue();
    Due schedule(Instant time, Task task);
    void scheduleTick(const std::shared_ptr<Due>& next, Instant time, Duration interval,
                      const std::function<void()>& tick);

    std::atomic<Instant> now_{Instant(std::chrono::hours{24})};
    Duration asleep_{};
    std::mutex mutex_;
    std::vector<Task> posted_;
    std::uint64_t arrivals_ = 0;
    std::shared_ptr<Queue> queue_ = std::make_shared<Queue>();  // handles may outlive the loop
};

}  // namespace glintar::platform
