#pragma once

namespace glintar::platform {

// The X server's pixels, from the top left.

struct PixelPoint {
    int x = 0;
    int y = 0;
    bool operator==(const PixelPoint&) const = default;
};

struct PixelArea {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    bool operator==(const PixelArea&) const = default;
};

}  // namespace glintar::platform
