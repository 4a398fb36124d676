#pragma once

#include "platform/Lifetime.h"
#include "platform/StatusBar.h"
#include "platform/Window.h"

#include <functional>
#include <memory>
#include <string>

namespace glintar::platform {
struct Desktop;
struct Platform;
}  // namespace glintar::platform

namespace glintar::menubar {

/// Posted when the user wants to see the display settings.
inline constexpr std::string_view kRequestOpenDisplaySettings = "RequestOpenDisplaySettings";

/// Whether the price line has room: it is on screen, at least 2 points wide, not covered wholly, and no coin is left
/// out. Where the program chose its place, its left end also lies at 180 points or more.
[[nodiscard]] bool hasRoom(const platform::ItemSight& sight);

/// Notices that the price line has no room, and offers the panel once each time that happens. A window that fills the
/// screen covers the line on purpose: then nothing is offered. Main thread only.
class DisplaySpace {
public:
    /// `setStatus` takes what the menu says about it.
    DisplaySpace(platform::Platform& platform, platform::Desktop& desktop, std::function<void(std::string)> setStatus);

    /// Takes what the user sees of the line. Not to be called while the line is hidden on purpose.
    void check(const platform::ItemSight& sight);

private:
    void showAlert();
    void onAnswer(std::size_t button);

    platform::Platform& platform_;
    platform::Desktop& desktop_;
    std::function<void(std::string)> setStatus_;
    bool hasShownHiddenWarning_ = false;  ///< since the line was last seen
    std::unique_ptr<platform::Alert> alert_;
    platform::Lifetime lifetime_;  // last member
};

}  // namespace glintar::menubar
