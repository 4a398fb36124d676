#include "floating/SparklineView.h"

#include <algorithm>

namespace glintar::floating {

void SparklineView::draw(platform::Canvas& canvas, const platform::Rect& frame) const {
    constexpr double kLineWidth = 1.5;
    constexpr double kSmallestRange = 0.0001;
    if (prices.size() < 2) {
        return;
    }
    const auto [lowest, highest] = std::ranges::minmax(prices);
    // In halves, since the range itself may be beyond double.
    const double halfRange = std::max(highest / 2 - lowest / 2, kSmallestRange / 2);
    const double step = frame.width / static_cast<double>(prices.size() - 1);
    std::vector<platform::Point> points;
    points.reserve(prices.size());
    for (const double price : prices) {
        points.push_back({frame.x + step * static_cast<double>(points.size()),
                          frame.y + (price / 2 - lowest / 2) / halfRange * frame.height});
    }
    canvas.strokeLine(points, color, kLineWidth);
}

}  // namespace glintar::floating
