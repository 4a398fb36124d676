#pragma once

#include <curl/curl.h>

#include <functional>
#include <mutex>
#include <utility>
#include <vector>

namespace glintar::platform {

class CurlLoop;

/// Where other threads leave work for the HTTP thread, which they wake. Thread-safe.
class CurlInbox {
public:
    using Task = std::move_only_function<void(CurlLoop*)>;

    void post(Task task) {
        const std::scoped_lock lock(mutex_);
        tasks_.push_back(std::move(task));
        if (multi_ != nullptr) {
            curl_multi_wakeup(multi_);  // under the lock, so that the handle cannot go away meanwhile
        }
    }

    /// Everything that came in since the last call, in its order.
    [[nodiscard]] std::vector<Task> take() {
        const std::scoped_lock lock(mutex_);
        return std::exchange(tasks_, {});
    }

    /// Says what to wake; null when there is nothing (any more). Without it, tasks wait for the next `take`.
    void wake(CURLM* multi) {
        const std::scoped_lock lock(mutex_);
        multi_ = multi;
    }

private:
    std::mutex mutex_;
    std::vector<Task> tasks_;
    CURLM* multi_ = nullptr;
};

}  // namespace glintar::platform
