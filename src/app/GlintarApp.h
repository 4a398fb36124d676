#pragma once

#include "app/AppDelegate.h"
#include "app/SingleInstance.h"

namespace glintar::platform {
class DesktopPlatform;
}

namespace glintar::app {

struct Arguments;

/// The desktop program from its start to its end.
class GlintarApp {
public:
    GlintarApp(platform::DesktopPlatform& machine, const Arguments& arguments);

    /// Runs until the user or the desktop ends it; the exit status. At once and with 0 when it runs already.
    int run();

private:
    platform::DesktopPlatform& machine_;
    bool opensSettings_;
    SingleInstance instance_;
    AppDelegate _appDelegate;
};

}  // namespace glintar::app
