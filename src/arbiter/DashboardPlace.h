#pragma once

#include "platform/Geometry.h"

#include <optional>

namespace glintar::arbiter {

/// The dashboard's size: what its content needs, and at most `screen` (without the desktop's panels) less 10 points on
/// every side.
[[nodiscard]] platform::Size dashboardSize(const platform::Size& fitting, const platform::Rect& screen);

/// Where it stands: centred under the anchor, 5 points below it, and 10 points away from the screen's edges but for the
/// top. It stands above an anchor that lies at the bottom edge, and in the middle without an anchor.
[[nodiscard]] platform::Rect dashboardFrame(const platform::Size& fitting, const std::optional<platform::Rect>& anchor,
                                            const platform::Rect& screen);

/// The frame with another size after the user has moved it: its top left corner stays, unless it would leave the
/// screen.
[[nodiscard]] platform::Rect resizedInPlace(const platform::Rect& frame, const platform::Size& fitting,
                                            const platform::Rect& screen);

}  // namespace glintar::arbiter
