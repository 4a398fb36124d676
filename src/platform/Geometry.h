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
