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

    /// With date and offset, by RFC 3339: "2026-03-01T14:58:56+01:00".
    [[nodiscard]] virtual std::string timestamp(WallTime time) const = 0;
};

}  // namespace glintar::platform
