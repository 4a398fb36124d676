#include "platform/qt/strip/ItemMenu.h"

#include <QApplication>
#include <QScreen>

#include <algorithm>

namespace glintar::platform {

void ItemMenu::setMenu(Menu menu) {
    if (!isBuiltLike(menu)) {
        rebuild(menu.size());
    }
    work_.resize(menu.size());
    for (std::size_t index = 0; index < menu.size(); ++index) {
        MenuItem& item = menu[index];
        actions_[index]->setSeparator(item.isSeparator);
        actions_[index]->setText(QString::fromStdString(item.title).replace('&', "&&"));
        actions_[index]->setEnabled(item.isEnabled);
        actions_[index]->setShortcut(
            item.shortcut == 0 ? QKeySequence() : QKeySequence(QStringLiteral("Ctrl+") + QLatin1Char(item.shortcut)));
        work_[index] = std::move(item.action);
    }
}

bool ItemMenu::isBuiltLike(const Menu& menu) const {
    return std::ranges::equal(menu, actions_, [](const MenuItem& item, const QAction* action) {
        return item.isSeparator == action->isSeparator();
    });
}

void ItemMenu::rebuild(std::size_t size) {
    for (QAction* const action : actions_) {
        for (QWidget* const holder : holders_) {
            holder->removeAction(action);
        }
        action->deleteLater();  // it may be the one that is being carried out
    }
    actions_.clear();
    for (std::size_t index = 0; index < size; ++index) {
        auto* const action = new QAction(this);
        action->setShortcutContext(Qt::ApplicationShortcut);
        action->setShortcutVisibleInContextMenu(true);
        connect(action, &QAction::triggered, this, [this, index] {
            // A shortcut leaves the menu open that it was pressed in.
            if (QWidget* const open = QApplication::activePopupWidget()) {
                open->close();
            }
            if (const auto work = index < work_.size() ? work_[index] : nullptr) {
                work();
            }
        });
        actions_.push_back(action);
        for (QWidget* const holder : holders_) {
            holder->addAction(action);
        }
    }
}

void ItemMenu::fill(QMenu& menu) {
    menu.setWindowTitle("Glintar menu");
    listenBy(menu);
}

void ItemMenu::listenBy(QWidget& widget) {
    holders_.push_back(&widget);
    connect(&widget, &QObject::destroyed, this, [this, gone = &widget] { std::erase(holders_, gone); });
    widget.addActions({actions_.begin(), actions_.end()});
}

void ItemMenu::popUp(const QPoint& topLeft, int above) {
    const QScreen* screen = QGuiApplication::screenAt(topLeft);
    screen = screen == nullptr ? QGuiApplication::primaryScreen() : screen;
    QPoint at = topLeft;
    // Qt's own style forgets that its column of checkmarks grows with the font, and cuts the longest text.
    menu_.setMinimumWidth(0);
    menu_.setMinimumWidth(menu_.sizeHint().width() + menu_.fontMetrics().height());
    const QSize size = menu_.sizeHint();
    if (screen != nullptr && at.y() + size.height() > screen->availableGeometry().bottom()) {
        at.setY(above - size.height());
    }
    menu_.popup(at);
}

}  // namespace glintar::platform
