#pragma once

#include "platform/DesktopEvents.h"
#include "platform/RunLoop.h"
#include "platform/qt/events/ActiveWindowWatch.h"
#include "platform/qt/events/DesktopLook.h"
#include "platform/qt/events/PortalSettings.h"

#include <QDBusConnection>
#include <QObject>

#include <optional>

namespace glintar::platform {

class NotificationCenter;

/// The desktop's look and the active program, as a Qt program sees them; needs a QApplication. Gives the application
/// the desktop's font, and colours that go with `appearance`, where Qt does not do so by itself; `kAppearanceChanged`
/// tells of either. Sleep and network are told of by `QtMachineEvents`.
class QtDesktopEvents final : public QObject, public DesktopEvents {
public:
    struct Sources {
        XcbConnection* display = nullptr;        ///< must live longer; without one nobody tells of the active program
        std::optional<QDBusConnection> session;  ///< without one the palette alone tells dark from light
        DesktopSettingsPolicy policy;
    };
    QtDesktopEvents(RunLoop& loop, NotificationCenter& notifications, Sources sources);
    ~QtDesktopEvents() override;

    /// Waits for the portal's first answer, until at most 50 ms after the making of this object, so that the first
    /// window comes in the right colours. Later answers are changes like any other.
    void finishFirstLook();

    [[nodiscard]] Appearance appearance() const override { return appearance_; }

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void refresh();
    [[nodiscard]] bool applyFont();
    void applyColors(std::optional<Appearance> wanted);

    RunLoop& loop_;
    NotificationCenter& notifications_;
    DesktopSettingsPolicy policy_;
    Appearance appearance_;
    bool hasOwnColors_ = false;  ///< the application's palette is one that was set here
    bool isApplying_ = false;
    QString fontName_;
    TimerHandle patience_;  ///< with a desktop whose colours Qt follows by itself
    bool isPatienceOver_ = false;
    std::optional<PortalSettings> portal_;
    std::optional<ActiveWindowWatch> activeWindow_;
};

}  // namespace glintar::platform
