#include "platform/qt/windows/QtOverlay.h"

#include "platform/qt/graphics/QtImage.h"

#include <QBitmap>

#include <cmath>
#include <utility>
#include <vector>

namespace glintar::platform {

QtOverlay::QtOverlay(const Surroundings& surroundings, std::string_view title)
    : around_(surroundings), overlay_(surroundings.connection, surroundings.loop, title), told_(look()) {
    compositorChanges_ = around_.compositor.onChange([this] { surroundingsChanged(); });
    screenChanges_ = around_.screens.onChange([this] {
        overlay_.setScreens(around_.screens.map().pixelFrames());
        surroundingsChanged();
    });
    overlay_.setScreens(around_.screens.map().pixelFrames());
}

void QtOverlay::setPicture(ImagePtr picture, double margin) {
    picture_ = std::move(picture);
    margin_ = margin;
    drawSoon();
}

void QtOverlay::setFrame(const Rect& frame) {
    if (frame.size() != frame_.size()) {
        drawSoon();
    }
    frame_.width = frame.width;
    frame_.height = frame.height;
    setFrameOrigin(frame.origin());
}

void QtOverlay::setFrameOrigin(const Point& origin) {
    frame_.x = origin.x;
    frame_.y = origin.y;
    if (look() != told_) {
        surroundingsChanged();
    } else if (isShown_ && !drawing_) {
        overlay_.move(place());
    }
}

void QtOverlay::setAlpha(double alpha) {
    if (alpha != alpha_) {
        if (alpha_ <= 0 && drawing_) {
            draw();  // what becomes visible is up to date
        }
        alpha_ = alpha;
        overlay_.setOpacity(alpha);
        showOrHide();
    }
}

void QtOverlay::orderFront() {
    isShown_ = true;
    draw();
    if (overlay_.isShown()) {
        overlay_.show();  // to the front of what came before it
    }
}

void QtOverlay::orderOut() {
    isShown_ = false;
    drawing_.reset();
    showOrHide();
}

double QtOverlay::scale() const {
    return around_.screens.map().screenAt({frame_.x, frame_.top()}).scale;
}

bool QtOverlay::isTranslucent() const {
    return overlay_.canBeTranslucent() && around_.compositor.isRunning();
}

/// By the top left corner, which stays on the screen of what it follows when the rest reaches into the next.
PixelPoint QtOverlay::place() const {
    const PixelPoint corner = around_.screens.map().toPixels({frame_.x, frame_.top()});
    const auto margin = static_cast<int>(std::lround(margin_ * scale()));
    return {corner.x - margin, corner.y - margin};
}

void QtOverlay::surroundingsChanged() {
    drawSoon();
    if (look() != told_ && !telling_) {
        telling_ = around_.loop.after(Duration::zero(), [this] {
            telling_.reset();
            told_ = look();
            if (const auto tell = onSurroundingsChanged) {
                tell();
            }
        });
    }
}

void QtOverlay::drawSoon() {
    if (isShown_ && !drawing_) {
        drawing_ = around_.loop.after(Duration::zero(), [this] { draw(); });
    }
}

void QtOverlay::draw() {
    drawing_.reset();
    const Size size{frame_.width + 2 * margin_, frame_.height + 2 * margin_};
    QImage pixels = picture_ ? pixelsAt(*picture_, size, scale()) : QImage();
    pixels.convertTo(QImage::Format_ARGB32_Premultiplied);
    hasPixels_ = !pixels.isNull();
    if (hasPixels_) {
        if (isTranslucent()) {
            cutOut({});
        } else {
            cutOut(QBitmap::fromImage(pixels.createAlphaMask()));
            pixels.convertTo(QImage::Format_RGB32);
        }
        const std::span argb(reinterpret_cast<const std::uint32_t*>(pixels.constBits()),
                             static_cast<std::size_t>(pixels.width()) * pixels.height());
        overlay_.setPicture({argb, pixels.width(), pixels.height()}, place());
    }
    showOrHide();
}

/// What is less than half opaque is no part of the window where it cannot be translucent.
void QtOverlay::cutOut(const QRegion& opaque) {
    if (std::exchange(opaque_, opaque) == opaque) {
        return;
    }
    std::vector<xcb_rectangle_t> parts;
    for (const QRect& part : opaque) {
        parts.push_back({static_cast<std::int16_t>(part.x()), static_cast<std::int16_t>(part.y()),
                         static_cast<std::uint16_t>(part.width()), static_cast<std::uint16_t>(part.height())});
    }
    overlay_.setShape(parts);
}

/// Without a compositor there is no opacity but this.
void QtOverlay::showOrHide() {
    const bool isSeen = isShown_ && hasPixels_ && (alpha_ > 0 || around_.compositor.isRunning());
    if (isSeen && !overlay_.isShown()) {
        overlay_.show();
    } else if (!isSeen && overlay_.isShown()) {
        overlay_.hide();
    }
}

}  // namespace glintar::platform
