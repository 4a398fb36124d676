#pragma once

#include <algorithm>
#include <cmath>

namespace glintar::floating {

/// Lengths in points that are whole numbers of pixels, of which there are so many to a point.
class PixelGrid {
public:
    explicit PixelGrid(double scale) : scale_(scale) {}

    [[nodiscard]] double nearest(double length) const { return std::round(length * scale_) / scale_; }

    /// At least one pixel.
    [[nodiscard]] double line(double width) const { return std::max(nearest(width), pixel()); }

    /// No less than the length; what is beyond a pixel by the error of a sum does not count.
    [[nodiscard]] double covering(double length) const { return std::ceil(length * scale_ - 1e-6) / scale_; }

    [[nodiscard]] double pixel() const { return 1 / scale_; }

private:
    double scale_;
};

}  // namespace glintar::floating
