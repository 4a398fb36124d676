#pragma once

namespace glintar::platform {

// Lengths in points, which are device-independent pixels. The origin is at the bottom left, y grows upwards; on screen
// it is the bottom left corner of the primary screen.

struct Point {
    double x = 0;
    double y = 0;
    bool operator==(const Point&) const = default;
};

struct Size {
    double width = 0;
    double height = 0;
    bool operator==(const Size&) const = default;
};

/// The largest size of the same proportions that fits into the box; none if it has no proportions.
[[nodiscard]] constexpr Size fittedSize(const Size& size, const Size& box) {
    if (!(size.width > 0) || !(size.height > 0)) {
        return {};
    }
    const double across = box.width / size.width;
    const double up = box.height / size.height;
    const double factor = across < up ? across : up;
    return {size.width * factor, size.height * factor};
}

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    bool operator==(const Rect&) const = default;

    [[nodiscard]] Point origin() const { return {x, y}; }
    [[nodiscard]] Size size() const { return {width, height}; }
    [[nodiscard]] double right() const { return x + width; }
    [[nodiscard]] double top() const { return y + height; }
};

}  // namespace glintar::platform
