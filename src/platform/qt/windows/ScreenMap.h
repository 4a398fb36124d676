#pragma once

#include "platform/Geometry.h"
#include "platform/xcb/PixelPoint.h"

#include <xcb/xproto.h>

#include <vector>

namespace glintar::platform {

/// How the points of the screens lie among the pixels of the X server.
///
/// Qt keeps the top left corner of every screen where it is in pixels and makes only its size smaller. So there may be
/// gaps between the points of neighbouring screens; a place in a gap belongs to the nearest of them.
class ScreenMap {
public:
    /// As `QScreen` tells it: y grows downwards from the top left corner of the X server's picture.
    struct Screen {
        Point topLeft;  ///< in points as in pixels
        Size size;      ///< in points
        double scale = 1;
        bool operator==(const Screen&) const = default;
    };

    /// The first is the primary one. Without any a point is a pixel.
    explicit ScreenMap(std::vector<Screen> screens = {});

    [[nodiscard]] Point toPoints(PixelPoint pixel) const;
    [[nodiscard]] PixelPoint toPixels(const Point& point) const;

    /// Pixels to a point where that point is.
    [[nodiscard]] double scaleAt(const Point& point) const;

    /// What every screen has at least: Qt has rounded their sizes to whole points.
    [[nodiscard]] std::vector<xcb_rectangle_t> pixelFrames() const;

    bool operator==(const ScreenMap&) const = default;

private:
    [[nodiscard]] Point fromTopLeft(const Point& point) const;

    std::vector<Screen> screens_;  // at least one
};

}  // namespace glintar::platform
