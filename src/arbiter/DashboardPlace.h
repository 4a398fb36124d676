#pragma once

#include "platform/Geometry.h"

#include <optional>

namespace glintar::arbiter {

/// The dashboard's size where the screen without the desktop's panels is `screen`: less 10 points on every side.
[[nodiscard]] platform::Size dashboardSize(const platform::Size& fitting, const platform::Rect& screen);

/// Where it stands: centred under the anchor, 5 points below, and 10 points away from the screen's edges but for the
/// top; above an anchor that has nothing but the edge beneath it; without an anchor in the middle.
[[nodiscard]] platform::Rect dashboardFrame(const platform::Size& fitting, const std::optional<platform::Rect>& anchor,
                                            const platform::Rect& screen);

/// The frame with another size after the user has moved it: its top left corner stays, unless it would leave the
/// screen.
[[nodiscard]] platform::Rect resizedInPlace(const platform::Rect& frame, const platform::Size& fitting,
                                            const platform::Rect& screen);

}  // namespace glintar::arbiter
