#pragma once

#include "platform/Graphics.h"

#include <functional>
#include <memory>

namespace glintar::platform {

/// One picture above everything but lock screens, in a window without a frame. It never has the focus, and lets the
/// mouse through to what lies beneath. Not on screen until it is ordered to the front. Main thread only.
class Overlay {
public:
    virtual ~Overlay() = default;

    /// The picture fills the window's frame and `margin` points more on every side, where its shadow lies.
    virtual void setPicture(ImagePtr picture, double margin) = 0;

    virtual void setFrame(const Rect& frame) = 0;
    virtual void setFrameOrigin(const Point& origin) = 0;
    [[nodiscard]] virtual Rect frame() const = 0;

    virtual void setAlpha(double alpha) = 0;
    [[nodiscard]] virtual double alpha() const = 0;

    virtual void orderFront() = 0;
    virtual void orderOut() = 0;
    [[nodiscard]] virtual bool isShown() const = 0;

    /// Pixels to a point where the window is.
    [[nodiscard]] virtual double scale() const = 0;

    /// Whether what lies beneath shows through. Without a compositor it does not: then the picture must have no shadow,
    /// and only those of its pixels are shown that are at least half opaque.
    [[nodiscard]] virtual bool isTranslucent() const = 0;

    /// Runs when `scale` or `isTranslucent` has changed.
    std::function<void()> onSurroundingsChanged;
};

}  // namespace glintar::platform
