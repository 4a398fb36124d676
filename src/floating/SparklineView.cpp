#include "floating/SparklineView.h"

#include "presenter/Sparkline.h"

namespace glintar::floating {

void SparklineView::draw(platform::Canvas& canvas, const platform::Rect& frame) const {
    constexpr double kLineWidth = 1.5;
    constexpr double kSmallestRange = 0.0001;
    if (const auto points = presenter::sparklinePoints(prices, frame, kSmallestRange); !points.empty()) {
        canvas.strokeLine(points, color, kLineWidth);
    }
}

}  // namespace glintar::floating
