#pragma once

#include "platform/Desktop.h"
#include "platform/NotificationCenter.h"
#include "platform/posix/XdgLoginItem.h"
#include "platform/qt/XcbReader.h"
#include "platform/qt/events/QtDesktopEvents.h"
#include "platform/qt/graphics/QtGraphics.h"
#include "platform/qt/strip/QtStatusBar.h"
#include "platform/qt/windows/QtAlert.h"
#include "platform/qt/windows/QtPointer.h"
#include "platform/qt/windows/QtScreens.h"
#include "platform/qt/windows/QtWindowServer.h"
#include "platform/qt/windows/QtWorkspace.h"
#include "platform/real/RealPlatform.h"
#include "platform/xcb/CompositorWatch.h"
#include "platform/xcb/XcbConnection.h"

#include <QApplication>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace glintar::platform {

/// The real machine with its screen. One a process.
class DesktopPlatform {
public:
    /// `argc` and `argv` are main's and must live as long. Wants a display that can be reached (`displayProblem`).
    DesktopPlatform(int& argc, char** argv, const RealPlatform::Options& options);
    DesktopPlatform(const DesktopPlatform&) = delete;
    DesktopPlatform& operator=(const DesktopPlatform&) = delete;
    ~DesktopPlatform();

    /// Runs the loop until `exit`, and returns its status.
    int exec() { return machine_.exec(); }
    void exit(int status) { machine_.exit(status); }
    void onTerminate(std::function<void()> handler) { machine_.onTerminate = std::move(handler); }

    /// From now on the platform tells of sleep, the network and preferences that others write.
    void watch() { machine_.watch(); }

    [[nodiscard]] Platform& platform() { return machine_.platform(); }
    [[nodiscard]] Desktop& desktop() { return desktop_; }

    /// Whether the program is to be started anew once everything here has gone.
    [[nodiscard]] bool isRelaunchWanted() const { return workspace_.isRelaunchWanted(); }

private:
    // Destroyed from the last to the first: whoever draws or listens goes before what it draws on.
    DesktopSettingsPolicy policy_;
    QApplication application_;
    RealPlatform machine_;
    std::unique_ptr<XcbConnection> connection_;
    XcbReader reader_;
    std::optional<QDBusConnection> session_;
    QtGraphics graphics_;
    std::unique_ptr<NotificationCenter::Observation> fontChanges_;
    QtDesktopEvents events_;
    CompositorWatch compositor_;
    QtScreens screens_;
    QtPointer pointer_;
    QtStatusBar statusBar_;
    QtWindowServer windows_;
    QtClipboard clipboard_;
    QtWorkspace workspace_;
    XdgLoginItem loginItem_;
    Desktop desktop_;
};

}  // namespace glintar::platform
