#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>

namespace glintar::platform {
struct Platform;
}

namespace glintar::presenter {

/// Announces settings that changed outside this process as if they had been saved here: another program or the user
/// wrote the preference file, or an API key appeared in the key store, perhaps because it was unlocked.
class SettingsWatch {
public:
    explicit SettingsWatch(platform::Platform& platform);
    SettingsWatch(const SettingsWatch&) = delete;
    SettingsWatch& operator=(const SettingsWatch&) = delete;
    ~SettingsWatch();

private:
    struct Snapshot {
        std::optional<std::string> coins;
        std::optional<std::string> source;
        std::int64_t displayMode = 0;
        std::tuple<std::int64_t, bool, bool, bool, bool, bool, double> display;
    };
    [[nodiscard]] Snapshot read() const;
    void onPreferencesChanged();

    platform::Platform& platform_;
    Snapshot last_;
};

}  // namespace glintar::presenter
