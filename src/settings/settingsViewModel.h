#pragma once

#include "platform/NotificationCenter.h"
#include "settings/APISettingsViewModel.h"
#include "settings/AboutModel.h"
#include "settings/coinsSettingsViewModel.h"
#include "settings/displaymodeSettingsViewModel.h"

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace glintar::settings {

/// Posted to whoever shows the settings: turn to the display tab.
inline constexpr std::string_view kSwitchToDisplayTab = "SwitchToDisplayTab";

/// The tabs in their order: how each is called, and its tag.
struct Tab {
    std::string_view title;
    std::string_view tag;
};
inline constexpr std::array<Tab, 5> kTabs{{{"Coins", "coins"},
                                           {"Data Source", "Data Source"},
                                           {"Display", "displaymode"},
                                           {"Contact", "contact"},
                                           {"About", "about"}}};

/// The content of the settings window: which tab is shown, and the model of each. Those that read something are made
/// when they are first asked for. Main thread only.
class settingsViewModel {  // NOLINT(readability-identifier-naming): named as the screen is
public:
    struct Environment {
        platform::LoginItem& loginItem;
        platform::Workspace& workspace;
        Contacts contacts;
        std::function<PanelAbilities()> abilities;
        std::function<void()> terminate;
    };

    settingsViewModel(platform::Platform& platform, Environment environment, std::string_view initialTab);

    void select(std::string_view tag);

    [[nodiscard]] APISettingsViewModel& sources();
    [[nodiscard]] displaymodeSettingsViewModel& display();

    /// Runs after `selectedTab` has changed.
    std::function<void()> onChange;
    /// Closes the window; set by whoever owns it.
    std::function<void()> close;

    std::string selectedTab;
    coinsSettingsViewModel coins;
    AboutModel about;

private:
    platform::Platform& platform_;
    platform::LoginItem& loginItem_;
    std::function<PanelAbilities()> abilities_;
    std::optional<APISettingsViewModel> sources_;
    std::optional<displaymodeSettingsViewModel> display_;
    std::unique_ptr<platform::NotificationCenter::Observation> switches_;
};

}  // namespace glintar::settings
