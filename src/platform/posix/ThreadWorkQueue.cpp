#include "platform/posix/ThreadWorkQueue.h"

namespace glintar::platform {

ThreadWorkQueue::~ThreadWorkQueue() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    wake_.notify_all();
    for (auto& thread : threads_) {
        thread.join();
    }
}

void ThreadWorkQueue::async(Task task) {
    const std::lock_guard lock(mutex_);
    if (isEnding_) {
        return;
    }
    waiting_.push_back(std::move(task));
    if (waiting_.size() > idle_ && threads_.size() < maxThreads_) {
        threads_.emplace_back([this] { work(); });
    } else {
        wake_.notify_one();
    }
}

void ThreadWorkQueue::asyncAfter(Duration delay, Task task) {
    runLoop_.postAfter(delay, [this, task = std::move(task)]() mutable { async(std::move(task)); });
}

void ThreadWorkQueue::work() {
    std::unique_lock lock(mutex_);
    while (true) {
        ++idle_;
        wake_.wait(lock, [this] { return isEnding_ || !waiting_.empty(); });
        --idle_;
        if (isEnding_) {
            return;
        }
        Task task = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        task();
        task = nullptr;  // what it holds is let go outside the lock
        lock.lock();
    }
}

}  // namespace glintar::platform
