#pragma once

#include "platform/RunLoop.h"
#include "platform/posix/Descriptor.h"

#include <QObject>
#include <QSocketNotifier>

#include <deque>
#include <mutex>

namespace glintar::platform {

/// The run loop on Qt's event loop; needs a QCoreApplication. Everything goes on in event loops inside a task, such as
/// that of a dialog.
class QtRunLoop final : public QObject, public RunLoop {
public:
    QtRunLoop();

    void post(Task task) override;
    void postAfter(Duration delay, Task task) override;
    TimerHandle after(Duration delay, Task task) override;
    TimerHandle every(Duration interval, std::function<void()> tick) override;
    Instant now() const override { return std::chrono::steady_clock::now(); }
    BootInstant bootNow() const override;
    WallTime wallNow() const override { return std::chrono::system_clock::now(); }

private:
    void runPosted();

    // Posts wake the loop through a descriptor of our own: cheaper than an event of Qt's, and ThreadSanitizer sees it.
    // It can be read as long as a task waits.
    Descriptor wake_;
    QSocketNotifier wakeNotifier_;
    std::mutex mutex_;
    std::deque<Task> posted_;
};

}  // namespace glintar::platform
