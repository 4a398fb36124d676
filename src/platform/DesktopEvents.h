#pragma once

#include "platform/Graphics.h"

#include <string_view>

namespace glintar::platform {

// What happens to the machine and its desktop, as notices of the notification centre. They tell that something is so,
// not how often: the same one may come twice.

/// `DesktopEvents::appearance` answers differently, or the desktop has another font: whatever was drawn or measured by
/// them may look different.
inline constexpr std::string_view kAppearanceChanged = "AppearanceChanged";

/// The user turned to another program.
inline constexpr std::string_view kActiveApplicationChanged = "ActiveApplicationChanged";

/// The machine woke from sleep.
inline constexpr std::string_view kMachineResumed = "MachineResumed";

/// There is a way to other machines again.
inline constexpr std::string_view kNetworkCameBack = "NetworkCameBack";

/// What the desktop looks like now. Main thread only.
class DesktopEvents {
public:
    virtual ~DesktopEvents() = default;
    [[nodiscard]] virtual Appearance appearance() const = 0;
};

}  // namespace glintar::platform
