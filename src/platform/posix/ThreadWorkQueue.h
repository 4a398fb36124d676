#pragma once

#include "platform/WorkQueue.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace glintar::platform {

/// Runs work on at most `maxThreads` threads. A thread starts when there is work and no other is free, and sleeps while
/// there is none.
class ThreadWorkQueue final : public WorkQueue {
public:
    /// `runLoop` tells when delayed work is due.
    ThreadWorkQueue(RunLoop& runLoop, std::size_t maxThreads) : runLoop_(runLoop), maxThreads_(maxThreads) {}
    ~ThreadWorkQueue() override { end(); }

    /// Waits for the tasks under way. Drops those that wait, and all that come later.
    void end();

    void async(Task task) override;
    void asyncAfter(Duration delay, Task task) override;

private:
    void work();

    RunLoop& runLoop_;
    const std::size_t maxThreads_;
    std::mutex mutex_;
    std::condition_variable wake_;
    std::deque<Task> waiting_;
    std::size_t idle_ = 0;
    bool isEnding_ = false;
    std::vector<std::thread> threads_;
};

}  // namespace glintar::platform
