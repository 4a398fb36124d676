#pragma once

#include "platform/RunLoop.h"
#include "platform/posix/Descriptor.h"

#include <QDBusConnection>
#include <QObject>
#include <QSocketNotifier>

#include <optional>
#include <string>

namespace glintar::platform {

class NotificationCenter;

/// Where the machine's message bus listens: $DBUS_SYSTEM_BUS_ADDRESS, else the well-known socket if that exists.
[[nodiscard]] std::optional<std::string> systemBusAddress();

/// Posts `kMachineResumed` when the login manager (org.freedesktop.login1) tells that the machine has woken. Finds both
/// it and its bus again when they come back; starts neither. Main thread only.
///
/// QtDBus connects while its caller waits, and a bus that hangs would hold up everything. So a socket of our own first
/// sees whether somebody answers there, and however long that takes, nobody waits for it.
class LoginManager final : public QObject {
    Q_OBJECT

public:
    /// Only an address with a "unix:path=" is understood; with another one nothing happens.
    LoginManager(RunLoop& loop, NotificationCenter& notifications, std::string busAddress);
    ~LoginManager() override;

private slots:
    void onPrepareForSleep(bool isBeginning);
    void onDisconnected();

private:
    void knock();
    void onAnswer();
    [[nodiscard]] bool connectToBus();
    void retry();

    RunLoop& loop_;
    NotificationCenter& notifications_;
    std::string busAddress_;
    Descriptor door_;
    std::optional<QSocketNotifier> doorNotifier_;
    std::optional<QDBusConnection> bus_;
    QString busName_;
    Duration nextWait_;
    TimerHandle timer_;
};

}  // namespace glintar::platform
