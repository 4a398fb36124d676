#include "menubar/DisplaySpace.h"

#include "config/Settings.h"
#include "platform/Console.h"
#include "platform/Desktop.h"
#include "platform/NotificationCenter.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "platform/RunLoop.h"

#include <utility>

namespace glintar::menubar {

namespace {

constexpr double kSmallestWidth = 2;
constexpr double kSmallestLeft = 180;
constexpr std::int64_t kMouseFollow = 1;

enum Button : std::size_t { SwitchMode, OpenSettings };

}  // namespace

bool hasRoom(const platform::ItemSight& sight) {
    return sight.cover == platform::ItemSight::Cover::None && sight.width >= kSmallestWidth && sight.leftOut == 0 &&
           (sight.isPlacedByUser || sight.left >= kSmallestLeft);
}

DisplaySpace::DisplaySpace(platform::Platform& platform, platform::Desktop& desktop,
                           std::function<void(std::string)> setStatus)
    : platform_(platform), desktop_(desktop), setStatus_(std::move(setStatus)) {}

void DisplaySpace::check(const platform::ItemSight& sight) {
    if (hasRoom(sight)) {
        setStatus_("Display: Active");
        hasShownHiddenWarning_ = false;
        return;
    }
    setStatus_("Status: Hidden (No Space)");
    // A film or a game covers the line on purpose and is not interrupted.
    const bool isOnPurpose = sight.cover == platform::ItemSight::Cover::FullScreen;
    if (!isOnPurpose && !std::exchange(hasShownHiddenWarning_, true)) {
        platform_.runLoop.post(lifetime_.guard([this] { showAlert(); }));
    }
}

void DisplaySpace::showAlert() {
    const bool isUnanswered = alert_ != nullptr;
    if (isUnanswered || config::Settings::load(platform_.preferences).displayMode == kMouseFollow) {
        return;
    }
    alert_ = desktop_.windows.showAlert(
        {.title = "Not Enough Display Space",
         .text = "The active application's menu items are taking up too much space, leaving no room for your "
                 "selected content.\n\nSuggested Actions:",
         .buttons = {"Switch to Mouse Follow", "Open Settings", "OK"}},
        [this](std::size_t button) { onAnswer(button); });
}

void DisplaySpace::onAnswer(std::size_t button) {
    const auto answered = std::move(alert_);
    auto& notifications = platform_.notifications;
    if (button == SwitchMode) {
        platform_.console.debug("🚀 User chose to switch mode directly.");
        platform_.preferences.setInteger(config::kDisplayMode, kMouseFollow);
        notifications.post(config::kDisplayModeChanged);
        notifications.post(config::kDisplaySettingsChanged);
    } else if (button == OpenSettings) {
        notifications.post(kRequestOpenDisplaySettings);
    }
}

}  // namespace glintar::menubar
