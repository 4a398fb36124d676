#pragma once

#include "platform/Geometry.h"

#include <optional>

namespace glintar::platform {

/// The mouse pointer. Main thread only.
class Pointer {
public:
    virtual ~Pointer() = default;

    /// On screen; none on desktops that keep it from programs outside their own windows.
    [[nodiscard]] virtual std::optional<Point> position() = 0;
};

}  // namespace glintar::platform
