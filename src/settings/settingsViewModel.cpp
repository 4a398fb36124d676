#include "settings/settingsViewModel.h"

#include "platform/Platform.h"

#include <utility>

namespace glintar::settings {

settingsViewModel::settingsViewModel(platform::Platform& platform, Environment environment, std::string_view initialTab)
    : selectedTab(initialTab),
      coins(platform),
      sources(platform),
      display(platform, environment.loginItem, std::move(environment.abilities)),
      about(platform, environment.workspace, std::move(environment.contacts), std::move(environment.terminate)),
      switches_(platform.notifications.observe(kSwitchToDisplayTab, [this] { select("displaymode"); })) {}

void settingsViewModel::select(std::string_view tag) {
    if (selectedTab != tag) {
        selectedTab = tag;
        if (onChange) {
            onChange();
        }
    }
}

}  // namespace glintar::settings
