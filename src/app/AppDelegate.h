#pragma once

#include "app/Arguments.h"
#include "app/DesktopSurface.h"
#include "arbiter/ArbiterWindowController.h"
#include "diagnostics/DiagnosticsWindowController.h"
#include "platform/NotificationCenter.h"
#include "platform/RunLoop.h"
#include "platform/Window.h"
#include "presenter/SettingsWatch.h"
#include "presenter/StatusBarController.h"
#include "settings/settingsViewModel.h"
#include "updates/UpdateController.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace glintar::platform {
class Noticeboard;
struct Desktop;
struct Platform;
}  // namespace glintar::platform

namespace glintar::app {

/// Makes the parts of the desktop program and carries out what is asked of the program as a whole. Main thread only.
class AppDelegate {
public:
    /// Who draws the windows.
    struct Views {
        arbiter::ArbiterWindowController::MakeView dashboard;
        diagnostics::DiagnosticsWindowController::MakeView diagnostics;
        platform::ViewFactory<settings::settingsViewModel> settings;
    };
    struct Options {
        bool isDemo = false;         ///< asks no server of the makers, and leaves the login item alone
        bool opensSettings = false;  ///< at once
        std::string mark;            ///< before what the line says of itself
        settings::Contacts contacts;
        std::string releaseFeed;  ///< address; may be empty
        Views views;
        std::function<void()> terminate;
        platform::Noticeboard* board = nullptr;  ///< shared with the other copies of the program
    };

    AppDelegate(platform::Platform& platform, platform::Desktop& desktop, Options options);
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// The loop is about to run: shows the line or the panel, and starts what is asked of the network.
    void applicationDidFinishLaunching();

    /// The program was started a second time: opens what is asked for; closes the dashboard if it is open.
    void applicationWasReopened(Opens opens);

    /// Another copy of the program asks for a refresh.
    void refresh();

    /// Shows the one settings window, made at the first time and then kept.
    void openSettings();
    void openDisplaySettings();
    void checkForUpdates();
    void quitApp();

private:
    void redisplay();
    [[nodiscard]] DesktopSurface::Requests requests();
    void toggleDashboard(arbiter::ArbiterWindowController::Anchor anchor);

    platform::Platform& platform_;
    platform::Desktop& desktop_;
    Options options_;
    presenter::SettingsWatch settingsWatch_;
    std::optional<DesktopSurface> surface_;
    std::optional<presenter::StatusBarController> statusBarController_;
    platform::TimerHandle start_;
    diagnostics::DiagnosticsWindowController diagnostics_;
    std::optional<settings::settingsViewModel> settings_;  ///< as long as the window that shows it
    std::unique_ptr<platform::Window> mainPreferencesWindow_;
    platform::TimerHandle tabSwitch_;
    std::optional<updates::UpdateController> updaterController_;
    std::unique_ptr<platform::NotificationCenter::Observation> settingsRequests_;
};

}  // namespace glintar::app
