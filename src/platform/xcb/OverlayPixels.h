#pragma once

#include "platform/xcb/XcbOverlay.h"

namespace glintar::platform {

/// The runs of pixels that are at least half opaque, rows one below the other that are alike joined.
[[nodiscard]] std::vector<xcb_rectangle_t> opaqueParts(const XcbOverlay::Pixels& pixels);

/// The colours of the pixels without their transparency.
[[nodiscard]] std::vector<std::uint32_t> madeOpaque(std::span<const std::uint32_t> argb);

}  // namespace glintar::platform
