#pragma once

#include "platform/RunLoop.h"

#include <cstdint>
#include <optional>

namespace glintar::floating {

/// The ring that empties towards the next refresh. Once a second it looks how much of the interval is left, and moves
/// there evenly within the next second, so that a steady countdown looks continuous and a refill can be followed by the
/// eye. It moves by whole pixels of its circumference, and knows when the next of them is due, so that it costs nothing
/// while it looks the same. It has no timer of its own, and may be asked at any time.
class CountdownRing {
public:
    static constexpr double kDiameter = 18;  ///< points, of the middle of the line
    static constexpr double kLineWidth = 2;

    /// Full until the first look, a second after `start`.
    explicit CountdownRing(platform::Instant start) : start_(start), due_(start) {}

    /// Counts from the first look after `now`; `interval` lies between two refreshes.
    void setNextRefresh(platform::Instant now, platform::Instant due, platform::Seconds interval);

    /// How much of the ring is there, from 0 to 1. No question goes back behind the last `setNextRefresh`.
    [[nodiscard]] double progress(platform::Instant now) const;

    /// The progress as it is drawn with so many pixels to a point; nothing only when nothing is left.
    [[nodiscard]] static double shownProgress(double progress, double scale);

    /// How long to wait until the ring looks different, but not so briefly that it would be drawn more than fifty times
    /// a second; none when it stays as it is until the next refresh is set.
    [[nodiscard]] std::optional<platform::Duration> unchangedFor(platform::Instant now, double scale) const;

private:
    /// Between two looks.
    struct Movement {
        double from = 1;
        double to = 1;
    };

    [[nodiscard]] std::int64_t looksUntil(platform::Instant time) const;
    [[nodiscard]] Movement movementAfter(std::int64_t look) const;
    [[nodiscard]] double seenAt(std::int64_t look) const;

    platform::Instant start_;
    platform::Instant due_;
    platform::Seconds interval_{60.0};
    std::int64_t look_ = 0;  ///< the one before the last `setNextRefresh`
    Movement movement_;      ///< after it
};

}  // namespace glintar::floating
