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

    Key schedule(Instant due, Task task);

    /// Cancelled when the handle is destroyed; the handle may outlive the queue.
    [[nodiscard]] TimerHandle after(Instant due, Task task);
    [[nodiscard]] TimerHandle every(Instant firstDue, Duration interval, std::function<void()> tick);

    [[nodiscard]] std::optional<Instant> nextDue() const;
    [[nodiscard]] std::size_t size() const { return pending_->size(); }

    /// Takes out what `nextDue` told of. The caller runs it; it may change the queue.
    [[nodiscard]] Task takeNext() { return std::move(pending_->extract(pending_->begin()).mapped()); }

private:
    class Handle;
    struct Repeating;
    using Pending = std::map<Key, Task>;

    void scheduleTick(Instant due, const std::shared_ptr<Repeating>& timer);

    std::uint64_t nextOrder_ = 0;
    std::shared_ptr<Pending> pending_ = std::make_shared<Pending>();
};

}  // namespace glintar::platform
