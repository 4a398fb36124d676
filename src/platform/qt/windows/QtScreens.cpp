#include "platform/qt/windows/QtScreens.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace glintar::platform {

QtScreens::QtScreens() {
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen* screen) {
        watch(screen);
        look();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, [this] { look(); });
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, [this] { look(); });
    for (QScreen* const screen : QGuiApplication::screens()) {
        watch(screen);
    }
    look();
}

bool QtScreens::areOfWayland() const {
    return std::ranges::any_of(QGuiApplication::screens(),
                               [](const QScreen* screen) { return screen->name().startsWith(u"XWAYLAND"); });
}

void QtScreens::watch(QScreen* screen) {
    connect(screen, &QScreen::geometryChanged, this, [this] { look(); });
    connect(screen, &QScreen::logicalDotsPerInchChanged, this, [this] { look(); });
}

void QtScreens::look() {
    std::vector<ScreenMap::Screen> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRectF place = screen->geometry();
        screens.push_back({.topLeft = {place.x(), place.y()},
                           .size = {place.width(), place.height()},
                           .scale = screen->devicePixelRatio()});
    }
    ScreenMap seen(std::move(screens));
    if (seen != map_) {
        map_ = std::move(seen);
        listeners_.call();
    }
}

}  // namespace glintar::platform
