#pragma once

#include "platform/Geometry.h"

#include <optional>

namespace glintar::platform {

/// The mouse pointer. Main thread only.
class Pointer {
public:
    virtual ~Pointer() = default;

    /// Where it is on screen; none while that is not known.
    [[nodiscard]] virtual std::optional<Point> position() = 0;

    /// False on desktops that tell a program where the pointer is only over its own windows. It never changes.
    [[nodiscard]] virtual bool isSeenEverywhere() const = 0;
};

}  // namespace glintar::platform
