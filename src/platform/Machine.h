#pragma once

#include "platform/RunLoop.h"

#include <cstddef>
#include <span>
#include <string>

namespace glintar::platform {

/// Random bytes, for identifiers.
class Entropy {
public:
    virtual ~Entropy() = default;
    virtual void fill(std::span<std::byte> bytes) = 0;
};

/// Wall time as the user reads it.
class LocalTime {
public:
    virtual ~LocalTime() = default;

    /// "HH:mm:ss" in the user's time zone.
    [[nodiscard]] virtual std::string clockText(WallTime time) const = 0;
};

}  // namespace glintar::platform
