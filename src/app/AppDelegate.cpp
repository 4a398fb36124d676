#include "app/AppDelegate.h"

#include "config/APIConfigUpdater.h"
#include "config/CoinListUpdater.h"
#include "platform/Console.h"
#include "platform/Desktop.h"
#include "platform/LoginItem.h"
#include "platform/Platform.h"
#include "platform/Pointer.h"

#include <utility>

namespace glintar::app {

namespace {

constexpr std::chrono::milliseconds kTimeToPaint{20};
constexpr std::chrono::milliseconds kTimeToOpen{100};

}  // namespace

AppDelegate::AppDelegate(platform::Platform& platform, platform::Desktop& desktop, Options options)
    : platform_(platform),
      desktop_(desktop),
      options_(std::move(options)),
      settingsWatch_(platform),
      diagnostics_(platform, desktop, options_.views.diagnostics) {
    if (options_.isDemo) {
        config::APIConfigUpdater::shared(platform_).skipCheck();
        config::CoinListUpdater::shared(platform_).skipCheck();
    }
}

void AppDelegate::applicationDidFinishLaunching() {
    updaterController_.emplace(
        platform_, updates::UpdateController::Options{
                       .windows = desktop_.windows, .workspace = desktop_.workspace, .feed = options_.releaseFeed});
    if (!options_.isDemo) {
        updaterController_->start();
    }
    surface_.emplace(platform_, desktop_, requests(), options_.mark);
    statusBarController_.emplace(platform_, *surface_,
                                 presenter::StatusBarController::Options{.board = options_.board});
    statusBarController_->show();
    settingsRequests_ =
        platform_.notifications.observe(menubar::kRequestOpenDisplaySettings, [this] { openDisplaySettings(); });
    if (options_.opensSettings) {
        openSettings();
    }
    // The first look for an API key loads the key ring's code and waits for it: "Loading..." is painted before that.
    start_ = platform_.runLoop.after(kTimeToPaint, [this] {
        statusBarController_->start();
        config::CoinListUpdater::shared(platform_).checkForNewVersion();
        if (!options_.isDemo) {
            desktop_.loginItem.repair();
        }
    });
}

DesktopSurface::Requests AppDelegate::requests() {
    const auto icon = [this]() -> std::optional<platform::Rect> { return surface_->items().iconFrame(); };
    const auto line = [this]() -> std::optional<platform::Rect> { return surface_->items().lineFrame(); };
    return {.redisplay = [this] { redisplay(); },
            .pricePanelClicked = [this, line] { toggleDashboard(line); },
            .menu = {.openArbiterFromMenu = [this, icon] { toggleDashboard(icon); },
                     .openSettings = [this] { openSettings(); },
                     .openNetworkDiagnosticsWindow = [this] { diagnostics_.openWindow(); },
                     .checkForUpdates = [this] { checkForUpdates(); },
                     .quitApp = [this] { quitApp(); }}};
}

void AppDelegate::toggleDashboard(arbiter::ArbiterWindowController::Anchor anchor) {
    arbiter::ArbiterWindowController::shared(platform_, desktop_, options_.views.dashboard)
        .toggleWindow(std::move(anchor), config::loadSavedCoins(platform_), statusBarController_->cachedMarketData());
}

void AppDelegate::applicationWasReopened(Opens opens) {
    if (opens == Opens::Settings) {
        openSettings();
    } else if (surface_ && opens == Opens::Dashboard) {
        requests().pricePanelClicked();
    } else if (surface_) {
        surface_->openMenu();
    }
}

void AppDelegate::refresh() {
    if (statusBarController_) {
        statusBarController_->refreshForUser();
    }
}

void AppDelegate::redisplay() {
    if (statusBarController_) {
        statusBarController_->redisplayFromCache();
    }
}

void AppDelegate::openSettings() {
    if (!mainPreferencesWindow_) {
        settings_.emplace(
            platform_,
            settings::settingsViewModel::Environment{.loginItem = desktop_.loginItem,
                                                     .workspace = desktop_.workspace,
                                                     .contacts = options_.contacts,
                                                     .abilities =
                                                         [this] {
                                                             return settings::PanelAbilities{
                                                                 .followsPointer = desktop_.pointer.isSeenEverywhere(),
                                                                 .isTranslucent = desktop_.windows.hasCompositor()};
                                                         },
                                                     .terminate = options_.terminate},
            "coins");
        mainPreferencesWindow_ = desktop_.windows.makeWindow(platform::Window::Frame::Titled, "Settings");
        settings_->close = [this] { mainPreferencesWindow_->close(); };
        mainPreferencesWindow_->setView(options_.views.settings(*settings_));
        mainPreferencesWindow_->center();
    }
    mainPreferencesWindow_->makeKeyAndOrderFront();
}

void AppDelegate::openDisplaySettings() {
    openSettings();
    tabSwitch_ =
        platform_.runLoop.after(kTimeToOpen, [this] { platform_.notifications.post(settings::kSwitchToDisplayTab); });
}

void AppDelegate::checkForUpdates() {
    platform_.console.debug("🚀 AppDelegate 收到检查更新请求");
    if (updaterController_) {
        updaterController_->checkForUpdates();
    }
}

void AppDelegate::quitApp() {
    platform_.console.log({"Quit App clicked"});
    options_.terminate();
}

}  // namespace glintar::app
