#pragma once

namespace glintar::platform {

/// Where something is among the X server's pixels, from the top left.
struct PixelPoint {
    int x = 0;
    int y = 0;
    bool operator==(const PixelPoint&) const = default;
};

}  // namespace glintar::platform
