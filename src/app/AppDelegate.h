#pragma once

#include "app/DesktopSurface.h"
#include "platform/RunLoop.h"
#include "presenter/SettingsWatch.h"
#include "presenter/StatusBarController.h"

#include <functional>
#include <optional>
#include <string>

namespace glintar::platform {
struct Desktop;
struct Platform;
}  // namespace glintar::platform

namespace glintar::app {

/// Makes the parts of the desktop program and carries out what is asked of the program as a whole. Main thread only.
class AppDelegate {
public:
    struct Options {
        bool checksForDocuments = true;  ///< the configuration server is asked for newer ones
        std::string mark;                ///< before what the line says of itself
        std::function<void()> terminate;
    };

    AppDelegate(platform::Platform& platform, platform::Desktop& desktop, Options options);
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// The loop is about to run: shows the line or the panel, and starts what is asked of the network.
    void applicationDidFinishLaunching();

    /// The program was started a second time.
    void applicationWasReopened();

    void quitApp();

private:
    void redisplay();

    platform::Platform& platform_;
    platform::Desktop& desktop_;
    Options options_;
    presenter::SettingsWatch settingsWatch_;
    std::optional<DesktopSurface> surface_;
    std::optional<presenter::StatusBarController> statusBarController_;
    platform::TimerHandle start_;
};

}  // namespace glintar::app
