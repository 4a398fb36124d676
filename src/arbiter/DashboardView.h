#pragma once

#include "arbiter/ArbiterDetailView.h"
#include "platform/Window.h"

#include <memory>

namespace glintar::platform {
struct Desktop;
}

namespace glintar::arbiter {

/// The dashboard as widgets. It follows the desktop's appearance.
[[nodiscard]] std::unique_ptr<platform::View> makeDashboardView(platform::Platform& platform,
                                                                platform::Desktop& desktop, ArbiterDetailView& model);

}  // namespace glintar::arbiter
