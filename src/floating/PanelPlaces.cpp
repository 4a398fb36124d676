#include "floating/PanelPlaces.h"

#include <algorithm>

namespace glintar::floating {

namespace {

constexpr double kPointerSize = 12;
constexpr double kDistanceFromBar = 4;

}  // namespace

platform::Point placeBesidePointer(const platform::Point& pointer, double offset, const platform::Size& panel) {
    const double distance = offset + kPointerSize;
    return {pointer.x + distance, pointer.y - panel.height - distance};
}

platform::Point placeBesideBar(const platform::Rect& bar, const platform::Rect& screen, const platform::Size& panel) {
    const double x = std::max(bar.right() - panel.width, screen.x);
    const double below = bar.y - kDistanceFromBar - panel.height;
    return {x, below < screen.y ? bar.top() + kDistanceFromBar : below};
}

}  // namespace glintar::floating
