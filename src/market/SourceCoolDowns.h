#pragma once

#include "platform/RunLoop.h"

#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace glintar::market {

/// Until when each source must not be asked, by source id. Any thread. On the clock that runs on during sleep, since
/// the service's own clock does too.
class SourceCoolDowns {
public:
    explicit SourceCoolDowns(const platform::RunLoop& runLoop) : runLoop_(runLoop) {}

    /// Starts one, or moves the end of the one under way.
    void start(std::string_view sourceId, platform::Duration duration) {
        const auto end = runLoop_.bootNow() + duration;
        const std::lock_guard lock(mutex_);
        ends_.insert_or_assign(std::string(sourceId), end);
    }

    /// What is left of it; none when it has ended or there was none.
    [[nodiscard]] std::optional<platform::Duration> remaining(std::string_view sourceId) const {
        const auto now = runLoop_.bootNow();
        const std::lock_guard lock(mutex_);
        const auto found = ends_.find(sourceId);
        return found != ends_.end() && found->second > now ? std::optional(found->second - now) : std::nullopt;
    }

private:
    const platform::RunLoop& runLoop_;
    mutable std::mutex mutex_;
    std::map<std::string, platform::BootInstant, std::less<>> ends_;
};

}  // namespace glintar::market
