#pragma once

#include "platform/Geometry.h"

#include <optional>

namespace glintar::platform {

/// The mouse pointer. Main thread only.
class Pointer {
public:
    virtual ~Pointer() = default;

    /// On screen; none where it cannot be seen just now.
    [[nodiscard]] virtual std::optional<Point> position() = 0;

    /// False on desktops that keep it from programs outside their own windows. Always the same.
    [[nodiscard]] virtual bool isSeenEverywhere() const = 0;
};

}  // namespace glintar::platform
