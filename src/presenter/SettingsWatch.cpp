#include "presenter/SettingsWatch.h"

#include "config/Coin.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "platform/SecretStore.h"

#include <utility>

namespace glintar::presenter {

SettingsWatch::SettingsWatch(platform::Platform& platform) : platform_(platform), last_(read()) {
    platform.preferences.onExternalChange = [this] { onPreferencesChanged(); };
    platform.secrets.onChange = [&platform] { platform.notifications.post(config::kCoinsUpdated); };
    for (const auto name : {config::kCoinsUpdated, config::kDisplaySettingsChanged, config::kDisplayModeChanged}) {
        ownSaves_.push_back(platform.notifications.observe(name, [this] { last_ = read(); }));
    }
}

SettingsWatch::~SettingsWatch() {
    platform_.preferences.onExternalChange = nullptr;
    platform_.secrets.onChange = nullptr;
}

SettingsWatch::Snapshot SettingsWatch::read() const {
    const auto& preferences = platform_.preferences;
    return {.coins = preferences.data(config::kSavedCoinsKey), .settings = config::Settings::load(preferences)};
}

void SettingsWatch::onPreferencesChanged() {
    const auto before = std::exchange(last_, read());
    const auto now = last_;  // an observer may save
    auto display = before.settings;
    display.selectedSourceID = now.settings.selectedSourceID;
    display.displayMode = now.settings.displayMode;
    display.enableArbitrage = now.settings.enableArbitrage;
    if (display != now.settings) {
        platform_.notifications.post(config::kDisplaySettingsChanged);
    }
    if (before.settings.displayMode != now.settings.displayMode) {
        platform_.notifications.post(config::kDisplayModeChanged);
    }
    if (before.coins != now.coins || before.settings.selectedSourceID != now.settings.selectedSourceID) {
        platform_.notifications.post(config::kCoinsUpdated);
    }
}

}  // namespace glintar::presenter
