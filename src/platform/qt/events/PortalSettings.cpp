#include "platform/qt/events/PortalSettings.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace glintar::platform {

namespace {

const QString kService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString kPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString kInterface = QStringLiteral("org.freedesktop.portal.Settings");

const QString kAppearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString kColorScheme = QStringLiteral("color-scheme");
const QString kInterfaceGroup = QStringLiteral("org.gnome.desktop.interface");
const QString kFontName = QStringLiteral("font-name");

constexpr int kFirstLook = 50;  // milliseconds

}  // namespace

PortalSettings::PortalSettings(QDBusConnection bus)
    : bus_(std::move(bus)), watcher_(kService, bus_, QDBusServiceWatcher::WatchForRegistration) {
    // With the arguments named instead, QtDBus does not yet know the type of the last one if this is its first use.
    bus_.connect(kService, kPath, kInterface, QStringLiteral("SettingChanged"), this,
                 SLOT(onSettingChanged(QDBusMessage)));
    connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this] { askForAll(Patience::Any); });
    askForAll(Patience::First);
}

void PortalSettings::finishFirstLook() {
    for (auto* const call : findChildren<QDBusPendingCallWatcher*>()) {
        call->waitForFinished();
    }
}

void PortalSettings::onSettingChanged(const QDBusMessage& signal) {
    if (const auto parts = signal.arguments(); parts.size() == 3) {
        take(parts[0].toString(), parts[1].toString(), parts[2]);
    }
}

void PortalSettings::askForAll(Patience patience) {
    ask(kAppearanceGroup, kColorScheme, patience);
    ask(kInterfaceGroup, kFontName, patience);
}

void PortalSettings::ask(const QString& group, const QString& key, Patience patience) {
    auto read = QDBusMessage::createMethodCall(kService, kPath, kInterface, QStringLiteral("Read"));
    read.setArguments({group, key});
    auto* const call =
        new QDBusPendingCallWatcher(bus_.asyncCall(read, patience == Patience::First ? kFirstLook : -1), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call, group, key, patience] {
        call->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *call;
        if (reply.isValid()) {
            take(group, key, reply.value().variant());
        } else if (patience == Patience::First && reply.error().type() == QDBusError::NoReply) {
            ask(group, key, Patience::Any);  // it is busy, or just being started
        }
    });
}

void PortalSettings::take(const QString& group, const QString& key, const QVariant& value) {
    QVariant plain = value;
    while (plain.metaType() == QMetaType::fromType<QDBusVariant>()) {  // portals wrap what they read once more
        plain = qvariant_cast<QDBusVariant>(plain).variant();
    }
    bool isNew = false;
    if (group == kAppearanceGroup && key == kColorScheme) {
        const auto scheme = plain.toUInt();
        const auto told = scheme == 1   ? std::optional(Appearance::Dark)
                          : scheme == 2 ? std::optional(Appearance::Light)
                                        : std::nullopt;
        isNew = std::exchange(appearance_, told) != told;
    } else if (group == kInterfaceGroup && key == kFontName) {
        const auto told = plain.toString();
        isNew = std::exchange(fontName_, told) != told;
    }
    if (isNew && onChange) {
        onChange();
    }
}

}  // namespace glintar::platform
