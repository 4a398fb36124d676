#include "TestBus.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <gtest/gtest.h>

#include <thread>

namespace glintar::platform {

namespace {

const QString kPortal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPortalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kSettings = QStringLiteral("org.freedesktop.portal.Settings");

QString uniqueName() {
    static int count = 0;
    return QStringLiteral("test-%1").arg(++count);
}

}  // namespace

void pump() {
    QCoreApplication::processEvents();
    std::this_thread::sleep_for(std::chrono::milliseconds{1});
}

QDBusConnection TestBus::connect() const {
    return QDBusConnection::connectToBus(QString::fromStdString(address()), uniqueName());
}

Peer::Peer(const TestBus& bus, const QString& name, const QString& path, const QString& interface)
    : connection_(bus.connect()), name_(name), path_(path), interface_(interface) {}

Peer::~Peer() {
    connection_.unregisterService(name_);
    QDBusConnection::disconnectFromBus(connection_.name());
}

void Peer::tell(const QString& signal, const QVariantList& arguments) {
    auto message = QDBusMessage::createSignal(path_, interface_, signal);
    message.setArguments(arguments);
    connection_.send(message);
    connection_.interface()->isServiceRegistered(name_);
}

QDBusVariant PortalObject::Read(const QString& group, const QString& key) {
    const auto settings = portal_.settings();
    std::this_thread::sleep_for(settings.thinking);
    if (group == QStringLiteral("org.freedesktop.appearance") && key == QStringLiteral("color-scheme")) {
        // Wrapped once more than needed, as the real ones do.
        return QDBusVariant(QVariant::fromValue(QDBusVariant(QVariant(settings.scheme))));
    }
    return QDBusVariant(QVariant(settings.font));
}

FakePortal::FakePortal(const TestBus& bus, Settings settings)
    : settings_(std::move(settings)), peer_(bus, kPortal, kPortalPath, kSettings) {
    std::promise<QEventLoop*> started;
    thread_ = std::thread([&] { answer(started); });
    loop_ = started.get_future().get();
    peer_.take();
}

FakePortal::~FakePortal() {
    loop_->quit();
    thread_.join();
}

void FakePortal::answer(std::promise<QEventLoop*>& started) {
    PortalObject object(*this);
    auto bus = peer_.connection();
    bus.registerObject(kPortalPath, &object, QDBusConnection::ExportAllSlots);
    QEventLoop loop;
    started.set_value(&loop);
    loop.exec();
    bus.unregisterObject(kPortalPath);
}

FakePortal::Settings FakePortal::settings() const {
    const std::lock_guard lock(mutex_);
    return settings_;
}

void FakePortal::change(uint scheme) {
    {
        const std::lock_guard lock(mutex_);
        settings_.scheme = scheme;
    }
    peer_.tell(QStringLiteral("SettingChanged"),
               {QStringLiteral("org.freedesktop.appearance"), QStringLiteral("color-scheme"),
                QVariant::fromValue(QDBusVariant(QVariant(scheme)))});
}

void FakePortal::changeFont(const QString& name) {
    {
        const std::lock_guard lock(mutex_);
        settings_.font = name;
    }
    peer_.tell(QStringLiteral("SettingChanged"),
               {QStringLiteral("org.gnome.desktop.interface"), QStringLiteral("font-name"),
                QVariant::fromValue(QDBusVariant(QVariant(name)))});
}

}  // namespace glintar::platform
