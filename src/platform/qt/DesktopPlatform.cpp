#include "platform/qt/DesktopPlatform.h"

#include "platform/DesktopEvents.h"
#include "platform/Directories.h"
#include "platform/Registry.h"
#include "platform/posix/Descriptor.h"
#include "platform/qt/DisplayGuard.h"
#include "platform/secret/SessionBus.h"

#include <QThreadPool>

#include <clocale>
#include <cstdlib>
#include <string_view>

namespace glintar::platform {

namespace {

std::string_view variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

/// What must be said before there is an application.
DesktopSettingsPolicy prepareApplication() {
    guardDisplay();  // whatever may end then: every change has been saved when it was made
    // Wayland gives no program a place on the screen; through XWayland it has one.
    if (!variable("QT_QPA_PLATFORM").starts_with("xcb")) {
        ::setenv("QT_QPA_PLATFORM", "xcb", 1);
    }
    // Qt's accessibility asks for the bus as soon as there is an application, and its tray later: where there is none,
    // libdbus would start one that outlives the program. No other program is given the variable.
    auto bus = sessionBusAddress();
    if (bus && !answersSoon(*bus)) {
        complain("glintar: the session bus does not answer; going on without it, and so without tray and key ring\n");
        bus.reset();
    }
    ::setenv("DBUS_SESSION_BUS_ADDRESS", bus.value_or("disabled:").c_str(), 1);
    const auto policy = desktopSettingsPolicy(variable("XDG_CURRENT_DESKTOP"), variable("QT_QPA_PLATFORMTHEME"));
    QApplication::setDesktopSettingsAware(policy.isSettingsAware);
    QApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QCoreApplication::setApplicationName("glintar");  // the class of every window
    QGuiApplication::setQuitOnLastWindowClosed(false);
    return policy;
}

std::optional<QDBusConnection> sessionBus() {
    if (!sessionBusAddress()) {
        return std::nullopt;
    }
    auto bus = QDBusConnection::sessionBus();
    return bus.isConnected() ? std::optional(bus) : std::nullopt;
}

}  // namespace

DesktopPlatform::DesktopPlatform(int& argc, char** argv, const RealPlatform::Options& options)
    : policy_(prepareApplication()),
      application_(argc, argv),
      machine_(options),
      connection_(XcbConnection::open()),
      reader_(*connection_),
      session_(sessionBus()),
      graphics_(platform().bundle),
      fontChanges_(platform().notifications.observe(
          kAppearanceChanged, [this] { graphics_.setFontFamily(QApplication::font().family().toStdString()); })),
      events_(platform().runLoop, platform().notifications,
              {.display = connection_.get(), .session = session_, .policy = policy_}),
      compositor_(*connection_),
      screens_(*connection_, platform().runLoop),
      pointer_(*connection_, screens_),
      statusBar_({.loop = platform().runLoop,
                  .connection = *connection_,
                  .compositor = compositor_,
                  .screens = screens_,
                  .session = session_,
                  .graphics = graphics_,
                  .events = events_,
                  .notifications = platform().notifications,
                  .preferences = platform().preferences,
                  .isManaged = pointer_.isSeenEverywhere()}),
      windows_({.loop = platform().runLoop, .connection = *connection_, .compositor = compositor_, .screens = screens_},
               platform().console, session_),
      loginItem_(platform().files, InstalledBundle::program("glintar-desktop").value_or("glintar-desktop"),
                 variable("XDG_CURRENT_DESKTOP")),
      desktop_{graphics_, events_, statusBar_, pointer_, windows_, clipboard_, workspace_, loginItem_} {
    // Qt has taken the user's locale; numbers are read and written without one.
    std::setlocale(LC_NUMERIC, "C");
    // Qt's painter hands pieces of a picture to a pool of threads. Ours are too small for more than one of them.
    QThreadPool::globalInstance()->setMaxThreadCount(1);
    events_.finishFirstLook();
}

DesktopPlatform::~DesktopPlatform() {
    releaseDisplay();
    machine_.endWork();           // it draws
    platform().registry.clear();  // some of it has windows
}

}  // namespace glintar::platform
