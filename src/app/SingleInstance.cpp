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

#include <filesystem>

namespace glintar::app {

namespace {

constexpr const char* kInterface = "org.freedesktop.Application";
constexpr int kAnswerWithin = 1000;  // ms
constexpr QLatin1String kSettingsAction("settings");

/// As the Desktop Entry standard derives it from the application's name.
QString objectPathOf(QString busName) {
    return '/' + busName.replace('.', '/');
}

/// Longer paths than it holds are cut off, and lead nowhere.
sockaddr_un addressOf(const std::filesystem::path& path) {
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    path.string().copy(address.sun_path, sizeof address.sun_path - 1);
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

bool SingleInstance::claim(bool opensSettings) {
    return platform::sessionBusAddress() && QDBusConnection::sessionBus().isConnected() ? claimBusName(opensSettings)
                                                                                        : claimLock(opensSettings);
}

bool SingleInstance::claimBusName(bool opensSettings) {
    auto bus = QDBusConnection::sessionBus();
    // The object first: whoever sees the name may call it.
    bus.registerObject(objectPathOf(busName_), this, QDBusConnection::ExportAllSlots);
    const auto reply = bus.interface()->registerService(busName_, QDBusConnectionInterface::DontQueueService,
                                                        QDBusConnectionInterface::DontAllowReplacement);
    hasBusName_ = !reply.isValid() || reply.value() == QDBusConnectionInterface::ServiceRegistered;
    if (!hasBusName_) {
        bus.unregisterObject(objectPathOf(busName_));
        auto call = QDBusMessage::createMethodCall(busName_, objectPathOf(busName_), kInterface,
                                                   opensSettings ? "ActivateAction" : "Activate");
        if (opensSettings) {
            call << QString(kSettingsAction) << QVariantList();
        }
        call << QVariantMap();
        bus.call(call, QDBus::Block, kAnswerWithin);
    }
    return hasBusName_;
}

bool SingleInstance::claimLock(bool opensSettings) {
    const auto folder = environment("XDG_RUNTIME_DIR");
    if (!folder) {
        return true;
    }
    const auto base = std::filesystem::path(*folder) / busName_.toStdString();
    lock_ = platform::Descriptor(::open((base.string() + ".lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    socketPath_ = base.string() + ".socket";
    socket_ = platform::Descriptor(::socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    // Where no lock can be made there is nothing that tells of others.
    if (lock_.number() >= 0 && ::flock(lock_.number(), LOCK_EX | LOCK_NB) != 0) {
        const auto address = addressOf(socketPath_);
        ::sendto(socket_.number(), opensSettings ? "s" : "", 1, MSG_NOSIGNAL,
                 reinterpret_cast<const sockaddr*>(&address), sizeof address);
        socketPath_.clear();
        return false;
    }
    listen();
    return true;
}

void SingleInstance::listen() {
    const auto address = addressOf(socketPath_);
    ::unlink(socketPath_.c_str());  // of one that could not tidy up
    if (::bind(socket_.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return;
    }
    knocks_ = std::make_unique<QSocketNotifier>(socket_.number(), QSocketNotifier::Read);
    connect(knocks_.get(), &QSocketNotifier::activated, this, [this] {
        bool opensSettings = false;
        for (char knock = 0; ::recv(socket_.number(), &knock, sizeof knock, 0) >= 0;) {
            opensSettings = opensSettings || knock == 's';
        }
        tell(opensSettings);
    });
}

void SingleInstance::Activate(const QVariantMap& /*platformData*/) {
    tell(false);
}

void SingleInstance::ActivateAction(const QString& name, const QVariantList& /*parameter*/,
                                    const QVariantMap& /*platformData*/) {
    tell(name == kSettingsAction);
}

void SingleInstance::tell(bool opensSettings) {
    if (onSecondStart) {
        onSecondStart(opensSettings);
    }
}

}  // namespace glintar::app
