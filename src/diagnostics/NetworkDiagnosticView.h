#pragma once

#include "diagnostics/NetworkDiagnosticManager.h"
#include "platform/Window.h"

#include <memory>

namespace glintar::platform {
struct Desktop;
}

namespace glintar::diagnostics {

/// The services with their states, the button that starts a run and the one that copies the table. It follows the
/// desktop's appearance.
[[nodiscard]] std::unique_ptr<platform::View> makeNetworkDiagnosticView(platform::Platform& platform,
                                                                        platform::Desktop& desktop,
                                                                        NetworkDiagnosticManager& manager);

}  // namespace glintar::diagnostics
