#include "platform/qt/strip/ScreenPoints.h"

#include <QGuiApplication>
#include <QScreen>

#include <cmath>

namespace glintar::platform {

namespace {

/// Of the primary screen: its left end and its lower end, as Qt counts.
Point origin() {
    const QScreen* const primary = QGuiApplication::primaryScreen();
    const QRect screen = primary == nullptr ? QRect() : primary->geometry();
    return {double(screen.x()), double(screen.y() + screen.height())};
}

int whole(double value) {
    return static_cast<int>(std::lround(value));
}

}  // namespace

Rect fromQt(const QRect& rect) {
    const Point zero = origin();
    return {rect.x() - zero.x, zero.y - rect.y() - rect.height(), double(rect.width()), double(rect.height())};
}

QRect toQt(const Rect& rect) {
    const Point zero = origin();
    return {whole(rect.x + zero.x), whole(zero.y - rect.top()), whole(rect.width), whole(rect.height)};
}

}  // namespace glintar::platform
