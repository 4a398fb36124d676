#include "platform/qt/windows/ScreenMap.h"

#include <algorithm>
#include <cmath>

namespace glintar::platform {

namespace {

double outside(double value, double from, double length) {
    return std::max({from - value, value - from - length, 0.0});
}

/// Of two screens that touch, the one whose first row or column it is comes first.
double distance(const Point& place, const Point& topLeft, const Size& size) {
    const bool isInside = place.x >= topLeft.x && place.x < topLeft.x + size.width &&  //
                          place.y >= topLeft.y && place.y < topLeft.y + size.height;
    return isInside ? -1
                    : std::hypot(outside(place.x, topLeft.x, size.width), outside(place.y, topLeft.y, size.height));
}

const ScreenMap::Screen& nearestInPoints(const std::vector<ScreenMap::Screen>& screens, const Point& place) {
    return *std::ranges::min_element(screens, {},
                                     [&](const auto& screen) { return distance(place, screen.topLeft, screen.size); });
}

const ScreenMap::Screen& nearestInPixels(const std::vector<ScreenMap::Screen>& screens, const Point& place) {
    return *std::ranges::min_element(screens, {}, [&](const auto& screen) {
        // Qt has rounded the size to whole points: rounded down, no pixel of the next screen is taken for one of this.
        return distance(place, screen.topLeft,
                        {std::floor(screen.size.width * screen.scale), std::floor(screen.size.height * screen.scale)});
    });
}

/// As far as the X server counts, whatever the points are.
int pixelOf(double value) {
    constexpr double kFarthest = 32767;
    return std::isnan(value) ? 0 : static_cast<int>(std::lround(std::clamp(value, -kFarthest, kFarthest)));
}

}  // namespace

ScreenMap::ScreenMap(std::vector<Screen> screens) : screens_(std::move(screens)) {
    if (screens_.empty()) {
        screens_.emplace_back();
    }
}

Point ScreenMap::toPoints(PixelPoint pixel) const {
    const Screen& screen = nearestInPixels(screens_, {double(pixel.x), double(pixel.y)});
    const Screen& primary = screens_.front();
    const double x = screen.topLeft.x + (pixel.x - screen.topLeft.x) / screen.scale;
    const double y = screen.topLeft.y + (pixel.y - screen.topLeft.y) / screen.scale;
    return {x - primary.topLeft.x, primary.topLeft.y + primary.size.height - y};
}

PixelPoint ScreenMap::toPixels(const Point& point) const {
    const Point place = fromTopLeft(point);
    const Screen& screen = nearestInPoints(screens_, place);
    return {pixelOf(screen.topLeft.x + (place.x - screen.topLeft.x) * screen.scale),
            pixelOf(screen.topLeft.y + (place.y - screen.topLeft.y) * screen.scale)};
}

double ScreenMap::scaleAt(const Point& point) const {
    return nearestInPoints(screens_, fromTopLeft(point)).scale;
}

std::vector<xcb_rectangle_t> ScreenMap::pixelFrames() const {
    std::vector<xcb_rectangle_t> frames;
    for (const Screen& screen : screens_) {
        const auto pixels = [&](double points) {
            const double atLeast = screen.scale == 1 ? points : std::floor((points - 0.5) * screen.scale);
            return static_cast<std::uint16_t>(std::max(0, pixelOf(atLeast)));
        };
        frames.push_back({static_cast<std::int16_t>(pixelOf(screen.topLeft.x)),
                          static_cast<std::int16_t>(pixelOf(screen.topLeft.y)), pixels(screen.size.width),
                          pixels(screen.size.height)});
    }
    return frames;
}

Point ScreenMap::fromTopLeft(const Point& point) const {
    const Screen& primary = screens_.front();
    return {point.x + primary.topLeft.x, primary.topLeft.y + primary.size.height - point.y};
}

}  // namespace glintar::platform
