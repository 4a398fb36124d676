#pragma once

#include "platform/Graphics.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>

#include <functional>
#include <optional>

namespace glintar::platform {

/// What the desktop portal (org.freedesktop.portal.Settings) tells of the desktop's look, kept up to date. A portal may
/// come late, and one that goes away leaves its last word. Main thread only.
class PortalSettings final : public QObject {
    Q_OBJECT

public:
    /// Asks at once, and does not wait for the answers.
    explicit PortalSettings(QDBusConnection bus);

    /// Waits for the first answers, until at most 50 ms have passed since they were asked for.
    void finishFirstLook();

    /// None where the user has no preference, or there is no portal.
    [[nodiscard]] std::optional<Appearance> appearance() const { return appearance_; }

    /// In the words of GTK's settings; empty where it is not told.
    [[nodiscard]] const QString& fontName() const { return fontName_; }

    std::function<void()> onChange;  ///< one of the two answers differently

private slots:
    void onSettingChanged(const QDBusMessage& signal);

private:
    enum class Patience { First, Any };
    void askForAll(Patience patience);
    void ask(const QString& group, const QString& key, Patience patience);
    void take(const QString& group, const QString& key, const QVariant& value);

    QDBusConnection bus_;
    QDBusServiceWatcher watcher_;
    std::optional<Appearance> appearance_;
    QString fontName_;
};

}  // namespace glintar::platform
