#include "arbiter/DashboardPlace.h"

#include <algorithm>

namespace glintar::arbiter {

namespace {

using platform::Rect;
using platform::Size;

constexpr double kMargin = 10;
constexpr double kDistance = 5;

double atMostRight(double x, double width, const Rect& screen) {
    x = std::max(x, screen.x + kMargin);
    return std::min(x, screen.right() - kMargin - width);
}

}  // namespace

Size dashboardSize(const Size& fitting, const Rect& screen) {
    return {std::min(fitting.width, screen.width - 2 * kMargin), std::min(fitting.height, screen.height - 2 * kMargin)};
}

Rect dashboardFrame(const Size& fitting, const std::optional<Rect>& anchor, const Rect& screen) {
    const auto [width, height] = dashboardSize(fitting, screen);
    if (!anchor) {
        return {screen.x + (screen.width - width) / 2, screen.y + (screen.height - height) / 2, width, height};
    }
    const double x = atMostRight(anchor->x - width * 0.5 + anchor->width * 0.5, width, screen);
    const double lowest = screen.y + kMargin;
    const bool isAtBottom = anchor->y - kDistance <= lowest;
    const double y = isAtBottom ? anchor->top() + kDistance : anchor->y - height - kDistance;
    return {x, isAtBottom ? std::min(y, screen.top() - kMargin - height) : std::max(y, lowest), width, height};
}

Rect resizedInPlace(const Rect& frame, const Size& fitting, const Rect& screen) {
    const auto [width, height] = dashboardSize(fitting, screen);
    const double top = std::min(frame.top(), screen.top() - kMargin);
    return {atMostRight(frame.x, width, screen), std::max(top - height, screen.y + kMargin), width, height};
}

}  // namespace glintar::arbiter
