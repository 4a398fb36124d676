#pragma once

#include "platform/Geometry.h"

#include <span>
#include <vector>

namespace glintar::presenter {

/// How high each value stands between the lowest (0) and the highest (1). Values that are not finite are left out;
/// nothing for fewer than two. Values that lie less than `smallestRange` apart do not reach the top, equal ones are 0.
[[nodiscard]] std::vector<double> sparklineHeights(std::span<const double> values, double smallestRange = 0);

/// The line through the values: the first at the left edge, the last at the right, the highest at the top.
[[nodiscard]] std::vector<platform::Point> sparklinePoints(std::span<const double> values, const platform::Rect& frame,
                                                           double smallestRange = 0);

}  // namespace glintar::presenter
