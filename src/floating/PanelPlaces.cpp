#include "floating/PanelPlaces.h"

#include "config/Settings.h"
#include "platform/Preferences.h"

#include <algorithm>
#include <cmath>

namespace glintar::floating {

namespace {

constexpr double kPointerSize = 12;
constexpr double kDefaultOffset = 16;
constexpr double kLargestOffset = 100'000;  // beyond all screens
constexpr double kDistanceFromBar = 4;

}  // namespace

double readOffset(const platform::Preferences& preferences) {
    const double offset = preferences.real(config::kFloatOffset);
    return offset != 0 && std::isfinite(offset) ? std::clamp(offset, -kLargestOffset, kLargestOffset) : kDefaultOffset;
}

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
