#pragma once

#include "platform/StatusBar.h"

#include <functional>
#include <string>

namespace glintar::menubar {

/// The menu of the icon, in the strip and in the tray. Built once: afterwards only texts and enabled states change.
class StatusMenu {
public:
    /// What the entries do. Any of them may destroy the menu.
    struct Actions {
        std::function<void()> openArbiterFromMenu;
        std::function<void()> openSettings;
        std::function<void()> openNetworkDiagnosticsWindow;
        std::function<void()> checkForUpdates;
        std::function<void()> quitApp;
    };

    /// `show` replaces the menu that is shown.
    StatusMenu(Actions actions, std::function<void(platform::Menu)> show);

    void setStatus(std::string text);
    void setDashboard(std::string title, bool isEnabled);

private:
    void update() { show_(menu_); }

    platform::Menu menu_;
    std::function<void(platform::Menu)> show_;
};

}  // namespace glintar::menubar
