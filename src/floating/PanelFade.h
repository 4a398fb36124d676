#pragma once

#include "platform/Geometry.h"

#include <cstdint>

namespace glintar::floating {

/// How opaque the panel is. It is wholly opaque until the pointer has been still for ten seconds, fades away within 0.4
/// seconds, and is back as soon as the pointer moves. It knows no clock: it counts looks, of which there are fifty a
/// second.
class PanelFade {
public:
    /// One look. True when the pointer has moved since the last one.
    bool look(const platform::Point& pointer);

    /// Whether a look would find that the pointer has moved.
    [[nodiscard]] bool isElsewhere(const platform::Point& pointer) const { return pointer != lastMouseLocation_; }

    /// Wholly opaque, however long the pointer has been still.
    void restore() { alpha_ = 1; }

    [[nodiscard]] double alpha() const { return alpha_; }
    [[nodiscard]] bool isComplete() const { return alpha_ <= 0; }

private:
    platform::Point lastMouseLocation_;
    std::int64_t idleCounter_ = 0;  ///< looks in a row that found the pointer where it was
    double alpha_ = 1;
};

}  // namespace glintar::floating
