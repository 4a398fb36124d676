#pragma once

#include "config/Settings.h"
#include "platform/NotificationCenter.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace glintar::platform {
struct Platform;
}

namespace glintar::presenter {

/// Announces settings that changed outside this process as if they had been saved here: another program or the user
/// wrote the preference file, or an API key appeared in the key store, perhaps because it was unlocked. What was saved
/// here has been announced already, and is not announced again when the file tells of it.
class SettingsWatch {
public:
    explicit SettingsWatch(platform::Platform& platform);
    SettingsWatch(const SettingsWatch&) = delete;
    SettingsWatch& operator=(const SettingsWatch&) = delete;
    ~SettingsWatch();

private:
    struct Snapshot {
        std::optional<std::string> coins;  ///< as they are stored
        config::Settings settings;
    };
    [[nodiscard]] Snapshot read() const;
    void onPreferencesChanged();

    platform::Platform& platform_;
    Snapshot last_;
    std::vector<std::unique_ptr<platform::NotificationCenter::Observation>> ownSaves_;
};

}  // namespace glintar::presenter
