#pragma once

#include "platform/Geometry.h"

#include <QRect>

namespace glintar::platform {

/// Between Qt's rectangles on screen, where y grows downwards, and ours, which count from the bottom left corner of the
/// primary screen. Needs a screen.
[[nodiscard]] Rect fromQt(const QRect& rect);
[[nodiscard]] QRect toQt(const Rect& rect);

}  // namespace glintar::platform
