#pragma once

#include "support/Display.h"
#include "support/MessageBus.h"

#include <QDBusConnection>
#include <QDBusVariant>
#include <QEventLoop>
#include <QObject>

#include <chrono>
#include <future>
#include <mutex>
#include <string>
#include <thread>

namespace glintar::platform {

/// Lets Qt do what there is to do, for a moment.
void pump();

/// A message bus that Qt connects to.
class TestBus : public test::MessageBus {
public:
    TestBus() { start(); }
    [[nodiscard]] QDBusConnection connect() const;
};

/// A program on a bus, whose name is given up with it.
class Peer {
public:
    Peer(const TestBus& bus, const QString& name, const QString& path, const QString& interface);
    ~Peer();
    /// Comes back when the bus has passed the signal on.
    void tell(const QString& signal, const QVariantList& arguments);
    [[nodiscard]] QDBusConnection& connection() { return connection_; }
    void take() { connection_.registerService(name_); }

private:
    QDBusConnection connection_;
    QString name_, path_, interface_;
};

/// The desktop portal. It answers in a thread of its own, as in another program, since a first look is waited for.
class FakePortal {
public:
    struct Settings {
        uint scheme = 0;
        QString font = QString();
        std::chrono::milliseconds thinking{};
    };
    FakePortal(const TestBus& bus, Settings settings);
    ~FakePortal();
    void change(uint scheme);
    void changeFont(const QString& name);

    [[nodiscard]] Settings settings() const;

private:
    void answer(std::promise<QEventLoop*>& started);

    mutable std::mutex mutex_;
    Settings settings_;
    Peer peer_;
    QEventLoop* loop_ = nullptr;
    std::thread thread_;
};

class PortalObject : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit PortalObject(const FakePortal& portal) : portal_(portal) {}

public slots:
    QDBusVariant Read(const QString& group, const QString& key);

private:
    const FakePortal& portal_;
};

}  // namespace glintar::platform
