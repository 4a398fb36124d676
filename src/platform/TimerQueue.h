#pragma once

#include "platform/RunLoop.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace glintar::platform {

/// What a run loop has to do and when, in order of time and then of arrival. Knows no clock; one thread.
class TimerQueue {
public:
    using Key = std::pair<Instant, std::uint64_t>;

    TimerQueue();
    ~TimerQueue();

    void schedule(Instant due, Task task) { insert(due, std::move(task)); }

    /// Cancelled when the handle is destroyed; the handle may outlive the queue.
    [[nodiscard]] TimerHandle after(Instant due, Task task);
    [[nodiscard]] TimerHandle every(Instant firstDue, Duration interval, std::function<void()> tick);

    [[nodiscard]] std::optional<Instant> nextDue() const;
    [[nodiscard]] std::size_t size() const { return pending_->size(); }

    /// Takes out the first task if it is due by then. The caller runs it; it may change the queue. Of the ticks of one
    /// timer that are due at once, because the process was stopped or busy, only one runs.
    [[nodiscard]] std::optional<std::pair<Instant, Task>> takeDue(Instant now);

private:
    class Handle;
    struct Repeating;
    using Pending = std::map<Key, Task>;

    Key insert(Instant due, Task task);
    void insertTick(Instant due, const std::shared_ptr<Repeating>& timer);

    std::uint64_t nextOrder_ = 0;
    Instant now_;  ///< as it was told last
    std::shared_ptr<Pending> pending_;
};

}  // namespace glintar::platform
