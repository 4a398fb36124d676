#include "platform/qt/DisplayGuard.h"

#include "platform/posix/Descriptor.h"
#include "platform/xcb/XcbConnection.h"

#include <QString>
#include <fmt/format.h>
#include <unistd.h>

#include <cstdlib>

namespace glintar::platform {

namespace {

// For the handlers of Qt and the C library, which have no argument of ours.
bool isGuarded = false;
QtMessageHandler nextHandler = nullptr;

void leave() {
    if (isGuarded) {
        complain("glintar: the display has gone away\n");
        ::_exit(1);
    }
}

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    if (!isGuarded || !text.contains("X11 connection broke")) {
        nextHandler(type, context, text);
    }
}

}  // namespace

std::optional<std::string> displayProblem() {
    const char* const display = std::getenv("DISPLAY");
    if (display == nullptr || *display == '\0') {
        return "no display is named ($DISPLAY)";
    }
    if (XcbConnection::open() == nullptr) {
        return fmt::format("the display {} cannot be reached", display);
    }
    return {};
}

void guardDisplay() {
    isGuarded = std::atexit(leave) == 0;
    nextHandler = qInstallMessageHandler(handleMessage);
}

void releaseDisplay() {
    isGuarded = false;
}

}  // namespace glintar::platform
