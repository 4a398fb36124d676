#include "platform/terminal/TerminalScreen.h"

#include "platform/posix/Descriptor.h"
#include "text/Unicode.h"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace glintar::platform {

namespace {

// ECMA-48 control sequences, as are those that go up and erase what is below; "?7" (automatic wrapping) is DEC's, and
// terminals everywhere follow it.
constexpr std::string_view kClearLine = "\r\x1b[2K";
constexpr std::string_view kWrapOff = "\x1b[?7l";
constexpr std::string_view kWrapOn = "\x1b[?7h";

bool canRedraw() {
    const char* kind = std::getenv("TERM");
    return ::isatty(STDOUT_FILENO) == 1 && kind && *kind && std::string_view(kind) != "dumb";
}

/// Asked each time: the user may have changed the window.
winsize windowSize() {
    winsize size{};
    const bool isKnown = ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 && size.ws_row > 0;
    return isKnown ? size : winsize{.ws_row = 24, .ws_col = 80, .ws_xpixel = 0, .ws_ypixel = 0};
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
    return writeAll(STDOUT_FILENO, text::printable(text) + '\n', stop_);
}

std::string TerminalScreen::clearing() const {
    return liveRows_ > 1 ? fmt::format("\r\x1b[{}A\x1b[J", liveRows_ - 1) : std::string(kClearLine);
}

int TerminalScreen::redrawLine(std::string_view text) {
    const std::lock_guard lock(mutex_);
    const auto window = windowSize();
    std::string drawn(kWrapOff);
    std::size_t rows = 0;
    const auto clean = text::printable(text);
    for (std::string_view rest = clean; rows == 0 || (!rest.empty() && rows < window.ws_row); ++rows) {
        const auto line = rest.substr(0, rest.find('\n'));
        drawn += (rows > 0 ? "\n" : "") + text::fitColumns(line, window.ws_col);
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
    }
    drawn += kWrapOn;
    const int error = writeAll(STDOUT_FILENO, clearing() + drawn, stop_);
    liveLine_ = text.empty() ? std::string() : std::move(drawn);
    liveRows_ = rows;
    return error;
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
    static_cast<void>(isInTheWay && writeAll(STDOUT_FILENO, clearing(), stop_));
    static_cast<void>(writeAll(STDERR_FILENO, clean, stop_));
    static_cast<void>(isInTheWay && writeAll(STDOUT_FILENO, liveLine_, stop_));
}

}  // namespace glintar::platform
