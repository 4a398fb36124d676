#include "platform/qt/windows/QtScreens.h"

#include <QGuiApplication>
#include <QScreen>

#include <algorithm>

namespace glintar::platform {

QtScreens::QtScreens(XcbConnection& connection, RunLoop& loop) : workArea_(connection, loop) {
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

Rect QtScreens::freeAreaOf(const ScreenMap::Screen& screen) const {
    const auto& area = workArea_.area();
    return area ? freeArea(map_.fromQt(screen.frame), map_.toPoints(*area, screen)) : map_.fromQt(screen.available);
}

bool QtScreens::areOfWayland() const {
    return std::ranges::any_of(QGuiApplication::screens(),
                               [](const QScreen* screen) { return screen->name().startsWith(u"XWAYLAND"); });
}

void QtScreens::watch(QScreen* screen) {
    // A screen says how large it is before it says what of it is free. A new scale comes with a new size; when it says
    // that its scale is new, it still has the old size.
    connect(screen, &QScreen::geometryChanged, this, [this] { look(); });
    connect(screen, &QScreen::availableGeometryChanged, this, [this] { look(); });
}

void QtScreens::look() {
    std::vector<ScreenMap::Screen> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        screens.push_back({.frame = screen->geometry(),
                           .available = screen->availableGeometry(),
                           .scale = screen->devicePixelRatio(),
                           .name = screen->name().toStdString()});
    }
    ScreenMap seen(std::move(screens));
    if (seen != map_) {
        map_ = std::move(seen);
        listeners_.call();
    }
}

}  // namespace glintar::platform
