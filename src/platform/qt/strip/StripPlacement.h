#pragma once

#include "platform/Geometry.h"

#include <optional>
#include <string>

namespace glintar::platform {

class Preferences;

/// Where on a screen the strip hangs: at an edge, and so far from one of the edge's corners. The end of the strip that
/// is nearer to that corner stays where it is when the strip grows and shrinks.
struct StripPlace {
    enum class Edge { Top, Bottom, Left, Right };
    enum class Corner { Start, End };  ///< the left one and the right one; at the sides the upper one and the lower one

    Edge edge = Edge::Top;
    Corner corner = Corner::End;
    double offset = 0;   ///< points, not below 0
    std::string screen;  ///< the name of its screen; the primary one, whichever that is, when empty
    bool operator==(const StripPlace&) const = default;
};

/// The strip's frame in the part of the screen that is free for windows. A strip that is too long for its place is
/// moved along; one that is wider than the whole area ends at its right end.
[[nodiscard]] Rect stripFrame(const StripPlace& place, const Size& strip, const Rect& area);

/// The place next to where the user holds the strip: at the nearest edge (close to the top and the bottom those, since
/// the strip lies along them), counted from the nearer corner, and in the corner when it nearly is. Its screen is left
/// empty.
[[nodiscard]] StripPlace nearestPlace(const Rect& held, const Rect& area);

/// Where the user left the strip: none when nowhere yet, or when what is stored makes no sense.
///
/// Kept under `stripEdge` ("top", "bottom", "left", "right"), `stripCorner` ("start", "end"), `stripOffset` (a number
/// of points) and `stripScreen` (absent for the primary screen).
[[nodiscard]] std::optional<StripPlace> loadPlace(const Preferences& preferences);
void savePlace(Preferences& preferences, const StripPlace& place);

}  // namespace glintar::platform
