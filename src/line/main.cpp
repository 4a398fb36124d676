// The terminal door: `glintar`. It links nothing graphical; where there is a display it hands over to the desktop door.

#include "app/Deployment.h"
#include "demo/DemoSession.h"
#include "line/Arguments.h"
#include "line/LineCommand.h"
#include "menubar/SettingsWatch.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/InstalledBundle.h"
#include "platform/terminal/TerminalPlatform.h"

#include <fmt/format.h>
#include <malloc.h>
#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <span>

namespace {

using namespace glintar;
using line::Arguments;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

std::optional<std::string_view> environment(const char* name) {
    const char* value = std::getenv(name);
    return value && *value ? std::optional<std::string_view>(value) : std::nullopt;
}

/// Writes to standard output; the exit status.
int say(std::string_view text) {
    return platform::writeAll(STDOUT_FILENO, text) == 0 ? 0 : kFailed;
}

/// Becomes the desktop program where that makes sense; returns why it does not.
std::string_view becomeDesktop(char** argv) {
    if (!environment("DISPLAY") && !environment("WAYLAND_DISPLAY")) {
        return "no display";
    }
    const auto desktop = platform::InstalledBundle::program("glintar-desktop");
    if (desktop) {
        ::execv(desktop->c_str(), argv);
    }
    return "glintar-desktop is not installed";
}

std::optional<demo::DemoSession> startDemo() {
    const auto market = platform::InstalledBundle::program("glintar-demo-market");
    auto session = market ? demo::DemoSession::start(*market)
                          : std::unexpected(std::string("glintar-demo-market is not installed"));
    if (!session) {
        platform::complain(fmt::format("glintar: {}\n", session.error()));
        return std::nullopt;
    }
    for (const auto& [name, path] :
         {std::pair{"XDG_CONFIG_HOME", session->configHome()}, std::pair{"XDG_DATA_HOME", session->dataHome()},
          std::pair{"XDG_CACHE_HOME", session->cacheHome()}, std::pair{"XDG_RUNTIME_DIR", session->cacheHome()}}) {
        ::setenv(name, path.c_str(), 1);
    }
    ::unsetenv("DBUS_SESSION_BUS_ADDRESS");  // the user's own keys are none of the market's business
    platform::complain(
        fmt::format("glintar: simulated market on {}; none of these prices is real\n", session->address()));
    return *std::move(session);
}

int runLine(int argc, char** argv, const Arguments& arguments, std::string configServer) {
    // Nothing here needs GLib's loop on the main thread, and Qt's own starts faster.
    ::setenv("QT_NO_GLIB", "1", 1);
    platform::TerminalPlatform machine(argc, argv, std::move(configServer));
    line::LineCommand command(machine.platform(), machine.output(), arguments,
                              [&](int status) { machine.exit(status); });
    machine.onTerminate = [&] { command.interrupt(); };
    std::optional<menubar::SettingsWatch> watch;
    if (!arguments.once) {
        watch.emplace(machine.platform());
        machine.preferences().watch();
    }
    command.start();
    return machine.exec();
}

}  // namespace

int main(int argc, char** argv) {
    platform::reserveStandardStreams();
    const std::span<const char* const> words(argv, static_cast<std::size_t>(argc));
    const auto arguments = line::parseArguments(words.subspan(std::min<std::size_t>(1, words.size())));
    if (!arguments) {
        platform::complain(fmt::format("glintar: {}\nTry \"glintar --help\".\n", arguments.error()));
        return kWrongUsage;
    }
    if (arguments->command == Arguments::Command::Help) {
        return say(line::usage());
    }
    if (arguments->command == Arguments::Command::Version) {
        return say(fmt::format("glintar {}\n", platform::InstalledBundle({}).version()));
    }
    auto configServer = app::configServer(environment("GLINTAR_CONFIG_SERVER"));
    if (!configServer) {
        platform::complain(fmt::format("glintar: {}\n", configServer.error()));
        return kWrongUsage;
    }
    if (arguments->command == Arguments::Command::Desktop) {
        platform::complain(
            fmt::format("glintar: {}; showing the prices in this terminal (glintar line)\n", becomeDesktop(argv)));
    }
    // Answers are parsed on one thread; a heap for each would only hold on to memory.
    ::mallopt(M_ARENA_MAX, 1);
    std::optional<demo::DemoSession> session;
    if (arguments->demo) {
        session = startDemo();
        if (!session) {
            return kFailed;
        }
    }
    return runLine(argc, argv, *arguments, *std::move(configServer));
}
