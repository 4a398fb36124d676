#include "platform/terminal/TerminalOutput.h"

#include <sys/stat.h>
#include <unistd.h>

namespace glintar::platform {

TerminalOutput::TerminalOutput(TerminalScreen& screen) : screen_(screen) {
    struct stat status{};
    if (::fstat(STDOUT_FILENO, &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode))) {
        // poll(2) reports an error on a pipe whose reading end is closed, whatever it was asked for.
        readerGone_.emplace(STDOUT_FILENO, QSocketNotifier::Exception);
        QObject::connect(&*readerGone_, &QSocketNotifier::activated, &*readerGone_, [this] { closed(); });
    }
}

void TerminalOutput::printLine(std::string_view text) {
    if (!isClosed_ && !screen_.printLine(text)) {
        closed();
    }
}

void TerminalOutput::redrawLine(std::string_view text) {
    if (!isClosed_ && !screen_.redrawLine(text)) {
        closed();
    }
}

void TerminalOutput::closed() {
    isClosed_ = true;
    if (readerGone_) {
        readerGone_->setEnabled(false);
    }
    if (onClosed) {
        onClosed();
    }
}

}  // namespace glintar::platform
