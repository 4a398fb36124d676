#pragma once

#include "platform/Geometry.h"

namespace glintar::floating {

// Both give the bottom left corner of a panel of that size.

/// To the right of the pointer and below it. Near the right or the bottom edge of the screen the panel runs off the
/// screen.
[[nodiscard]] platform::Point placeBesidePointer(const platform::Point& pointer, double offset,
                                                 const platform::Size& panel);

/// Below the right end of the status bar, or above it where the screen that the bar is on ends too soon. It begins on
/// that screen.
[[nodiscard]] platform::Point placeBesideBar(const platform::Rect& bar, const platform::Rect& screen,
                                             const platform::Size& panel);

}  // namespace glintar::floating
