#include "presenter/Sparkline.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace glintar::presenter {

std::vector<double> sparklineHeights(std::span<const double> values, double smallestRange) {
    std::vector<double> heights;
    std::ranges::copy_if(values, std::back_inserter(heights), [](double value) { return std::isfinite(value); });
    if (heights.size() < 2) {
        return {};
    }
    const auto [low, high] = std::ranges::minmax(heights);
    // Halves, or the range of two huge values of opposite sign would be infinite.
    const double halfRange = std::max(high / 2 - low / 2, smallestRange / 2);
    for (double& height : heights) {
        height = halfRange > 0 ? (height / 2 - low / 2) / halfRange : 0;
    }
    return heights;
}

std::vector<platform::Point> sparklinePoints(std::span<const double> values, const platform::Rect& frame,
                                             double smallestRange) {
    std::vector<platform::Point> points;
    const auto heights = sparklineHeights(values, smallestRange);
    for (const double height : heights) {
        const double share = static_cast<double>(points.size()) / static_cast<double>(heights.size() - 1);
        points.push_back({frame.x + share * frame.width, frame.y + height * frame.height});
    }
    return points;
}

}  // namespace glintar::presenter
