#include "platform/qt/strip/StripWindow.h"

#include "platform/qt/strip/ScreenPoints.h"
#include "platform/qt/strip/StripItem.h"
#include "platform/qt/strip/StripProperties.h"

#include <QApplication>
#include <QPaintEvent>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <algorithm>
#include <cmath>

namespace glintar::platform {

StripWindow::StripWindow(const Graphics& graphics, Preferences& preferences, WorkAreaWatch& workArea, StripLook look)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus |
                           Qt::NoDropShadowWindowHint),
      graphics_(graphics),
      preferences_(preferences),
      workArea_(workArea),
      look_(look),
      chosen_(loadPlace(preferences)) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_AlwaysShowToolTips);  // its program is never the active one
    setWindowTitle("Glintar prices");
    setAccessibleName("Glintar prices");
    winId();
    setAttribute(Qt::WA_X11NetWmWindowTypeDock);  // ignored before the window exists
    scale_ = devicePixelRatio();
    followScreens();
    workAreaChanged_ = workArea_.onChange([this] { putInPlace(); });
}

StripItem& StripWindow::addItem() {
    auto* const item = new StripItem(this, graphics_, look_);
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

/// Screens come one by one, and say how large they are before they say what of it is free: each is heard whenever it
/// says anything.
void StripWindow::followScreens() {
    const auto follow = [this](QScreen* screen) {
        connect(screen, &QScreen::availableGeometryChanged, this, &StripWindow::putInPlace);
        connect(screen, &QScreen::geometryChanged, this, &StripWindow::putInPlace);
        connect(screen, &QScreen::logicalDotsPerInchChanged, this, &StripWindow::checkScale);
    };
    for (QScreen* const screen : QGuiApplication::screens()) {
        follow(screen);
    }
    connect(qApp, &QGuiApplication::screenAdded, this, [this, follow](QScreen* screen) {
        follow(screen);
        putInPlace();
    });
    connect(qApp, &QGuiApplication::primaryScreenChanged, this, &StripWindow::putInPlace);
    connect(qApp, &QGuiApplication::screenRemoved, this, &StripWindow::putInPlace);
    connect(windowHandle(), &QWindow::screenChanged, this, [this] {
        putInPlace();
        checkScale();
    });
}

const QScreen* StripWindow::screenOf(const StripPlace& place) const {
    const auto screens = QGuiApplication::screens();
    const auto named = std::ranges::find(screens, QString::fromStdString(place.screen), &QScreen::name);
    return named == screens.end() ? QGuiApplication::primaryScreen() : *named;
}

Rect StripWindow::freeAreaOf(const QScreen& screen) const {
    const auto& area = workArea_.area();
    if (!area) {
        return fromQt(screen.availableGeometry());
    }
    // Screens have their top left corners where they have them in pixels.
    const QPoint corner = screen.geometry().topLeft();
    const double scale = screen.devicePixelRatio();
    const auto points = [scale](int pixels) { return static_cast<int>(std::lround(pixels / scale)); };
    const QPoint from = corner + QPoint(points(area->x - corner.x()), points(area->y - corner.y()));
    return freeArea(fromQt(screen.geometry()), fromQt({from, QSize(points(area->width), points(area->height))}));
}

void StripWindow::arrange() {
    int width = 0;
    for (const StripItem* const item : items_) {
        width += item->neededWidth();
    }
    contentWidth_ = width;
    if (width == 0) {
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

void StripWindow::layOutItems() {
    int right = place_.width();
    for (StripItem* const item : items_) {
        const int needed = item->neededWidth();
        right -= needed;
        item->setGeometry(right, 0, needed, StripLook::kHeight);
        item->setVisible(needed > 0);
    }
}

void StripWindow::putInPlace() {
    const StripPlace place = chosen_.value_or(StripPlace{});
    const QScreen* const screen = screenOf(place);
    if (screen == nullptr || contentWidth_ <= 0) {
        return;
    }
    const Rect area = freeAreaOf(*screen);
    // What is wider than the screen is cut off at its left: the icon, which opens the menu, stays to be seen.
    const Size size{std::min(double(contentWidth_), area.width), double(StripLook::kHeight)};
    place_ = toQt(stripFrame(place, size, area));
    setFixedSize(place_.size());
    move(place_.topLeft());
    layOutItems();
}

void StripWindow::checkScale() {
    if (const double now = devicePixelRatio(); now != scale_) {
        scale_ = now;
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
        const QScreen* screen = QGuiApplication::screenAt(pointer.toPoint());
        screen = screen == nullptr ? QGuiApplication::primaryScreen() : screen;
        const QRect held(drag_->held + way.toPoint(), place_.size());
        chosen_ = nearestPlace(fromQt(held), freeAreaOf(*screen));
        if (screen != QGuiApplication::primaryScreen()) {
            chosen_->screen = screen->name().toStdString();
        }
        putInPlace();
    }
    return drag_->isUnderWay;
}

void StripWindow::drop() {
    drag_.reset();
    if (chosen_) {
        savePlace(preferences_, *chosen_);
    }
}

}  // namespace glintar::platform
