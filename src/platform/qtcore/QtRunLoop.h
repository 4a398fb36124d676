#pragma once

#include "platform/RunLoop.h"
#include "platform/TimerQueue.h"

#include <QObject>

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
    bool event(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    void runPosted();
    void arm();

    TimerQueue timers_;
    int timerId_ = 0;
    std::optional<Instant> armedFor_;

    std::mutex mutex_;
    std::vector<Task> posted_;
};

}  // namespace glintar::platform
