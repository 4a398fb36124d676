#pragma once

#include "platform/RunLoop.h"

namespace glintar::floating::ring {

// The ring that empties towards the next refresh. It moves by whole pixels of its circumference, so that it costs
// nothing while it looks the same.

inline constexpr double kDiameter = 18;  ///< points, its line included
inline constexpr double kLineWidth = 2;
inline constexpr double kRadius = (kDiameter - kLineWidth) / 2;  ///< of the middle of the line

/// Of the interval, from 0 (due) to 1.
[[nodiscard]] double timeProgress(platform::Seconds remaining, platform::Seconds interval);

/// The progress as it is drawn with so many pixels to a point; empty only when the refresh is due.
[[nodiscard]] double shownProgress(double progress, double scale);

/// How long the ring will look the same; none is left when it is empty.
[[nodiscard]] platform::Seconds unchangedFor(platform::Seconds remaining, platform::Seconds interval, double scale);

}  // namespace glintar::floating::ring
