#include "presenter/SettingsWatch.h"

#include "config/Coin.h"
#include "config/Settings.h"
#include "platform/NotificationCenter.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "platform/SecretStore.h"

#include <utility>

namespace glintar::presenter {

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
            .source = preferences.string(config::kSelectedSource),
            .displayMode = preferences.integer(config::kDisplayMode),
            .display = {preferences.integer(config::kGasSource), preferences.boolean(config::kFloatTransparent),
                        preferences.boolean(config::kShowChange), preferences.boolean(config::kShowHighLow),
                        preferences.boolean(config::kShowSparkline), preferences.boolean(config::kShowGasFee),
                        preferences.real(config::kFloatOffset)}};
}

void SettingsWatch::onPreferencesChanged() {
    const auto before = std::exchange(last_, read());
    if (before.display != last_.display) {
        platform_.notifications.post(config::kDisplaySettingsChanged);
    }
    if (before.displayMode != last_.displayMode) {
        platform_.notifications.post(config::kDisplayModeChanged);
    }
    if (before.coins != last_.coins || before.source != last_.source) {
        platform_.notifications.post(config::kCoinsUpdated);
    }
}

}  // namespace glintar::presenter
