#include "menubar/SettingsWatch.h"

#include <utility>

#include "config/Coin.h"
#include "menubar/StatusBarController.h"
#include "platform/NotificationCenter.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "platform/SecretStore.h"

namespace glintar::menubar {

SettingsWatch::SettingsWatch(platform::Platform& platform) : platform_(platform), last_(read()) {
    platform.preferences.onExternalChange = [this] { onPreferencesChanged(); };
    platform.secrets.onChange = [&platform] { platform.notifications.post(config::kCoinsUpdated); };
}

SettingsWatch::~SettingsWatch() {
    platform_.preferences.onExternalChange = nullptr;
    platform_.secrets.onChange = nullptr;
}

SettingsWatch::Snapshot SettingsWatch::read() const {
    const auto& preferences = platform_.preferences;
    return {.coins = preferences.data(config::kSavedCoinsKey),
            .source = preferences.string("selectedSourceID"),
            .display = {preferences.integer("displayMode"), preferences.integer("gasSource"),
                        preferences.boolean("floatTransparent"), preferences.boolean("showChange24h"),
                        preferences.boolean("showHighLow24h"), preferences.boolean("showSparkline"),
                        preferences.boolean("showGasFee"), preferences.real("floatOffset")}};
}

void SettingsWatch::onPreferencesChanged() {
    const auto before = std::exchange(last_, read());
    if (before.display != last_.display) {
        platform_.notifications.post(kDisplaySettingsChanged);
    }
    if (before.coins != last_.coins || before.source != last_.source) {
        platform_.notifications.post(config::kCoinsUpdated);
    }
}

}  // namespace glintar::menubar
