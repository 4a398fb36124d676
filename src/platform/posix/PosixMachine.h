#pragma once

#include "platform/Machine.h"

namespace glintar::platform {

/// Random bytes from the kernel.
class KernelEntropy final : public Entropy {
public:
    void fill(std::span<std::byte> bytes) override;
};

/// The time zone of TZ or of the machine, read anew each time.
class ZoneLocalTime final : public LocalTime {
public:
    std::string clockText(WallTime time) const override;
    std::string timestamp(WallTime time) const override;
};

}  // namespace glintar::platform
