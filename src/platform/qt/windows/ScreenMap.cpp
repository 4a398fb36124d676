#include "platform/qt/windows/ScreenMap.h"

#include <algorithm>
#include <cmath>

namespace glintar::platform {

namespace {

double outside(double value, double from, double length) {
    return std::max({from - value, value - from - length, 0.0});
}

/// Of two screens that touch, the one whose first row or column it is comes first.
double distance(const QPointF& place, const QPointF& topLeft, const QSizeF& size) {
    const bool isInside = place.x() >= topLeft.x() && place.x() < topLeft.x() + size.width() &&  //
                          place.y() >= topLeft.y() && place.y() < topLeft.y() + size.height();
    return isInside ? -1
                    : std::hypot(outside(place.x(), topLeft.x(), size.width()),
                                 outside(place.y(), topLeft.y(), size.height()));
}

const ScreenMap::Screen& nearestInPixels(const std::vector<ScreenMap::Screen>& screens, const QPointF& place) {
    return *std::ranges::min_element(screens, {}, [&](const auto& screen) {
        // Qt has rounded the size to whole points: rounded down, no pixel of the next screen is taken for one of this.
        return distance(
            place, screen.frame.topLeft(),
            {std::floor(screen.frame.width() * screen.scale), std::floor(screen.frame.height() * screen.scale)});
    });
}

QPointF pointsOf(const ScreenMap::Screen& screen, const QPointF& pixels) {
    const QPointF corner = screen.frame.topLeft();
    return corner + (pixels - corner) / screen.scale;
}

/// As far as the X server counts, whatever the points are.
int pixelOf(double value) {
    constexpr double kFarthest = 32767;
    return std::isnan(value) ? 0 : static_cast<int>(std::lround(std::clamp(value, -kFarthest, kFarthest)));
}

/// Where we begin to count, as Qt counts.
QPointF originOf(const ScreenMap::Screen& primary) {
    const QRectF frame = primary.frame;
    return frame.bottomLeft();
}

}  // namespace

Rect freeArea(const Rect& screen, const Rect& workArea) {
    const double x = std::max(screen.x, workArea.x);
    const double y = std::max(screen.y, workArea.y);
    const Rect common{x, y, std::min(screen.right(), workArea.right()) - x, std::min(screen.top(), workArea.top()) - y};
    constexpr double kLeast = 0.75;
    const bool isPlausible = common.width >= kLeast * screen.width && common.height >= kLeast * screen.height;
    return isPlausible ? common : screen;
}

ScreenMap::ScreenMap(std::vector<Screen> screens) : screens_(std::move(screens)) {
    if (screens_.empty()) {
        screens_.emplace_back();
    }
}

Point ScreenMap::toPoints(PixelPoint pixel) const {
    const QPointF place(pixel.x, pixel.y);
    return fromQt(pointsOf(nearestInPixels(screens_, place), place));
}

PixelPoint ScreenMap::toPixels(const Point& point) const {
    const Screen& screen = screenAt(point);
    const QPointF corner = screen.frame.topLeft();
    const QPointF pixels = corner + (toQt(point) - corner) * screen.scale;
    return {pixelOf(pixels.x()), pixelOf(pixels.y())};
}

Rect ScreenMap::toPoints(const PixelArea& area, const Screen& screen) const {
    const Point topLeft = fromQt(pointsOf(screen, QPointF(area.x, area.y)));
    const Size size{area.width / screen.scale, area.height / screen.scale};
    return {topLeft.x, topLeft.y - size.height, size.width, size.height};
}

Rect ScreenMap::fromQt(const QRect& rect) const {
    const Point bottomLeft = fromQt(QPointF(rect.x(), rect.y() + rect.height()));
    return {bottomLeft.x, bottomLeft.y, double(rect.width()), double(rect.height())};
}

QRect ScreenMap::toQt(const Rect& rect) const {
    const QPointF topLeft = toQt(Point{rect.x, rect.top()});
    const auto whole = [](double value) { return static_cast<int>(std::lround(value)); };
    return {whole(topLeft.x()), whole(topLeft.y()), whole(rect.width), whole(rect.height)};
}

const ScreenMap::Screen& ScreenMap::screenAt(const Point& point) const {
    const QPointF place = toQt(point);
    return *std::ranges::min_element(screens_, {}, [&](const Screen& screen) {
        return distance(place, screen.frame.topLeft(), screen.frame.size());
    });
}

const ScreenMap::Screen& ScreenMap::screenNamed(std::string_view name) const {
    const auto named = std::ranges::find(screens_, name, &Screen::name);
    return named == screens_.end() ? screens_.front() : *named;
}

std::vector<xcb_rectangle_t> ScreenMap::pixelFrames() const {
    std::vector<xcb_rectangle_t> frames;
    for (const Screen& screen : screens_) {
        const auto pixels = [&](int points) {
            const double atLeast = screen.scale == 1 ? points : std::floor((points - 0.5) * screen.scale);
            return static_cast<std::uint16_t>(std::max(0, pixelOf(atLeast)));
        };
        frames.push_back({static_cast<std::int16_t>(pixelOf(screen.frame.x())),
                          static_cast<std::int16_t>(pixelOf(screen.frame.y())), pixels(screen.frame.width()),
                          pixels(screen.frame.height())});
    }
    return frames;
}

Point ScreenMap::fromQt(const QPointF& place) const {
    const QPointF origin = originOf(screens_.front());
    return {place.x() - origin.x(), origin.y() - place.y()};
}

QPointF ScreenMap::toQt(const Point& point) const {
    const QPointF origin = originOf(screens_.front());
    return {point.x + origin.x(), origin.y() - point.y};
}

}  // namespace glintar::platform
