#pragma once

#include "platform/NotificationCenter.h"
#include "platform/StatusBar.h"
#include "platform/qt/strip/StripWindow.h"
#include "platform/xcb/CompositorWatch.h"

#include <QDBusConnection>

#include <memory>
#include <optional>

namespace glintar::platform {

class DesktopEvents;
class Preferences;
class RunLoop;

/// The status bar: a strip along the edge of a screen, and an icon in the desktop's tray for the first square item.
/// Needs a QApplication on an X server. Where the user drags the strip is kept in the preferences (`StripPlacement.h`).
class QtStatusBar final : public StatusBar {
public:
    /// All references outlive the bar. Somebody reads the events of `connection` (`XcbReader`). `session` is the
    /// message bus, if there is one.
    struct Surroundings {
        RunLoop& loop;
        XcbConnection& connection;
        CompositorWatch& compositor;
        QtScreens& screens;
        std::optional<QDBusConnection> session;
        const Graphics& graphics;  ///< what it draws is what the strip shows: a `QtGraphics`
        const DesktopEvents& events;
        NotificationCenter& notifications;
        Preferences& preferences;
        /// Whether a window manager looks after the strip. Under Wayland none may, since it would choose the place;
        /// then the strip raises itself above each window that becomes active.
        bool isManaged = true;
    };
    explicit QtStatusBar(Surroundings surroundings);
    ~QtStatusBar() override;

    std::unique_ptr<StatusItem> addItem(StatusItem::Length length) override;
    Rect frame() const override;
    Rect screen() const override;
    double scale() const override { return strip_.devicePixelRatio(); }

private:
    [[nodiscard]] StripLook look() const;

    Surroundings around_;
    StripWindow strip_;
    bool hasTrayIcon_ = false;
    Listening compositorChanged_;
    Listening activeWindowChanged_;
    std::unique_ptr<NotificationCenter::Observation> appearanceChanged_;
};

}  // namespace glintar::platform
