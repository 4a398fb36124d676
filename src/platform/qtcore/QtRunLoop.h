#pragma once

#include "platform/RunLoop.h"
#include "platform/TimerQueue.h"
#include "platform/posix/Descriptor.h"

#include <QObject>
#include <QSocketNotifier>

#include <mutex>
#include <vector>

namespace glintar::platform {

/// The run loop on Qt's event loop; needs a QCoreApplication. All timers share one timer of Qt's, armed for the next
/// that is due.
class QtRunLoop final : public QObject, public RunLoop {
public:
    QtRunLoop();
    ~QtRunLoop() override;

    void post(Task task) override;
    void postAfter(Duration delay, Task task) override;
    TimerHandle after(Duration delay, Task task) override;
    TimerHandle every(Duration interval, std::function<void()> tick) override;
    Instant now() const override;
    BootInstant bootNow() const override;
    WallTime wallNow() const override;

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    void runPosted();
    void arm();

    TimerQueue timers_;
    int timerId_ = 0;
    std::optional<Instant> armedFor_;

    // Posts wake the loop through a descriptor of our own: cheaper than an event of Qt's, and ThreadSanitizer sees it.
    Descriptor wake_;
    QSocketNotifier wakeNotifier_;
    std::mutex mutex_;
    std::vector<Task> posted_;
};

}  // namespace glintar::platform
