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
    /// `finish` takes the exit status, once at most; it may come before `start` returns. `board` is
    /// shared with the other copies of the program.
    LineCommand(platform::Platform& platform, platform::TextOutput& output, const app::Arguments& arguments,
                std::function<void(int status)> finish, platform::Noticeboard* board = nullptr);

    void start();

    /// The user asks for a refresh now.
    void refresh() { controller_.refreshForUser(); }

    /// The bar is hidden: nothing is asked and nothing wakes us until it is seen again.
    void hidden() { controller_.pause(); }
    void seen() { controller_.resume(); }

    /// One line that a bar has sent: a click.
    void onInput(std::string_view line);

    /// The user or the reader of the output has had enough: 0, but 1 when one refresh was asked for and is not there.
    void interrupt();

private:
    platform::Platform& platform_;
    const bool once_;
    std::function<void(int)> finish_;
    TextStatusBar statusBar_;
    presenter::StatusBarController controller_;
};

}  // namespace glintar::line
