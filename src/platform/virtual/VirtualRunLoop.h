#pragma once

#include "platform/RunLoop.h"
#include "platform/TimerQueue.h"

namespace glintar::platform {

/// A run loop whose time moves only when the test moves it. Single-threaded.
class VirtualRunLoop final : public RunLoop {
public:
    /// Moves all clocks by the duration, running what falls due on the way, in order.
    void advance(Duration duration);

    /// Runs what is due now, without moving time.
    void settle() { advance(Duration::zero()); }

    /// The machine sleeps: the monotonic clock and the timers stand still, the other clocks move.
    void sleep(Duration duration) { asleep_ += duration; }

    /// Posts and timers that have not run yet.
    [[nodiscard]] std::size_t pending() const { return queue_.size(); }

    void post(Task task) override { queue_.schedule(now_, std::move(task)); }
    void postAfter(Duration delay, Task task) override { queue_.schedule(now_ + delay, std::move(task)); }
    TimerHandle after(Duration delay, Task task) override { return queue_.after(now_ + delay, std::move(task)); }
    TimerHandle every(Duration interval, std::function<void()> tick) override {
        return queue_.every(now_ + interval, interval, std::move(tick));
    }
    Instant now() const override { return now_; }
    BootInstant bootNow() const override { return BootInstant(now_.time_since_epoch() + asleep_); }
    WallTime wallNow() const override;

private:
    Instant now_{std::chrono::hours{24}};
    Duration asleep_{};
    TimerQueue queue_;
};

}  // namespace glintar::platform
