#include "app/SingleInstance.h"

#include "app/Start.h"
#include "platform/secret/SessionBus.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <fcntl.h>
#include <sys/file.h>

#include <filesystem>

namespace glintar::app {

namespace {

// As the standard derives it from the name "org.glintar.Glintar".
constexpr const char* kPath = "/org/glintar/Glintar";
constexpr const char* kInterface = "org.freedesktop.Application";
constexpr int kAnswerWithin = 1000;  // ms

}  // namespace

SingleInstance::SingleInstance(std::string busName) : busName_(QString::fromStdString(busName)) {}

SingleInstance::~SingleInstance() {
    if (hasBusName_) {
        QDBusConnection::sessionBus().unregisterObject(kPath);
        QDBusConnection::sessionBus().unregisterService(busName_);
    }
}

bool SingleInstance::claim() {
    return platform::sessionBusAddress() && QDBusConnection::sessionBus().isConnected() ? claimBusName() : claimLock();
}

bool SingleInstance::claimBusName() {
    auto bus = QDBusConnection::sessionBus();
    // The object first: whoever sees the name may call it.
    bus.registerObject(kPath, this, QDBusConnection::ExportAllSlots);
    const auto reply = bus.interface()->registerService(busName_, QDBusConnectionInterface::DontQueueService,
                                                        QDBusConnectionInterface::DontAllowReplacement);
    hasBusName_ = !reply.isValid() || reply.value() == QDBusConnectionInterface::ServiceRegistered;
    if (!hasBusName_) {
        bus.unregisterObject(kPath);
        auto call = QDBusMessage::createMethodCall(busName_, kPath, kInterface, "Activate");
        call << QVariantMap();
        bus.call(call, QDBus::Block, kAnswerWithin);
    }
    return hasBusName_;
}

bool SingleInstance::claimLock() {
    const auto folder = environment("XDG_RUNTIME_DIR");
    if (!folder) {
        return true;
    }
    const auto path = std::filesystem::path(*folder) / "glintar.lock";
    lock_ = platform::Descriptor(::open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
    // Where no lock can be made there is nothing that tells of others.
    return lock_.number() < 0 || ::flock(lock_.number(), LOCK_EX | LOCK_NB) == 0;
}

void SingleInstance::Activate(const QVariantMap& /*platformData*/) {
    if (onSecondStart) {
        onSecondStart();
    }
}

}  // namespace glintar::app
