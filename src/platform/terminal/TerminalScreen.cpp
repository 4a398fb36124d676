#include "platform/terminal/TerminalScreen.h"

#include "platform/posix/Descriptor.h"
#include "text/Unicode.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>

namespace glintar::platform {

namespace {

// ECMA-48 control sequences; "?7" (automatic wrapping) is DEC's, and terminals everywhere follow it.
constexpr std::string_view kClearLine = "\r\x1b[2K";
constexpr std::string_view kWrapOff = "\x1b[?7l";
constexpr std::string_view kWrapOn = "\x1b[?7h";

bool canRedraw() {
    const char* kind = std::getenv("TERM");
    return ::isatty(STDOUT_FILENO) == 1 && kind && *kind && std::string_view(kind) != "dumb";
}

/// Asked each time: the user may have changed the window.
std::size_t columns() {
    winsize size{};
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

}  // namespace

TerminalScreen::TerminalScreen(int stop)
    : stop_(stop), isTerminal_(canRedraw()), sharesTerminal_(isTerminal_ && ::isatty(STDERR_FILENO) == 1) {}

TerminalScreen::~TerminalScreen() {
    if (!liveLine_.empty()) {
        [[maybe_unused]] const int nobodyReads = writeAll(STDOUT_FILENO, "\n", stop_);
    }
}

int TerminalScreen::printLine(std::string_view text) {
    const std::lock_guard lock(mutex_);
    return writeAll(STDOUT_FILENO, std::string(text) + '\n', stop_);
}

int TerminalScreen::redrawLine(std::string_view text) {
    const std::lock_guard lock(mutex_);
    const auto fitted = text::fitColumns(text, columns());
    liveLine_ = std::string(kClearLine) + std::string(kWrapOff) + fitted + std::string(kWrapOn);
    return writeAll(STDOUT_FILENO, liveLine_, stop_);
}

void TerminalScreen::write([[maybe_unused]] Path path, std::string_view text) {
#ifdef NDEBUG
    if (path == Path::Debug) {
        return;
    }
#endif
    const auto clean = text::printable(text) + '\n';
    const std::lock_guard lock(mutex_);
    const bool isInTheWay = sharesTerminal_ && !liveLine_.empty();
    // What cannot be written is lost; there is nobody to tell.
    static_cast<void>(isInTheWay && writeAll(STDOUT_FILENO, kClearLine, stop_));
    static_cast<void>(writeAll(STDERR_FILENO, clean, stop_));
    static_cast<void>(isInTheWay && writeAll(STDOUT_FILENO, liveLine_, stop_));
}

}  // namespace glintar::platform
