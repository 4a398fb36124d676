#include "menubar/StatusMenu.h"

#include <utility>

namespace glintar::menubar {

namespace {

constexpr std::size_t kStatus = 0;
constexpr std::size_t kDashboard = 2;

platform::MenuItem entry(std::string title, std::function<void()> action, char shortcut = 0) {
    const bool isEnabled = action != nullptr;
    return {.title = std::move(title), .action = std::move(action), .shortcut = shortcut, .isEnabled = isEnabled};
}

platform::MenuItem separator() {
    return {.isSeparator = true};
}

}  // namespace

StatusMenu::StatusMenu(Actions actions, std::function<void(platform::Menu)> show)
    : menu_{entry("Status: Normal", nullptr),
            separator(),
            entry("Arbitrage Dashboard", std::move(actions.openArbiterFromMenu), 'd'),
            separator(),
            entry("Settings", std::move(actions.openSettings), 's'),
            entry("Network Diagnostics", std::move(actions.openNetworkDiagnosticsWindow)),
            entry("Check for Updates...", std::move(actions.checkForUpdates)),
            separator(),
            entry("Quit", std::move(actions.quitApp), 'q')},
      show_(std::move(show)) {
    menu_[kDashboard].isEnabled = false;  // until the first refresh
    update();
}

void StatusMenu::setStatus(std::string text) {
    if (menu_[kStatus].title != text) {
        menu_[kStatus].title = std::move(text);
        update();
    }
}

void StatusMenu::setDashboard(std::string title, bool isEnabled) {
    auto& item = menu_[kDashboard];
    isEnabled = isEnabled && item.action;
    if (item.title != title || item.isEnabled != isEnabled) {
        item.title = std::move(title);
        item.isEnabled = isEnabled;
        update();
    }
}

}  // namespace glintar::menubar
