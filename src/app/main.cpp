// The desktop door: `glintar-desktop`, which `glintar` becomes where there is a display.

#include "app/GlintarApp.h"
#include "app/Start.h"
#include "platform/posix/Descriptor.h"
#include "platform/qt/DesktopPlatform.h"

#include <fmt/format.h>

#include <cstdlib>
#include <optional>

int main(int argc, char** argv) {
    using namespace glintar;
    platform::reserveStandardStreams();
    const auto start = app::readStart(argc, argv);
    if (!start) {
        return start.error();
    }
    if (start->arguments.command != app::Arguments::Command::Desktop) {
        platform::complain("glintar-desktop: the price line in a terminal is \"glintar line\"\n");
        return app::kWrongUsage;
    }
    if (const auto problem = platform::displayProblem()) {
        platform::complain(fmt::format("glintar: {}\n", *problem));
        return app::kFailed;
    }
    app::tuneHeap();
    std::optional<demo::DemoSession> session;
    if (start->arguments.demo) {
        session = app::startDemo();
        if (!session) {
            return app::kFailed;
        }
    }
    platform::DesktopPlatform machine(argc, argv,
                                      {.configServer = start->configServer, .looksUpSecrets = !start->arguments.demo});
    return app::GlintarApp(machine, start->arguments).run();
}
