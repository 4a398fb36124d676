#include "platform/terminal/TerminalScreen.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace glintar::platform {

namespace {

// ECMA-48 control sequences; "?7" (automatic wrapping) is DEC's, and terminals everywhere follow it.
constexpr std::string_view kClearLine = "\r\x1b[2K";
constexpr std::string_view kWrapOff = "\x1b[?7l";
constexpr std::string_view kWrapOn = "\x1b[?7h";

bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR) {
            return false;
        }
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return true;
}

std::string withoutControls(std::string_view text) {
    std::string clean(text);
    for (std::size_t i = 0; i < clean.size(); ++i) {
        const auto byte = static_cast<unsigned char>(clean[i]);
        const auto next = i + 1 < clean.size() ? static_cast<unsigned char>(clean[i + 1]) : 0;
        if ((byte < 0x20 && byte != '\n' && byte != '\t') || byte == 0x7f) {
            clean[i] = '?';
        } else if (byte == 0xc2 && next >= 0x80 && next < 0xa0) {  // U+0080 to U+009F
            clean.replace(i, 2, "?");
        }
    }
    return clean;
}

}  // namespace

TerminalScreen::TerminalScreen()
    : isTerminal_(::isatty(STDOUT_FILENO) == 1), sharesTerminal_(isTerminal_ && ::isatty(STDERR_FILENO) == 1) {}

TerminalScreen::~TerminalScreen() {
    if (!liveLine_.empty()) {
        writeAll(STDOUT_FILENO, "\n");
    }
}

bool TerminalScreen::printLine(std::string_view text) {
    const std::lock_guard lock(mutex_);
    return writeAll(STDOUT_FILENO, std::string(text) + '\n');
}

bool TerminalScreen::redrawLine(std::string_view text) {
    const std::lock_guard lock(mutex_);
    std::string line;
    for (const auto part : {kWrapOff, kClearLine, text, kWrapOn}) {
        line += part;
    }
    liveLine_ = std::move(line);
    return writeAll(STDOUT_FILENO, liveLine_);
}

void TerminalScreen::writeError(std::string_view text) {
    const auto clean = withoutControls(text) + '\n';
    const std::lock_guard lock(mutex_);
    const bool isInTheWay = sharesTerminal_ && !liveLine_.empty();
    if (isInTheWay) {
        writeAll(STDOUT_FILENO, kClearLine);
    }
    writeAll(STDERR_FILENO, clean);
    if (isInTheWay) {
        writeAll(STDOUT_FILENO, liveLine_);
    }
}

}  // namespace glintar::platform
