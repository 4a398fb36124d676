// The terminal door: `glintar`. It links nothing graphical; where there is a display it hands over to the desktop door.

#include "app/Start.h"
#include "line/BarFormat.h"
#include "line/CompareCommand.h"
#include "line/DiagnoseCommand.h"
#include "line/LineCommand.h"
#include "line/SettingsCommand.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/InstalledBundle.h"
#include "platform/posix/Termination.h"
#include "platform/posix/XdgLoginItem.h"
#include "platform/qtcore/QtSignals.h"
#include "platform/real/TerminalPlatform.h"
#include "platform/terminal/SecretInput.h"
#include "platform/terminal/TerminalInput.h"
#include "presenter/SettingsWatch.h"

#include <fmt/format.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <optional>

namespace {

using namespace glintar;

/// Becomes the desktop program where that makes sense; returns why it does not. A signal that comes meanwhile waits for
/// the program that catches it.
std::string_view becomeDesktop(platform::Termination& termination, char** argv) {
    if (!app::environment("DISPLAY")) {
        return app::environment("WAYLAND_DISPLAY") ? "no X display, and this Wayland session has no XWayland"
                                                   : "no display";
    }
    const auto desktop = platform::InstalledBundle::program("glintar-desktop");
    if (desktop) {
        if (!termination.block()) {
            std::exit(EXIT_SUCCESS);  // nothing has begun that would have to be ended
        }
        platform::QtSignals::hold({SIGUSR1});
        ::execv(desktop->c_str(), argv);
        platform::QtSignals::take({SIGUSR1});
        termination.unblock();
    }
    return "glintar-desktop is not installed";
}

int runLine(platform::TerminalPlatform& terminal, const app::Start& start) {
    auto& machine = terminal.machine();
    const auto board = app::noticeboard(start.arguments);
    line::LineCommand command(machine.platform(), terminal.output(), start.arguments,
                              {.finish = [&](int status) { machine.exit(status); },
                               .board = board.get(),
                               .openDashboard = app::openDashboard});
    machine.onTerminate = [&] { command.interrupt(); };
    std::optional<presenter::SettingsWatch> watch;
    if (!start.arguments.once) {
        watch.emplace(machine.platform());
        machine.watch();
    }
    const platform::QtSignals requests([&](int number) { command.onSignal(number); });
    std::optional<platform::TerminalInput> clicks;
    if (start.arguments.format == app::Format::I3bar) {
        platform::QtSignals::take({line::kStopSignal, line::kContSignal});
        clicks.emplace([&](std::string_view click) { command.onInput(click); });
    }
    command.start();
    return machine.exec();
}

/// Runs a command that ends by itself.
template <class Command>
int runOnce(platform::TerminalPlatform& terminal, const app::Start& start) {
    auto& machine = terminal.machine();
    Command command(machine.platform(), terminal.output(), start.arguments, [&](int status) { machine.exit(status); });
    machine.onTerminate = [&] { command.interrupt(); };
    command.start();
    return machine.exec();
}

int runSettings(platform::TerminalPlatform& terminal, const app::Start& start) {
    auto& machine = terminal.machine();
    platform::XdgLoginItem loginItem(machine.platform().files,
                                     platform::InstalledBundle::program("glintar-desktop").value_or("glintar-desktop"),
                                     app::environment("XDG_CURRENT_DESKTOP").value_or(""));
    line::SettingsCommand command(
        {.platform = machine.platform(),
         .loginItem = loginItem,
         .output = terminal.output(),
         .readKey = [] { return platform::readSecretLine("API key (an empty line removes it): "); },
         .finish = [&](int status) { machine.exit(status); }});
    machine.onTerminate = [&] { machine.exit(app::kFailed); };
    command.start(start.arguments.words);
    return machine.exec();
}

}  // namespace

int main(int argc, char** argv) {
    platform::reserveStandardStreams();
    platform::Termination termination;
    platform::QtSignals::take({SIGUSR1});  // sent to all copies by name, it must not end one that is not ready for it
    const auto start = app::readStart(argc, argv);
    if (!start) {
        return start.error();
    }
    if (start->arguments.command == app::Arguments::Command::Desktop) {
        const auto why = becomeDesktop(termination, argv);
        if (start->arguments.opens == app::Opens::Dashboard) {
            return EXIT_SUCCESS;  // nothing runs that has one
        }
        platform::complain(fmt::format("glintar: {}; showing the prices in this terminal (glintar line)\n", why));
    }
    termination.setStatus(start->arguments.once ? app::kFailed : 0);
    const auto session = app::prepareProcess(start->arguments);
    if (!session) {
        return session.error();
    }
    // Nothing here needs GLib's loop on the main thread, and Qt's own starts faster.
    ::setenv("QT_NO_GLIB", "1", 1);
    platform::TerminalPlatform terminal(argc, argv, app::platformOptions(*start, *session));
    switch (start->arguments.command) {
        case app::Arguments::Command::Compare:
            return runOnce<line::CompareCommand>(terminal, *start);
        case app::Arguments::Command::Diagnose:
            return runOnce<line::DiagnoseCommand>(terminal, *start);
        case app::Arguments::Command::Settings:
            return runSettings(terminal, *start);
        default:
            return runLine(terminal, *start);
    }
}
