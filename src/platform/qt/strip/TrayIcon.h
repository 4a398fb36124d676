#pragma once

#include "platform/Graphics.h"
#include "platform/qt/strip/TrayHost.h"

#include <QMenu>
#include <QSystemTrayIcon>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace glintar::platform {

class ItemMenu;

/// The icon in the desktop's tray, from the moment there is one; from then on Qt follows the tray as it goes and comes.
class TrayIcon {
public:
    /// `menu` is what its context menu shows. Both references outlive it.
    TrayIcon(XcbConnection& connection, std::optional<QDBusConnection> session, ItemMenu& menu);
    ~TrayIcon();
    TrayIcon(const TrayIcon&) = delete;
    TrayIcon& operator=(const TrayIcon&) = delete;

    void setImage(ImagePtr image);
    void setToolTip(const std::string& text);
    void setShown(bool isShown);

    std::function<void()> onClick;  ///< with the left button; the pointer is over the icon

private:
    void begin();
    void show();

    ItemMenu& itemMenu_;
    ImagePtr image_;
    QString toolTip_;
    bool isShown_ = true;
    std::unique_ptr<QMenu> menu_;
    std::unique_ptr<QSystemTrayIcon> icon_;
    TrayHost host_;
};

}  // namespace glintar::platform
