#pragma once

#include "platform/Graphics.h"

#include <string_view>

namespace glintar::platform {

// What happens to the machine and its desktop, as notices of the notification centre. The same notice may come twice
// for one event.

/// `DesktopEvents::appearance` has changed, or the desktop's font: what was drawn or measured may look different now.
inline constexpr std::string_view kAppearanceChanged = "AppearanceChanged";

/// The user turned to another program.
inline constexpr std::string_view kActiveApplicationChanged = "ActiveApplicationChanged";

/// The machine woke from sleep.
inline constexpr std::string_view kMachineResumed = "MachineResumed";

/// The network can be used again, or is another one.
inline constexpr std::string_view kNetworkCameBack = "NetworkCameBack";

/// What the desktop looks like now. Main thread only.
class DesktopEvents {
public:
    virtual ~DesktopEvents() = default;
    [[nodiscard]] virtual Appearance appearance() const = 0;
};

}  // namespace glintar::platform
