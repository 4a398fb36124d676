#include "platform/posix/WakeWatch.h"

#include "platform/DesktopEvents.h"
#include "platform/NotificationCenter.h"

#include <sys/timerfd.h>
#include <unistd.h>

#include <cstdint>
#include <limits>

namespace glintar::platform {

namespace {

// Two clocks cannot be read at one instant; a sleep that is not longer than that changes nothing for anybody.
constexpr Duration kShortestSleep = std::chrono::seconds{1};

}  // namespace

WakeWatch::WakeWatch(const RunLoop& loop, NotificationCenter& notifications, Descriptor clockChanges)
    : loop_(loop), notifications_(notifications), clockChanges_(std::move(clockChanges)), sleptBefore_(slept()) {}

/// A timer that never expires, but is cancelled by "a discontinuous change" of the real-time clock (timerfd_create(2),
/// TFD_TIMER_CANCEL_ON_SET): it can then be read, which fails with ECANCELED, and is armed for the next change by that.
/// Waking is such a change: the real-time clock goes on by the time slept, and the monotonic clock does not. The kernel
/// tells these timers of it as it tells them of clock_settime (timerfd_resume in fs/timerfd.c, since 5.15; before that
/// through clock_was_set).
Descriptor WakeWatch::watchClockChanges() {
    Descriptor timer(::timerfd_create(CLOCK_REALTIME, TFD_CLOEXEC | TFD_NONBLOCK));
    itimerspec never{};
    never.it_value.tv_sec = std::numeric_limits<std::time_t>::max();
    if (timer.number() < 0 ||
        ::timerfd_settime(timer.number(), TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &never, nullptr) != 0) {
        return Descriptor();
    }
    return timer;
}

void WakeWatch::onReadable() {
    std::uint64_t ignored = 0;
    [[maybe_unused]] const auto got = ::read(clockChanges_.number(), &ignored, sizeof ignored);
    const Duration now = slept();
    if (now - std::exchange(sleptBefore_, now) > kShortestSleep) {
        notifications_.post(kMachineResumed);
    }
}

/// How long the machine has slept since it was started: only one of the clocks goes on meanwhile.
Duration WakeWatch::slept() const {
    return loop_.bootNow().time_since_epoch() - loop_.now().time_since_epoch();
}

}  // namespace glintar::platform
