#pragma once

#include "platform/Overlay.h"
#include "platform/RunLoop.h"
#include "platform/qt/windows/QtScreens.h"
#include "platform/xcb/CompositorWatch.h"
#include "platform/xcb/XcbOverlay.h"

#include <QRegion>

namespace glintar::platform {

/// A picture above all windows, on our own connection to the X server. Qt draws the picture and knows nothing of the
/// window.
///
/// Changes of picture and size are put on screen together, at the next turn of the run loop. A new place is set at
/// once, by one request.
class QtOverlay final : public Overlay {
public:
    /// What it needs, all of which outlives it.
    struct Surroundings {
        RunLoop& loop;
        XcbConnection& connection;
        CompositorWatch& compositor;
        QtScreens& screens;
    };

    QtOverlay(const Surroundings& surroundings, std::string_view title);

    void setPicture(ImagePtr picture, double margin) override;
    void setFrame(const Rect& frame) override;
    void setFrameOrigin(const Point& origin) override;
    Rect frame() const override { return frame_; }
    void setAlpha(double alpha) override;
    double alpha() const override { return alpha_; }
    void orderFront() override;
    void orderOut() override;
    bool isShown() const override { return isShown_; }
    double scale() const override;
    bool isTranslucent() const override;

private:
    struct Look {
        double scale = 1;
        bool isTranslucent = false;
        bool operator==(const Look&) const = default;
    };

    [[nodiscard]] Look look() const { return {scale(), isTranslucent()}; }
    [[nodiscard]] PixelPoint place() const;
    void surroundingsChanged();
    void drawSoon();
    void draw();
    void cutOut(const QRegion& opaque);
    void showOrHide();

    Surroundings around_;
    XcbOverlay overlay_;
    ImagePtr picture_;
    double margin_ = 0;
    Rect frame_;
    double alpha_ = 1;
    bool isShown_ = false;
    bool hasPixels_ = false;
    QRegion opaque_;  ///< the window's shape; all of it when empty
    Look told_;
    TimerHandle drawing_;
    TimerHandle telling_;
    Listening compositorChanges_;
    Listening screenChanges_;
};

}  // namespace glintar::platform
