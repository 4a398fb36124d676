// The desktop door: `glintar-desktop`, which `glintar` becomes where there is a display.

#include "app/GlintarApp.h"
#include "app/Start.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/Termination.h"
#include "platform/qt/DesktopPlatform.h"
#include "platform/qt/DisplayGuard.h"
#include "platform/qtcore/QtSignals.h"

#include <fmt/format.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <vector>

namespace {

using namespace glintar;

enum class End { ForGood, ToStartAnew };

/// Runs the program, of which nothing is left when this returns.
End run(int argc, char** argv, const app::Start& start, const std::optional<demo::DemoSession>& session, int& status) {
    platform::DesktopPlatform machine(argc, argv, app::platformOptions(start, session));
    status = app::GlintarApp(machine, start.arguments).run();
    return machine.isRelaunchWanted() ? End::ToStartAnew : End::ForGood;
}

}  // namespace

int main(int argc, char** argv) {
    platform::reserveStandardStreams();
    const platform::Termination termination;
    platform::QtSignals::take({SIGUSR1});
    // Both as they are now: Qt takes its own out of the arguments, and an update may put another program in this place.
    std::vector<char*> arguments(argv, argv + argc + 1);
    std::error_code error;
    const auto program = std::filesystem::read_symlink("/proc/self/exe", error);
    const auto start = app::readStart(argc, argv);
    if (!start) {
        return start.error();
    }
    if (start->arguments.command != app::Arguments::Command::Desktop) {
        platform::complain("glintar-desktop: what is for a terminal is done by \"glintar\"\n");
        return app::kWrongUsage;
    }
    if (const auto problem = platform::displayProblem()) {
        if (start->arguments.opens == app::Opens::Dashboard) {
            return EXIT_SUCCESS;  // nothing runs that has one
        }
        platform::complain(fmt::format("glintar: {}\n", *problem));
        return app::kFailed;
    }
    int status = 0;
    {
        const auto session = app::prepareProcess(start->arguments);
        if (!session) {
            return session.error();
        }
        if (run(argc, argv, *start, *session, status) == End::ForGood) {
            return status;
        }
    }
    platform::Termination::handOver();
    platform::QtSignals::hold({SIGUSR1});
    ::execv(program.c_str(), arguments.data());
    platform::complain("glintar: could not be started anew\n");
    return app::kFailed;
}
