#include "diagnostics/DiagnosticsWindowController.h"

#include "platform/Desktop.h"
#include "platform/Platform.h"

#include <utility>

namespace glintar::diagnostics {

DiagnosticsWindowController::DiagnosticsWindowController(platform::Platform& platform, platform::Desktop& desktop,
                                                         MakeView makeView)
    : platform_(platform), desktop_(desktop), makeView_(std::move(makeView)) {}

DiagnosticsWindowController::~DiagnosticsWindowController() = default;

void DiagnosticsWindowController::openWindow() {
    if (!window_) {
        manager_ = std::make_unique<NetworkDiagnosticManager>(platform_);
        window_ = desktop_.windows.makeWindow(platform::Window::Frame::Titled, "Network Diagnostics");
        window_->setView(makeView_(*manager_));
        window_->onClosed = [this] {
            window_.reset();
            manager_.reset();
        };
        window_->center();
    }
    window_->makeKeyAndOrderFront();
}

}  // namespace glintar::diagnostics
