#pragma once

#include "platform/Geometry.h"
#include "platform/xcb/Pixels.h"

#include <QPointF>
#include <QRect>
#include <xcb/xproto.h>

#include <string>
#include <string_view>
#include <vector>

namespace glintar::platform {

/// How places on the screens are counted: by us, in points from the bottom left corner of the primary screen, upwards;
/// by Qt, in points from the top left, downwards; by the X server, in pixels from the top left.
///
/// Qt keeps the top left corner of every screen where it is in pixels and makes only its size smaller. So there may be
/// gaps between the points of neighbouring screens; a place in a gap belongs to the nearest of them.
class ScreenMap {
public:
    /// As `QScreen` tells it.
    struct Screen {
        QRect frame;         ///< its corner is that in pixels too
        QRect available;     ///< what panels leave of it, which Qt tells right for a screen that is the only one
        double scale = 1;    ///< pixels to a point
        std::string name{};  ///< such as "HDMI-1"
        bool operator==(const Screen&) const = default;
    };

    /// The first is the primary one. Without any a point is a pixel.
    explicit ScreenMap(std::vector<Screen> screens = {});

    [[nodiscard]] Point toPoints(PixelPoint pixel) const;
    [[nodiscard]] PixelPoint toPixels(const Point& point) const;

    /// All of it in the points of one screen, beyond its edges too.
    [[nodiscard]] Rect toPoints(const PixelArea& area, const Screen& screen) const;

    [[nodiscard]] Rect fromQt(const QRect& rect) const;
    [[nodiscard]] QRect toQt(const Rect& rect) const;

    [[nodiscard]] const Screen& screenAt(const Point& point) const;

    /// The primary one where there is none of that name.
    [[nodiscard]] const Screen& screenNamed(std::string_view name) const;
    [[nodiscard]] bool isPrimary(const Screen& screen) const { return screen == screens_.front(); }

    /// What every screen has at least: Qt has rounded their sizes to whole points.
    [[nodiscard]] std::vector<xcb_rectangle_t> pixelFrames() const;

    bool operator==(const ScreenMap&) const = default;

private:
    [[nodiscard]] Point fromQt(const QPointF& place) const;
    [[nodiscard]] QPointF toQt(const Point& point) const;

    std::vector<Screen> screens_;  // at least one
};

/// What is free of a screen, if `workArea` is what panels leave of all screens together. (Qt tells it right for a
/// screen that is the only one.) What takes more than a quarter of the screen away is no panel but the size of another
/// screen, and does not count.
[[nodiscard]] Rect freeArea(const Rect& screen, const Rect& workArea);

}  // namespace glintar::platform
