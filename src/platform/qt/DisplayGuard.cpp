#include "platform/qt/DisplayGuard.h"

#include "platform/posix/Descriptor.h"
#include "platform/xcb/XcbConnection.h"

#include <QMessageLogContext>
#include <QString>
#include <fmt/format.h>
#include <unistd.h>

#include <cstdlib>
#include <utility>

namespace glintar::platform {

namespace {

// For the handlers of Qt and the C library, which have no argument of ours.
struct Guarded {
    bool isActive = false;
    std::string programName;
    QtMessageHandler next = nullptr;
};

Guarded& guarded() {
    static auto* const kept = new Guarded;  // never destroyed: it is used at the very end
    return *kept;
}

void leave() {
    Guarded& guard = guarded();
    if (!std::exchange(guard.isActive, false)) {
        return;
    }
    complain(fmt::format("{}: the display has gone away\n", guard.programName));
    ::_exit(1);
}

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    const Guarded& guard = guarded();
    if (guard.isActive && text.contains("X11 connection broke")) {
        return;
    }
    if (guard.next != nullptr) {
        guard.next(type, context, text);
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

DisplayGuard::DisplayGuard(std::string programName) {
    Guarded& guard = guarded();
    static const bool isRegistered = std::atexit(leave) == 0;
    guard.programName = std::move(programName);
    guard.isActive = isRegistered;
    if (guard.next == nullptr) {
        guard.next = qInstallMessageHandler(handleMessage);
    }
}

DisplayGuard::~DisplayGuard() {
    release();
}

void DisplayGuard::release() {
    guarded().isActive = false;
}

}  // namespace glintar::platform
