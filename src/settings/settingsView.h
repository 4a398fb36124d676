#pragma once

#include "platform/Graphics.h"
#include "platform/Window.h"
#include "settings/settingsViewModel.h"

#include <memory>

namespace glintar::settings {

/// The content of the settings window. Tab goes through the controls in the order in which they stand. Both arguments
/// outlive it.
[[nodiscard]] std::unique_ptr<platform::View> makeSettingsView(settingsViewModel& model,
                                                               const platform::Graphics& graphics);

}  // namespace glintar::settings
