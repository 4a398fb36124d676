#include "WindowsDesktop.h"

#include <QDBusMessage>
#include <QDBusVirtualObject>

namespace glintar::platform {

namespace {

/// The desktop's notices, on a connection of its own as the desktop has.
class Notices final : public QDBusVirtualObject {
public:
    Notices() {
        bus_.registerVirtualObject(QStringLiteral("/org/freedesktop/Notifications"), this);
        bus_.registerService(QStringLiteral("org.freedesktop.Notifications"));
    }
    ~Notices() override { QDBusConnection::disconnectFromBus(QStringLiteral("desktop")); }

    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.signature() != u"susssasa{sv}i") {
            return false;
        }
        shown.emplace_back(message.arguments()[3].toString().toStdString(),
                           message.arguments()[4].toString().toStdString());
        return connection.send(message.createReply(1U));
    }

    std::vector<std::pair<std::string, std::string>> shown;

private:
    QDBusConnection bus_ = QDBusConnection::connectToBus(QString::fromLocal8Bit(qgetenv("DBUS_SESSION_BUS_ADDRESS")),
                                                         QStringLiteral("desktop"));
};

TEST_F(WindowsDesktop, NoticesGoToTheDesktopOrToTheConsole) {
    QtWindowServer alone({loop, *connection, compositor, screens}, console, std::nullopt);
    alone.notify("No bus", "at all");
    EXPECT_TRUE(console.printed("No bus: at all"));

    server.notify("Nobody", "there");
    EXPECT_TRUE(soon([&] { return console.printed("Nobody: there"); }));

    Notices desktop;
    server.notify("Version 2", "Faster & better, <really>");
    EXPECT_TRUE(soon([&] { return !desktop.shown.empty(); }));
    EXPECT_THAT(desktop.shown, testing::ElementsAre(testing::Pair("Version 2", "Faster &amp; better, &lt;really&gt;")));
    EXPECT_EQ(console.count("Version 2"), 0);
}

}  // namespace

}  // namespace glintar::platform
