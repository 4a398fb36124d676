#pragma once

#include "app/Arguments.h"
#include "line/TextStatusBar.h"
#include "presenter/StatusBarController.h"

#include <functional>
#include <string_view>

namespace glintar::platform {
class Noticeboard;
struct Platform;
class TextOutput;
}  // namespace glintar::platform

namespace glintar::line {

/// `glintar line`: the presenter with a text status bar. It shows the line in either display mode. The configuration
/// server is asked for newer documents, except with `--once` and on a simulated market.
class LineCommand {
public:
    struct Environment {
        std::function<void(int status)> finish;    ///< once at most; it may come before `start` returns
        platform::Noticeboard* board = nullptr;    ///< shared with the other copies of the program, if there is one
        std::function<void()> openDashboard = {};  ///< that of the desktop program, if it runs
    };

    LineCommand(platform::Platform& platform, platform::TextOutput& output, const app::Arguments& arguments,
                Environment environment);

    void start();

    /// SIGUSR1, by which the user asks for a refresh, or one of those by which i3bar tells that it is hidden or seen.
    void onSignal(int number);

    /// One line that a bar has sent: a click.
    void onInput(std::string_view line);

    /// The user or the reader of the output has had enough: 0, but 1 when one refresh was asked for and is not there.
    void interrupt();

private:
    platform::Platform& platform_;
    const bool once_;
    Environment environment_;
    TextStatusBar statusBar_;
    presenter::StatusBarController controller_;
};

}  // namespace glintar::line
