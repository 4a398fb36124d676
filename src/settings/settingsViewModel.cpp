#include "settings/settingsViewModel.h"

#include "platform/Platform.h"

#include <utility>

namespace glintar::settings {

settingsViewModel::settingsViewModel(platform::Platform& platform, Environment environment, std::string_view initialTab)
    : selectedTab(initialTab),
      coins(platform),
      about(platform, environment.workspace, std::move(environment.contacts), std::move(environment.terminate)),
      platform_(platform),
      loginItem_(environment.loginItem),
      abilities_(std::move(environment.abilities)),
      switches_(platform.notifications.observe(kSwitchToDisplayTab, [this] { select("displaymode"); })) {}

void settingsViewModel::select(std::string_view tag) {
    if (selectedTab != tag) {
        selectedTab = tag;
        if (onChange) {
            onChange();
        }
    }
}

APISettingsViewModel& settingsViewModel::sources() {
    return sources_ ? *sources_ : sources_.emplace(platform_);
}

displaymodeSettingsViewModel& settingsViewModel::display() {
    return display_ ? *display_ : display_.emplace(platform_, loginItem_, abilities_);
}

}  // namespace glintar::settings
