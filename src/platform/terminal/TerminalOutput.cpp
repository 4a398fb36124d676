#include "platform/terminal/TerminalOutput.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace glintar::platform {

TerminalOutput::TerminalOutput(TerminalScreen& screen) : screen_(screen) {
    struct stat status{};
    if (::fstat(STDOUT_FILENO, &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode))) {
        // poll(2) reports an error on a pipe whose reading end is closed, whatever it was asked for.
        readerGone_.emplace(STDOUT_FILENO, QSocketNotifier::Exception);
        QObject::connect(&*readerGone_, &QSocketNotifier::activated, &*readerGone_, [this] { closed({}); });
    }
}

void TerminalOutput::printLine(std::string_view text) {
    if (!isClosed_) {
        judge(screen_.printLine(text));
    }
}

void TerminalOutput::redrawLine(std::string_view text) {
    if (!isClosed_) {
        judge(screen_.redrawLine(text));
    }
}

void TerminalOutput::judge(int error) {
    if (error == EPIPE || error == ECANCELED) {
        closed({});
    } else if (error != 0) {
        closed(std::generic_category().message(error));
    }
}

void TerminalOutput::closed(const std::string& failure) {
    isClosed_ = true;
    if (readerGone_) {
        readerGone_->setEnabled(false);
    }
    if (onClosed) {
        onClosed(failure);
    }
}

}  // namespace glintar::platform
