#include "platform/posix/ThreadWorkQueue.h"

#include <system_error>

namespace glintar::platform {

void ThreadWorkQueue::end() {
    std::deque<Task> dropped;
    std::vector<std::thread> threads;
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
        dropped.swap(waiting_);
        threads.swap(threads_);
    }
    wake_.notify_all();
    for (auto& thread : threads) {
        thread.join();
    }
}

void ThreadWorkQueue::async(Task task) {
    std::unique_lock lock(mutex_);
    if (isEnding_) {
        return;
    }
    waiting_.push_back(std::move(task));
    if (waiting_.size() <= idle_ || threads_.size() >= maxThreads_) {
        wake_.notify_one();
        return;
    }
    try {
        threads_.emplace_back([this] { work(); });
    } catch (const std::system_error&) {
        if (!threads_.empty()) {
            return;  // those there are will come to it
        }
        // The machine has no thread left for us; work that is late is better than work that is lost.
        Task late = std::move(waiting_.back());
        waiting_.pop_back();
        lock.unlock();
        late();
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
