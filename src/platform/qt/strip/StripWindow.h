#pragma once

#include "platform/qt/strip/StripLook.h"
#include "platform/qt/strip/StripPlacement.h"
#include "platform/qt/windows/QtScreens.h"

#include <QPointF>
#include <QWidget>

#include <functional>
#include <optional>
#include <vector>

namespace glintar::platform {

class Graphics;
class StripItem;

/// The window of the strip. It never has the focus, is on all desktops and in no list of windows. It stays above other
/// windows except those that fill the screen: it is a dock and not "above" as well, since some window managers would
/// put it above such windows too. It hangs at an edge of a screen: in the primary one's top right corner, unless the
/// user has dragged it away. It follows when that screen changes. It is shown while one of its items is.
class StripWindow final : public QWidget {
public:
    /// What it needs, all of which outlives it.
    struct Surroundings {
        const Graphics& graphics;
        Preferences& preferences;
        QtScreens& screens;
    };
    StripWindow(const Surroundings& surroundings, StripLook look, bool isManaged);

    /// The next item to the left; it is the window's.
    StripItem& addItem();
    void removeItem(StripItem& item);

    void setLook(StripLook look);

    /// Where the window was put, in points of the screen. What Qt says of it can be wrong under some window managers.
    [[nodiscard]] QRect place() const { return place_; }

    /// Whether the user dragged it there.
    [[nodiscard]] bool isDraggedAway() const { return chosen_.has_value(); }

    std::function<void()> onScaleChanged;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void arrange();
    int fitItems(int most);
    void layOutItems();
    void putInPlace();
    void fillPlace();
    void checkScale();
    bool dragTo(const QPointF& pointer);
    void drop();

    Surroundings around_;
    StripLook look_;
    std::vector<StripItem*> items_;  ///< from the right
    std::optional<StripPlace> chosen_;
    QRect place_;
    bool isEmpty_ = true;
    double scale_ = 1;

    struct Drag {
        QPointF from;  ///< of the pointer
        QPoint held;   ///< of the window
        bool isUnderWay = false;
    };
    std::optional<Drag> drag_;
    Listening screensChanged_;
    Listening workAreaChanged_;
};

}  // namespace glintar::platform
