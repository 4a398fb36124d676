#include "platform/qt/strip/StripWindow.h"

#include "platform/qt/strip/StripItem.h"
#include "platform/qt/strip/StripProperties.h"
#include "platform/qt/windows/QtScreens.h"

#include <QApplication>
#include <QBackingStore>
#include <QPaintEvent>
#include <QPainter>
#include <QWindow>

#include <algorithm>

namespace glintar::platform {

StripWindow::StripWindow(const Surroundings& surroundings, StripLook look, bool isManaged)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus | Qt::NoDropShadowWindowHint |
                           (isManaged ? Qt::WindowFlags() : Qt::BypassWindowManagerHint)),
      around_(surroundings),
      look_(look),
      chosen_(loadPlace(surroundings.preferences)) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_AlwaysShowToolTips);  // its program is never the active one
    setWindowTitle("Glintar prices");
    setAccessibleName("Glintar prices");
    winId();
    setAttribute(Qt::WA_X11NetWmWindowTypeDock);  // ignored before the window exists
    scale_ = devicePixelRatio();
    const auto follow = [this] {
        putInPlace();
        checkScale();
    };
    screensChanged_ = around_.screens.onChange(follow);
    workAreaChanged_ = around_.screens.onWorkAreaChange([this] { putInPlace(); });
    connect(windowHandle(), &QWindow::screenChanged, this, follow);
}

StripItem& StripWindow::addItem() {
    auto* const item = new StripItem(this, around_.graphics, look_);
    item->onWidthChanged = [this] { arrange(); };
    item->onPressed = [this](const QPointF& at) { drag_ = Drag{.from = at, .held = place_.topLeft()}; };
    item->onDragged = [this](const QPointF& at) { return dragTo(at); };
    item->onDropped = [this] { drop(); };
    items_.push_back(item);
    return *item;
}

void StripWindow::removeItem(StripItem& item) {
    std::erase(items_, &item);
    item.hide();
    item.deleteLater();  // it may be in the middle of a click
    arrange();
}

void StripWindow::setLook(StripLook look) {
    look_ = look;
    update();
    for (StripItem* const item : items_) {
        item->redraw();
    }
}

void StripWindow::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.fillRect(event->rect(), look_.background());
}

void StripWindow::arrange() {
    isEmpty_ = std::ranges::none_of(items_, [](const StripItem* item) { return item->neededWidth() > 0; });
    if (isEmpty_) {
        hide();
        return;
    }
    putInPlace();
    if (!isVisible()) {
        writeStripProperties(*windowHandle());
        show();
        requestStripProperties(*windowHandle());
    }
}

/// What is wider than the screen loses pictures at the end of the line: the icon, which opens the menu, stays to be
/// seen.
int StripWindow::fitItems(int most) {
    int width = 0;
    for (StripItem* const item : items_) {
        const int itsWidth = item->fitInto(most - width);
        width += itsWidth;
        item->resize(itsWidth, StripLook::kHeight);
        item->setVisible(itsWidth > 0);
    }
    return width;
}

void StripWindow::layOutItems() {
    int right = place_.width();
    for (StripItem* const item : items_) {
        right -= item->isVisibleTo(this) ? item->width() : 0;
        item->move(right, 0);
    }
}

void StripWindow::putInPlace() {
    const StripPlace place = chosen_.value_or(StripPlace{});
    const ScreenMap& map = around_.screens.map();
    const Rect area = around_.screens.freeAreaOf(map.screenNamed(place.screen));
    if (area.width <= 0 || isEmpty_) {
        return;
    }
    const int width = fitItems(static_cast<int>(area.width));
    const Size size{std::min(double(width), area.width), double(StripLook::kHeight)};
    place_ = map.toQt(stripFrame(place, size, area));
    fillPlace();
    layOutItems();
}

/// By one request to the X server for place and size together. By one for each, the end that is to stay where it is
/// would be seen elsewhere in between. No size is fixed: window managers that learn of another fixed size before the
/// request resize the window where it is.
void StripWindow::fillPlace() {
    // After a change of scale the window has kept its pixels and the widget its points.
    const bool isWindowOfAnotherSize = windowHandle()->size() != size();
    setGeometry(place_);
    if (isWindowOfAnotherSize) {
        windowHandle()->setGeometry(place_);
    }
}

void StripWindow::checkScale() {
    if (const double now = devicePixelRatio(); now != scale_) {
        scale_ = now;
        if (QBackingStore* const pixels = backingStore()) {
            pixels->resize(size());  // Qt does it for another number of points only
        }
        update();
        for (StripItem* const item : items_) {
            item->redraw();
        }
        if (onScaleChanged) {
            onScaleChanged();
        }
    }
}

bool StripWindow::dragTo(const QPointF& pointer) {
    if (!drag_) {
        return false;
    }
    const QPointF way = pointer - drag_->from;
    drag_->isUnderWay |= way.manhattanLength() >= QApplication::startDragDistance();
    if (drag_->isUnderWay) {
        const ScreenMap& map = around_.screens.map();
        const auto& screen = map.screenAt(map.fromQt(QRect(pointer.toPoint(), QSize(0, 0))).origin());
        const QRect held(drag_->held + way.toPoint(), place_.size());
        chosen_ = nearestPlace(map.fromQt(held), around_.screens.freeAreaOf(screen));
        if (!map.isPrimary(screen)) {
            chosen_->screen = screen.name;
        }
        putInPlace();
    }
    return drag_->isUnderWay;
}

void StripWindow::drop() {
    drag_.reset();
    if (chosen_) {
        savePlace(around_.preferences, *chosen_);
    }
}

}  // namespace glintar::platform
