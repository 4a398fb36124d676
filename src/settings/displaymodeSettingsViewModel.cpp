#include "settings/displaymodeSettingsViewModel.h"

#include "config/AppConfig.h"
#include "config/Coin.h"
#include "config/ConfigFiles.h"
#include "config/Settings.h"
#include "platform/Console.h"
#include "platform/Directories.h"
#include "platform/Files.h"
#include "platform/LoginItem.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "platform/RunLoop.h"

#include <utility>

namespace glintar::settings {

displaymodeSettingsViewModel::displaymodeSettingsViewModel(platform::Platform& platform, platform::LoginItem& loginItem,
                                                           std::function<PanelAbilities()> abilities)
    : platform_(platform),
      loginItem_(loginItem),
      abilities_(std::move(abilities)),
      displayChanges_(platform.notifications.observe(config::kDisplaySettingsChanged, [this] { syncData(); })),
      coinChanges_(platform.notifications.observe(config::kCoinsUpdated, [this] { syncData(); })) {
    launchAtLogin = loginItem_.isEnabled();
    enableArbitrage = config::Settings::load(platform_.preferences).enableArbitrage;
    read();
}

void displaymodeSettingsViewModel::read() {
    const auto stored = config::Settings::load(platform_.preferences);
    displayMode = stored.displayMode;
    showSparkline = stored.showSparkline;
    showGasFee = stored.showGasFee;
    floatTransparent = stored.floatTransparent;
    floatOffset = stored.floatOffset;
    showChange24h = stored.showChange24h;
    showHighLow24h = stored.showHighLow24h;
    gasSource = stored.gasSource;
    isSparklineSupported = computeSparklineSupport();
}

void displaymodeSettingsViewModel::saveDisplaySettings() {
    const config::Settings settings{.displayMode = displayMode,
                                    .floatTransparent = floatTransparent,
                                    .floatOffset = floatOffset,
                                    .showChange24h = showChange24h,
                                    .showHighLow24h = showHighLow24h,
                                    .showSparkline = showSparkline,
                                    .showGasFee = showGasFee,
                                    .gasSource = gasSource,
                                    .enableArbitrage = enableArbitrage};
    saveError = settings.saveDisplay(platform_.preferences) ? "" : config::kNotSaved;
    if (!saveError.empty()) {
        read();
    }
    changed();
    platform_.notifications.post(config::kDisplaySettingsChanged);
    platform_.notifications.post(config::kDisplayModeChanged);
}

void displaymodeSettingsViewModel::syncData() {
    platform_.runLoop.post(lifetime_.guard([this] {
        read();
        changed();
    }));
}

void displaymodeSettingsViewModel::reload() {
    launchAtLogin = loginItem_.isEnabled();
    loginError.clear();
    saveError.clear();
    syncData();
}

void displaymodeSettingsViewModel::setLaunchAtLogin(bool enable) {
    const auto outcome = enable ? loginItem_.registerItem() : loginItem_.unregisterItem();
    if (outcome) {
        launchAtLogin = enable;
        loginError.clear();
    } else {
        platform_.console.print("Failed to toggle launch at login: " + outcome.error());
        launchAtLogin = loginItem_.isEnabled();
        loginError = outcome.error();
    }
    changed();
}

bool displaymodeSettingsViewModel::computeSparklineSupport() const {
    const auto cached = config::cachedConfigFileURL(platform_);
    auto text = cached ? platform_.files.read(*cached) : std::unexpected(std::string());
    if (!text) {
        const auto shipped = platform_.bundle.resource("api_endpoints", "json");
        text = shipped ? platform_.files.read(*shipped) : std::unexpected(std::string());
    }
    const auto document = text ? config::decodeAppConfig(*std::move(text)) : std::unexpected(std::string());
    const auto* source =
        document ? document->source(config::Settings::load(platform_.preferences).selectedSourceID) : nullptr;
    return source != nullptr && !source->sparkline_path.value_or("").empty();
}

std::string displaymodeSettingsViewModel::modeText() const {
    return displayMode == 1 ? "The price follows your mouse cursor." : "The price shows in status bar.";
}

std::string displaymodeSettingsViewModel::panelNote() const {
    if (displayMode != 1 || !abilities_) {
        return "";
    }
    const auto abilities = abilities_();
    if (!abilities.followsPointer) {
        return "This desktop hides the mouse pointer from other programs, so the panel rests below the status bar.";
    }
    return abilities.isTranslucent ? "" : "No compositor is running, so the panel cannot fade: it disappears instead.";
}

void displaymodeSettingsViewModel::changed() {
    if (onChange) {
        onChange();
    }
}

}  // namespace glintar::settings
