#pragma once

#include "platform/Task.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

namespace glintar::platform {

/// A point on the monotonic clock. It stands still while the machine sleeps; intervals and countdowns use it.
using Instant = std::chrono::steady_clock::time_point;

/// The clock that runs on while the machine sleeps (CLOCK_BOOTTIME). For "how long ago was that, really".
struct BootClock {
    using duration = std::chrono::nanoseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<BootClock>;
    static constexpr bool is_steady = true;
};
using BootInstant = BootClock::time_point;

/// A point on the calendar, for what people read.
using WallTime = std::chrono::system_clock::time_point;

using Duration = std::chrono::nanoseconds;

/// Seconds with a fraction, as intervals are computed and shown.
using Seconds = std::chrono::duration<double>;

/// A timer under way; destroying it cancels it, from inside its own callback too.
class Timer {
public:
    Timer() = default;
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    virtual ~Timer() = default;
};
using TimerHandle = std::unique_ptr<Timer>;

/// The main thread's loop and the machine's clocks.
///
/// `post` and `postAfter` may be called from any thread; everything else, and every callback, belongs to the main
/// thread. Work that is still waiting when the loop ends is dropped, not run.
class RunLoop {
public:
    virtual ~RunLoop() = default;

    /// Runs the task on the main thread, after what is already waiting there.
    virtual void post(Task task) = 0;

    /// Runs the task on the main thread after the delay. It cannot be cancelled, so it holds its owner weakly.
    virtual void postAfter(Duration delay, Task task) = 0;

    /// Runs the task once after the delay, unless the handle is destroyed before.
    [[nodiscard]] virtual TimerHandle after(Duration delay, Task task) = 0;

    /// Runs the callback every interval, the first time one interval from now, until the handle is destroyed.
    [[nodiscard]] virtual TimerHandle every(Duration interval, std::function<void()> tick) = 0;

    /// The three clocks; these may be read from any thread.
    [[nodiscard]] virtual Instant now() const = 0;
    [[nodiscard]] virtual BootInstant bootNow() const = 0;
    [[nodiscard]] virtual WallTime wallNow() const = 0;
};

}  // namespace glintar::platform
