#pragma once

#include "app/AppDelegate.h"
#include "app/Arguments.h"
#include "app/SingleInstance.h"
#include "platform/Noticeboard.h"
#include "platform/qtcore/QtSignals.h"

#include <memory>

namespace glintar::platform {
class DesktopPlatform;
}

namespace glintar::app {

/// The desktop program from its start to its end.
class GlintarApp {
public:
    GlintarApp(platform::DesktopPlatform& machine, const Arguments& arguments);

    /// Runs until the user or the desktop ends it; the exit status. At once and with 0 when it runs already, and
    /// when only the dashboard of one that runs is wanted.
    int run();

private:
    platform::DesktopPlatform& machine_;
    Opens opens_;
    SingleInstance instance_;
    std::unique_ptr<platform::Noticeboard> board_;
    AppDelegate _appDelegate;
    platform::QtSignals refreshes_;
};

}  // namespace glintar::app
