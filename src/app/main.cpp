// The desktop door: `glintar-desktop`, which `glintar` becomes where there is a display.

#include "app/GlintarApp.h"
#include "app/Start.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/Termination.h"
#include "platform/qt/DesktopPlatform.h"
#include "platform/qt/DisplayGuard.h"

#include <fmt/format.h>

#include <cstdlib>

int main(int argc, char** argv) {
    using namespace glintar;
    platform::reserveStandardStreams();
    const platform::Termination termination;
    const auto start = app::readStart(argc, argv);
    if (!start) {
        return start.error();
    }
    if (start->arguments.command != app::Arguments::Command::Desktop) {
        platform::complain("glintar-desktop: what is for a terminal is done by \"glintar\"\n");
        return app::kWrongUsage;
    }
    if (const auto problem = platform::displayProblem()) {
        platform::complain(fmt::format("glintar: {}\n", *problem));
        return app::kFailed;
    }
    const auto session = app::prepareProcess(start->arguments);
    if (!session) {
        return session.error();
    }
    platform::DesktopPlatform machine(argc, argv, app::platformOptions(*start, *session));
    return app::GlintarApp(machine, start->arguments).run();
}
