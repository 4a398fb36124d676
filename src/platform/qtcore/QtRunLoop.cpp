#include "platform/qtcore/QtRunLoop.h"

#include <QThread>
#include <QTimer>
#include <sys/eventfd.h>
#include <time.h>

#include <utility>

namespace glintar::platform {

namespace {

std::chrono::milliseconds roundedUp(Duration duration) {
    return std::max(std::chrono::ceil<std::chrono::milliseconds>(duration), std::chrono::milliseconds::zero());
}

struct QtTimer final : Timer {
    template <class Callback>
    QtTimer(Duration interval, bool isSingle, Callback callback) {
        timer.setTimerType(Qt::PreciseTimer);
        timer.setSingleShot(isSingle);
        // Qt holds on to the callback while it runs, so that it may destroy its timer.
        QObject::connect(&timer, &QTimer::timeout, &timer, std::move(callback));
        timer.start(roundedUp(interval));
    }
    QTimer timer;
};

}  // namespace

QtRunLoop::QtRunLoop()
    : wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)), wakeNotifier_(wake_.number(), QSocketNotifier::Read) {
    connect(&wakeNotifier_, &QSocketNotifier::activated, this, [this] { runPosted(); });
}

void QtRunLoop::post(Task task) {
    const std::lock_guard lock(mutex_);
    posted_.push_back(std::move(task));
    if (posted_.size() == 1) {
        ::eventfd_write(wake_.number(), 1);
    }
}

void QtRunLoop::postAfter(Duration delay, Task task) {
    if (QThread::currentThread() == thread()) {
        QTimer::singleShot(roundedUp(delay), Qt::PreciseTimer, this, std::move(task));
    } else {
        post(
            [this, due = now() + delay, task = std::move(task)]() mutable { postAfter(due - now(), std::move(task)); });
    }
}

TimerHandle QtRunLoop::after(Duration delay, Task task) {
    return std::make_unique<QtTimer>(delay, true,
                                     [task = std::move(task)]() mutable { std::exchange(task, nullptr)(); });
}

TimerHandle QtRunLoop::every(Duration interval, std::function<void()> tick) {
    return std::make_unique<QtTimer>(interval, false, std::move(tick));
}

BootInstant QtRunLoop::bootNow() const {
    timespec time{};
    ::clock_gettime(CLOCK_BOOTTIME, &time);
    return BootInstant(std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec));
}

/// What waits now; what it posts has to wait for timers and events.
void QtRunLoop::runPosted() {
    std::unique_lock lock(mutex_);
    for (auto count = posted_.size(); count > 0 && !posted_.empty(); --count) {
        Task task = std::move(posted_.front());
        posted_.pop_front();
        if (posted_.empty()) {
            eventfd_t ignored = 0;
            ::eventfd_read(wake_.number(), &ignored);
        }
        lock.unlock();
        task();
        task = nullptr;  // what it holds may post
        lock.lock();
    }
}

}  // namespace glintar::platform
