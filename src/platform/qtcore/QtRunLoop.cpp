#include "platform/qtcore/QtRunLoop.h"

#include <QThread>
#include <QTimerEvent>
#include <sys/eventfd.h>
#include <time.h>
#include <unistd.h>

namespace glintar::platform {

QtRunLoop::QtRunLoop()
    : wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), wakeNotifier_(wake_.number(), QSocketNotifier::Read) {
    connect(&wakeNotifier_, &QSocketNotifier::activated, this, [this] { runPosted(); });
}

QtRunLoop::~QtRunLoop() = default;

void QtRunLoop::post(Task task) {
    bool isFirst = false;
    {
        const std::lock_guard lock(mutex_);
        isFirst = posted_.empty();
        posted_.push_back(std::move(task));
    }
    if (isFirst) {
        const std::uint64_t one = 1;
        [[maybe_unused]] const auto written = ::write(wake_.number(), &one, sizeof one);
    }
}

void QtRunLoop::postAfter(Duration delay, Task task) {
    const Instant due = now() + delay;
    auto schedule = [this, due, task = std::move(task)]() mutable {
        timers_.schedule(due, std::move(task));
        arm();
    };
    if (QThread::currentThread() == thread()) {
        schedule();
    } else {
        post(std::move(schedule));
    }
}

TimerHandle QtRunLoop::after(Duration delay, Task task) {
    auto handle = timers_.after(now() + delay, std::move(task));
    arm();
    return handle;
}

TimerHandle QtRunLoop::every(Duration interval, std::function<void()> tick) {
    auto handle = timers_.every(now() + interval, interval, std::move(tick));
    arm();
    return handle;
}

Instant QtRunLoop::now() const {
    return std::chrono::steady_clock::now();
}

BootInstant QtRunLoop::bootNow() const {
    timespec time{};
    ::clock_gettime(CLOCK_BOOTTIME, &time);
    return BootInstant(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

WallTime QtRunLoop::wallNow() const {
    return std::chrono::system_clock::now();
}

void QtRunLoop::timerEvent(QTimerEvent* event) {
    killTimer(event->timerId());
    timerId_ = 0;
    armedFor_.reset();
    // Only what was due when the event came: a timer of no interval must not keep the loop from its other work.
    const Instant started = now();
    while (auto due = timers_.takeDue(started)) {
        due->second();
    }
    arm();
}

void QtRunLoop::runPosted() {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto got = ::read(wake_.number(), &count, sizeof count);
    std::vector<Task> tasks;
    {
        const std::lock_guard lock(mutex_);
        tasks.swap(posted_);
    }
    for (auto& task : tasks) {
        task();
    }
}

void QtRunLoop::arm() {
    const auto due = timers_.nextDue();
    if (due == armedFor_) {
        return;
    }
    if (timerId_ != 0) {
        killTimer(timerId_);
        timerId_ = 0;
    }
    armedFor_ = due;
    if (due) {
        const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*due - now());
        timerId_ = startTimer(std::max(wait, std::chrono::milliseconds::zero()), Qt::PreciseTimer);
    }
}

}  // namespace glintar::platform
