#pragma once

#include "platform/xcb/Pixels.h"
#include "platform/xcb/XcbConnection.h"

#include <optional>

namespace glintar::platform {

/// Asks the X server where the pointer is.
class XcbPointer {
public:
    explicit XcbPointer(XcbConnection& connection);

    /// False where the X server is a guest of Wayland's and hears of the pointer over its own windows only.
    [[nodiscard]] bool isSeenEverywhere() const { return isSeenEverywhere_; }

    /// One round trip. None while the pointer is on another screen of the server's.
    [[nodiscard]] std::optional<PixelPoint> position();

private:
    XcbConnection& connection_;
    bool isSeenEverywhere_;
};

}  // namespace glintar::platform
