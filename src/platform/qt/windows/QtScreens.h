#pragma once

#include "platform/qt/windows/ScreenMap.h"
#include "platform/xcb/WorkAreaWatch.h"
#include "platform/xcb/XcbConnection.h"

#include <QObject>

class QScreen;

namespace glintar::platform {

/// The screens that Qt knows of, as they come and go. Needs a QGuiApplication.
class QtScreens final : public QObject {
public:
    /// Keeps the references.
    QtScreens(XcbConnection& connection, RunLoop& loop);

    [[nodiscard]] const ScreenMap& map() const { return map_; }

    /// What panels leave of the screen.
    [[nodiscard]] Rect freeAreaOf(const ScreenMap::Screen& screen) const;

    /// True on X servers that are guests of Wayland's and old enough to say so by the names of their screens.
    [[nodiscard]] bool areOfWayland() const;

    /// Runs when the map has become another.
    [[nodiscard]] Listening onChange(std::function<void()> listener) { return listeners_.add(std::move(listener)); }

    /// Runs when panels leave more or less.
    [[nodiscard]] Listening onWorkAreaChange(std::function<void()> listener) {
        return workArea_.onChange(std::move(listener));
    }

private:
    void watch(QScreen* screen);
    void look();

    WorkAreaWatch workArea_;
    ScreenMap map_;
    Listeners<> listeners_;
};

}  // namespace glintar::platform
