#include "platform/qt/windows/QtWindowServer.h"

#include "platform/qt/windows/QtAlert.h"
#include "platform/qt/windows/QtWindow.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <fmt/format.h>

namespace glintar::platform {

namespace {

/// A notice by the Desktop Notifications Specification 1.2, section 9.1 (org.freedesktop.Notifications.Notify). Its
/// body may have markup, which our texts have not.
QDBusMessage noticeOf(const std::string& title, const std::string& text) {
    auto message = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("/org/freedesktop/Notifications"),
        QStringLiteral("org.freedesktop.Notifications"), QStringLiteral("Notify"));
    QString body = QString::fromStdString(text);
    body.replace(u'&', QStringLiteral("&amp;"))
        .replace(u'<', QStringLiteral("&lt;"))
        .replace(u'>', QStringLiteral("&gt;"));
    constexpr unsigned kNew = 0;
    constexpr int kAsLongAsTheDesktopLikes = -1;
    message << QStringLiteral("Glintar") << kNew << QStringLiteral("org.glintar.Glintar")
            << QString::fromStdString(title) << body << QStringList()
            << QVariantMap{{QStringLiteral("desktop-entry"), QStringLiteral("org.glintar.Glintar")}}
            << kAsLongAsTheDesktopLikes;
    return message;
}

}  // namespace

QtWindowServer::QtWindowServer(const QtOverlay::Surroundings& surroundings, Console& console,
                               std::optional<QDBusConnection> bus)
    : surroundings_(surroundings), console_(console), bus_(std::move(bus)) {}

/// Windows that went last still wait for a loop to delete them.
QtWindowServer::~QtWindowServer() {
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

std::unique_ptr<Window> QtWindowServer::makeWindow(Window::Frame frame, std::string title) {
    return std::make_unique<QtWindow>(frame, title, surroundings_);
}

std::unique_ptr<Overlay> QtWindowServer::makeOverlay(std::string title) {
    return std::make_unique<QtOverlay>(surroundings_, title);
}

std::unique_ptr<Alert> QtWindowServer::showAlert(AlertText text, std::function<void(std::size_t)> onAnswer) {
    return std::make_unique<QtAlert>(text, std::move(onAnswer));
}

Rect QtWindowServer::visibleFrame(const Rect& near) const {
    const auto& map = surroundings_.screens.map();
    return surroundings_.screens.freeAreaOf(map.screenAt({near.x + near.width / 2, near.y + near.height / 2}));
}

void QtWindowServer::notify(std::string title, std::string text) {
    std::string line = fmt::format("{}: {}", title, text);
    if (!bus_ || !bus_->isConnected()) {
        console_.print(line);
        return;
    }
    auto* const call = new QDBusPendingCallWatcher(bus_->asyncCall(noticeOf(title, text)), &calls_);
    QObject::connect(call, &QDBusPendingCallWatcher::finished, &calls_, [this, call, line = std::move(line)] {
        if (call->isError()) {
            console_.print(line);
        }
        call->deleteLater();
    });
}

}  // namespace glintar::platform
