#include "app/SingleInstance.h"

#include "app/Start.h"
#include "platform/secret/SessionBus.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace glintar::app {

namespace {

constexpr const char* kInterface = "org.freedesktop.Application";
constexpr int kAnswerWithin = 1000;  // ms
constexpr QLatin1String kSettingsAction("settings");
constexpr QLatin1String kDashboardAction("dashboard");

/// As the Desktop Entry standard derives it from the application's name.
QString objectPathOf(QString busName) {
    return '/' + busName.replace('.', '/');
}

/// Longer paths than it holds are cut off, and lead nowhere.
sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

}  // namespace

SingleInstance::SingleInstance(const std::string& busName) : busName_(QString::fromStdString(busName)) {}

SingleInstance::~SingleInstance() {
    if (hasBusName_) {
        QDBusConnection::sessionBus().unregisterObject(objectPathOf(busName_));
        QDBusConnection::sessionBus().unregisterService(busName_);
    }
    if (knocks_) {
        ::unlink(socketPath_.c_str());
    }
}

bool SingleInstance::hasBus() {
    return platform::sessionBusAddress() && QDBusConnection::sessionBus().isConnected();
}

bool SingleInstance::claim(Opens opens) {
    const bool isFirst = hasBus() ? claimBusName() : claimLock();
    if (!isFirst) {
        ask(opens);
    }
    return isFirst;
}

bool SingleInstance::claimBusName() {
    auto bus = QDBusConnection::sessionBus();
    // The object first: whoever sees the name may call it.
    bus.registerObject(objectPathOf(busName_), this, QDBusConnection::ExportAllSlots);
    const auto reply = bus.interface()->registerService(busName_, QDBusConnectionInterface::DontQueueService,
                                                        QDBusConnectionInterface::DontAllowReplacement);
    hasBusName_ = !reply.isValid() || reply.value() == QDBusConnectionInterface::ServiceRegistered;
    if (!hasBusName_) {
        bus.unregisterObject(objectPathOf(busName_));
    }
    return hasBusName_;
}

bool SingleInstance::claimLock() {
    const auto base = basePath();
    if (base.empty()) {
        return true;
    }
    lock_ = platform::Descriptor(::open((base + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    // Where no lock can be made there is nothing that tells of others.
    if (lock_.number() >= 0 && ::flock(lock_.number(), LOCK_EX | LOCK_NB) != 0) {
        return false;
    }
    listen(base + ".socket");
    return true;
}

void SingleInstance::ask(Opens opens) {
    if (!hasBus()) {
        const auto address = addressOf(basePath() + ".socket");
        const platform::Descriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
        const auto knock = static_cast<char>(opens);
        ::sendto(socket.number(), &knock, sizeof knock, MSG_NOSIGNAL, reinterpret_cast<const sockaddr*>(&address),
                 sizeof address);
        return;
    }
    const bool isAction = opens != Opens::Menu;
    auto call = QDBusMessage::createMethodCall(busName_, objectPathOf(busName_), kInterface,
                                               isAction ? "ActivateAction" : "Activate");
    if (isAction) {
        call << QString(opens == Opens::Settings ? kSettingsAction : kDashboardAction) << QVariantList();
    }
    call << QVariantMap();
    call.setAutoStartService(false);
    QDBusConnection::sessionBus().call(call, QDBus::Block, kAnswerWithin);
}

std::string SingleInstance::basePath() const {
    const auto folder = environment("XDG_RUNTIME_DIR");
    return folder ? std::string(*folder) + '/' + busName_.toStdString() : "";
}

void SingleInstance::listen(const std::string& path) {
    socketPath_ = path;
    socket_ = platform::Descriptor(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    const auto address = addressOf(path);
    ::unlink(path.c_str());  // of one that could not tidy up
    if (::bind(socket_.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return;
    }
    knocks_ = std::make_unique<QSocketNotifier>(socket_.number(), QSocketNotifier::Read);
    connect(knocks_.get(), &QSocketNotifier::activated, this, [this] {
        for (char knock = 0; ::recv(socket_.number(), &knock, sizeof knock, 0) >= 0;) {
            tell(static_cast<Opens>(knock));
        }
    });
}

void SingleInstance::Activate(const QVariantMap& /*platformData*/) {
    tell(Opens::Menu);
}

void SingleInstance::ActivateAction(const QString& name, const QVariantList& /*parameter*/,
                                    const QVariantMap& /*platformData*/) {
    tell(name == kSettingsAction ? Opens::Settings : name == kDashboardAction ? Opens::Dashboard : Opens::Menu);
}

void SingleInstance::tell(Opens opens) {
    if (onSecondStart) {
        onSecondStart(opens);
    }
}

}  // namespace glintar::app
