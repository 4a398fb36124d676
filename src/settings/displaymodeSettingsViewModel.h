#pragma once

#include "platform/Lifetime.h"
#include "platform/NotificationCenter.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace glintar::platform {
class LoginItem;
struct Platform;
}  // namespace glintar::platform

namespace glintar::settings {

/// What the desktop lets the panel do.
struct PanelAbilities {
    bool followsPointer = true;
    bool isTranslucent = true;
};

/// What the "Display" tab shows and does. The screen, or whoever else edits, sets fields and calls
/// `saveDisplaySettings`; what others write while the tab is open is read again. Main thread only.
class displaymodeSettingsViewModel {  // NOLINT(readability-identifier-naming): a given name
public:
    /// `abilities` is asked each time; empty when there is no desktop.
    displaymodeSettingsViewModel(platform::Platform& platform, platform::LoginItem& loginItem,
                                 std::function<PanelAbilities()> abilities = {});

    /// Reads the preferences again at a later turn of the loop.
    void syncData();
    void saveDisplaySettings();
    void setLaunchAtLogin(bool enable);
    /// The tab is shown: what the desktop's settings may have changed is read again.
    void reload();
    [[nodiscard]] bool computeSparklineSupport() const;

    /// What stands under the choice of the place.
    [[nodiscard]] std::string modeText() const;

    /// What this desktop cannot do for the panel; empty when nothing, or while the panel is not chosen.
    [[nodiscard]] std::string panelNote() const;

    /// Runs after anything below has changed.
    std::function<void()> onChange;

    std::int64_t displayMode = 0;
    bool floatTransparent = false;
    double floatOffset = 0;
    bool launchAtLogin = false;
    std::string loginError;  ///< why the last change of it failed; empty when it did not
    std::string saveError;   ///< why what was set is not kept; empty when it is
    bool showChange24h = false;
    bool showHighLow24h = false;
    bool showSparkline = false;
    bool isSparklineSupported = false;
    bool showGasFee = false;
    std::int64_t gasSource = 0;
    bool enableArbitrage = false;

private:
    void read();
    void changed();

    platform::Platform& platform_;
    platform::LoginItem& loginItem_;
    std::function<PanelAbilities()> abilities_;
    std::unique_ptr<platform::NotificationCenter::Observation> displayChanges_, coinChanges_;
    platform::Lifetime lifetime_;  // last member
};

}  // namespace glintar::settings
