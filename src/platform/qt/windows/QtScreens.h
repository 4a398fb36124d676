#pragma once

#include "platform/qt/windows/ScreenMap.h"
#include "platform/xcb/XcbConnection.h"

#include <QObject>

class QScreen;

namespace glintar::platform {

/// The screens that Qt knows of, as they come and go. Needs a QGuiApplication.
class QtScreens final : public QObject {
public:
    QtScreens();

    [[nodiscard]] const ScreenMap& map() const { return map_; }

    /// True on X servers that are guests of Wayland's and old enough to say so by the names of their screens.
    [[nodiscard]] bool areOfWayland() const;

    /// Runs when the map has become another.
    [[nodiscard]] Listening onChange(std::function<void()> listener) { return listeners_.add(std::move(listener)); }

private:
    void watch(QScreen* screen);
    void look();

    ScreenMap map_;
    Listeners<> listeners_;
};

}  // namespace glintar::platform
