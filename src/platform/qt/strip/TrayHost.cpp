#include "platform/qt/strip/TrayHost.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QTimer>
#include <fmt/format.h>

#include <utility>

namespace glintar::platform {

namespace {

const QString kWatcher = "org.kde.StatusNotifierWatcher";
const QString kWatcherPath = "/StatusNotifierWatcher";

}  // namespace

TrayHost::TrayHost(XcbConnection& connection, std::optional<QDBusConnection> session, std::function<void()> onFound)
    : session_(std::move(session)),
      onFound_(std::move(onFound)),
      selection_(connection, fmt::format("_NET_SYSTEM_TRAY_S{}", connection.screenNumber())) {
    selectionChanged_ = selection_.onChange([this] { lookForWindow(); });
    if (!session_) {
        lookForWindow();
        return;
    }
    services_.emplace(kWatcher, *session_, QDBusServiceWatcher::WatchForRegistration);
    connect(&*services_, &QDBusServiceWatcher::serviceRegistered, this, &TrayHost::askWatcher);
    // A watcher may be there long before anybody shows what it watches.
    session_->connect(kWatcher, kWatcherPath, kWatcher, "StatusNotifierHostRegistered", this, SLOT(askWatcher()));
    askWatcher();
}

/// The bus goes first: what has both kinds draws better by it. No service is started for the question.
void TrayHost::askWatcher() {
    auto question = QDBusMessage::createMethodCall(kWatcher, kWatcherPath, "org.freedesktop.DBus.Properties", "Get");
    question << kWatcher << "IsStatusNotifierHostRegistered";
    question.setAutoStartService(false);
    auto* const pending = new QDBusPendingCallWatcher(session_->asyncCall(question), this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* call) {
        call->deleteLater();
        const QDBusPendingReply<QDBusVariant> answer = *call;
        if (answer.isValid() && answer.value().variant().toBool()) {
            found();
        } else {
            lookForWindow();
        }
    });
}

void TrayHost::lookForWindow() {
    if (selection_.isOwned()) {
        found();
    }
}

void TrayHost::found() {
    if (onFound_) {
        QTimer::singleShot(0, this, std::exchange(onFound_, {}));
    }
}

}  // namespace glintar::platform
