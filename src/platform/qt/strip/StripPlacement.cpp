#include "platform/qt/strip/StripPlacement.h"

#include "platform/Preferences.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace glintar::platform {

namespace {

using Edge = StripPlace::Edge;
using Corner = StripPlace::Corner;

constexpr double kCornerCatches = 8;
constexpr std::array<std::string_view, 4> kEdges{"top", "bottom", "left", "right"};
constexpr std::array<std::string_view, 2> kCorners{"start", "end"};

bool isAlong(Edge edge) {
    return edge == Edge::Top || edge == Edge::Bottom;
}

/// The lower end of a line of that length, which lies in the area if it fits and ends at the area's end if not.
double held(double from, double length, double areaFrom, double areaLength) {
    return std::min(std::max(from, areaFrom), areaFrom + areaLength - length);
}

template <std::size_t n>
std::optional<std::size_t> indexOf(const std::array<std::string_view, n>& names,
                                   const std::optional<std::string>& name) {
    const auto found = name ? std::ranges::find(names, *name) : names.end();
    return found == names.end() ? std::nullopt : std::optional<std::size_t>(found - names.begin());
}

}  // namespace

Rect stripFrame(const StripPlace& place, const Size& strip, const Rect& area) {
    const bool isAtEnd = place.corner == Corner::End;
    Rect frame{area.x, area.y, strip.width, strip.height};
    switch (place.edge) {
        case Edge::Top:
        case Edge::Bottom:
            frame.x = isAtEnd ? area.right() - place.offset - strip.width : area.x + place.offset;
            frame.y = place.edge == Edge::Top ? area.top() - strip.height : area.y;
            break;
        case Edge::Left:
        case Edge::Right:
            frame.x = place.edge == Edge::Left ? area.x : area.right() - strip.width;
            frame.y = isAtEnd ? area.y + place.offset : area.top() - place.offset - strip.height;
            break;
    }
    frame.x = held(frame.x, strip.width, area.x, area.width);
    frame.y = held(frame.y, strip.height, area.y, area.height);
    return frame;
}

StripPlace nearestPlace(const Rect& held, const Rect& area) {
    const double left = held.x - area.x;
    const double right = area.right() - held.right();
    const double top = area.top() - held.top();
    const double bottom = held.y - area.y;
    const double along = std::min(top, bottom);

    StripPlace place;
    if (along <= held.height || along <= std::min(left, right)) {
        place.edge = top <= bottom ? Edge::Top : Edge::Bottom;
    } else {
        place.edge = left < right ? Edge::Left : Edge::Right;
    }
    const double start = isAlong(place.edge) ? left : top;
    const double end = isAlong(place.edge) ? right : bottom;
    place.corner = start < end ? Corner::Start : Corner::End;
    const double offset = std::min(start, end);
    place.offset = offset <= kCornerCatches ? 0 : offset;
    return place;
}

std::optional<StripPlace> loadPlace(const Preferences& preferences) {
    const auto edge = indexOf(kEdges, preferences.string("stripEdge"));
    const auto corner = indexOf(kCorners, preferences.string("stripCorner"));
    const double offset = preferences.real("stripOffset");
    if (!edge || !corner || !std::isfinite(offset)) {
        return {};
    }
    return StripPlace{.edge = static_cast<Edge>(*edge),
                      .corner = static_cast<Corner>(*corner),
                      .offset = std::max(offset, 0.0),
                      .screen = preferences.string("stripScreen").value_or("")};
}

void savePlace(Preferences& preferences, const StripPlace& place) {
    preferences.setString("stripEdge", kEdges.at(static_cast<std::size_t>(place.edge)));
    preferences.setString("stripCorner", kCorners.at(static_cast<std::size_t>(place.corner)));
    preferences.setReal("stripOffset", place.offset);
    if (place.screen.empty()) {
        preferences.remove("stripScreen");
    } else {
        preferences.setString("stripScreen", place.screen);
    }
}

}  // namespace glintar::platform
