#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

namespace glintar::platform {

/// Turns SIGINT, SIGTERM and SIGHUP into a call on the main thread; SIGPIPE is ignored, so that writing to a closed
/// pipe is an error like any other. One per process, made after the QCoreApplication.
class QtTermination {
public:
    explicit QtTermination(std::function<void()> onTerminate);
    ~QtTermination();

    /// The program ends for another reason; no signal is told any more.
    void announceEnd();

    /// Can be read from a signal or `announceEnd` on: for those who wait outside the loop.
    [[nodiscard]] int descriptor() const;

private:
    std::function<void()> onTerminate_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace glintar::platform
