#pragma once

#include "platform/xcb/SelectionWatch.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>

#include <functional>
#include <optional>

namespace glintar::platform {

/// Waits for a tray of either kind: a StatusNotifierItem host on the session bus, or a window that owns the selection
/// of the XEmbed protocol. Qt chooses between the two at the first question, for good, so there must be one before it
/// is asked.
class TrayHost final : public QObject {
    Q_OBJECT

public:
    /// Calls `onFound` once, from the event loop. `connection` outlives the object.
    TrayHost(XcbConnection& connection, std::optional<QDBusConnection> session, std::function<void()> onFound);

private slots:
    void askWatcher();

private:
    void lookForWindow();
    void found();

    std::optional<QDBusConnection> session_;
    std::function<void()> onFound_;
    std::optional<QDBusServiceWatcher> services_;
    SelectionWatch selection_;
    Listening selectionChanged_;
};

}  // namespace glintar::platform
