#pragma once

#include "diagnostics/NetworkDiagnosticManager.h"
#include "platform/Window.h"

#include <memory>

namespace glintar::platform {
struct Desktop;
struct Platform;
}  // namespace glintar::platform

namespace glintar::diagnostics {

/// Owns the window "Network Diagnostics" while there is one. Closing it ends its run and drops it. Main thread only.
class DiagnosticsWindowController {
public:
    using MakeView = platform::ViewFactory<NetworkDiagnosticManager>;

    /// Keeps the references.
    DiagnosticsWindowController(platform::Platform& platform, platform::Desktop& desktop, MakeView makeView);
    DiagnosticsWindowController(const DiagnosticsWindowController&) = delete;
    DiagnosticsWindowController& operator=(const DiagnosticsWindowController&) = delete;
    ~DiagnosticsWindowController();

    /// Shows the window in the middle of the screen, or brings the one that is open to the front.
    void openWindow();

private:
    platform::Platform& platform_;
    platform::Desktop& desktop_;
    MakeView makeView_;
    std::unique_ptr<NetworkDiagnosticManager> manager_;
    std::unique_ptr<platform::Window> window_;  // last member: goes before what its view shows
};

}  // namespace glintar::diagnostics
