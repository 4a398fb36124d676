#pragma once

#include "platform/StatusBar.h"

#include <QAction>
#include <QMenu>
#include <QObject>

#include <vector>

namespace glintar::platform {

/// The menu of an item, shown in the strip and in the tray.
class ItemMenu final : public QObject {
public:
    ItemMenu() { fill(menu_); }

    /// Where the new menu is built like the old one, only texts and states of the entries change, so that an open menu
    /// stays open.
    void setMenu(Menu menu);
    [[nodiscard]] bool isEmpty() const { return actions_.empty(); }

    /// Fills another menu and keeps it filled as long as there are both.
    void fill(QMenu& menu);

    /// Lets the shortcuts work from every window of ours that has the focus, while the widget is visible.
    void listenBy(QWidget& widget);

    /// Shows the menu with its top left corner at the point, or ending at the height `above` where it has no room
    /// below.
    void popUp(const QPoint& topLeft, int above);

private:
    [[nodiscard]] bool isBuiltLike(const Menu& menu) const;
    void rebuild(std::size_t size);

    std::vector<QAction*> actions_;
    std::vector<std::function<void()>> work_;
    std::vector<QWidget*> holders_;  // of the actions
    QMenu menu_;                     // after the list that it leaves when it ends
};

}  // namespace glintar::platform
