#include "floating/FloatingView.h"

#include "floating/CountdownRing.h"

#include <utility>

namespace glintar::floating {

using platform::Canvas;
using platform::Color;
using platform::ImagePtr;
using platform::Point;
using platform::Rect;
using platform::Size;

namespace {

constexpr double kPlateRadius = 8;
constexpr double kShadowRadius = 4;
constexpr Point kShadowOffset{0, -2};
constexpr double kShadowMargin = 2 * kShadowRadius + 2;  // the blur reaches about twice its radius
constexpr double kOutlineWidth = 1;

/// Clockwise from the top.
Canvas::Arc ringArc(const PanelLayout& layout, double progress) {
    const Rect& frame = layout.ring;
    return {.center = {frame.x + frame.width / 2, frame.y + frame.height / 2},
            .radius = ring::kRadius,
            .start = 90,
            .sweep = -360 * progress};
}

}  // namespace

bool FloatingView::update(const FloatingState& state, const Surroundings& surroundings, double timeProgress) {
    auto content = composeContent(state, preferences_, surroundings.appearance);
    const double progress = ring::shownProgress(timeProgress, surroundings.scale);
    const bool hasNewLayout = !picture_ || content != content_ || surroundings != surroundings_;
    if (!hasNewLayout && progress == shownProgress_) {
        return false;
    }
    shownProgress_ = progress;
    if (hasNewLayout) {
        content_ = std::move(content);
        surroundings_ = surroundings;
        layout_ = layOutPanel(content_, graphics_, surroundings.scale, surroundings.isTranslucent ? kShadowMargin : 0);
        drawBase();
    }
    picture_ = graphics_.draw(base_->size(), surroundings_.scale, [this](Canvas& canvas) {
        canvas.drawImage(*base_, {0, 0, base_->size().width, base_->size().height}, 1);
        if (shownProgress_ > 0) {
            canvas.strokeArc(ringArc(layout_, shownProgress_), content_.palette.green, ring::kLineWidth,
                             Canvas::Caps::Round);
        }
    });
    return true;
}

void FloatingView::drawBase() {
    const double margin = layout_.plate.x;
    const Size size{layout_.plate.width + 2 * margin, layout_.plate.height + 2 * margin};
    const double scale = surroundings_.scale;
    ImagePtr outline;  // sets the content off where neither plate nor shadow does
    if (content_.isTransparent && !surroundings_.isTranslucent) {
        outline = graphics_.draw(
            size, scale, [this](Canvas& canvas) { paintInOneColor(canvas, content_.palette.plate.withAlpha(1)); });
    }
    base_ = graphics_.draw(size, scale, [&](Canvas& canvas) {
        if (outline) {
            for (const double x : {-kOutlineWidth, 0.0, kOutlineWidth}) {
                for (const double y : {-kOutlineWidth, 0.0, kOutlineWidth}) {
                    canvas.drawImage(*outline, {x, y, size.width, size.height}, 1);
                }
            }
        }
        paintPlate(canvas);
        paintContent(canvas);
    });
    if (surroundings_.isTranslucent) {
        base_ = graphics_.withShadow(
            base_, {.color = content_.palette.shadow, .radius = kShadowRadius, .offset = kShadowOffset});
    }
}

void FloatingView::paintPlate(Canvas& canvas) const {
    if (!content_.isTransparent) {
        const auto& plate = content_.palette.plate;
        canvas.fillRounded(layout_.plate, kPlateRadius, surroundings_.isTranslucent ? plate : plate.withAlpha(1));
    }
}

void FloatingView::paintContent(Canvas& canvas) const {
    canvas.strokeArc(ringArc(layout_, 1), content_.palette.ringTrack, ring::kLineWidth, Canvas::Caps::Butt);
    if (layout_.sourceImage) {
        canvas.drawImage(*layout_.sourceImage, layout_.sourceImageFrame, 1);
    }
    for (const auto& symbol : layout_.symbols) {
        canvas.drawImage(*symbol.image, symbol.frame, 1);
    }
    for (const auto& divider : layout_.dividers) {
        canvas.fillRounded(divider, 0, content_.palette.divider);
    }
    for (const auto& text : layout_.texts) {
        canvas.drawText(text.text.text, text.frame.origin(), text.text.font, text.text.color);
    }
    for (const auto& sparkline : layout_.sparklines) {
        sparkline.view.draw(canvas, sparkline.frame);
    }
}

void FloatingView::paintInOneColor(Canvas& canvas, const Color& color) const {
    canvas.fillRounded(layout_.ring, layout_.ring.width / 2, color);
    for (const auto& symbol : layout_.symbols) {
        if (const auto image = graphics_.symbol(symbol.symbol.name, symbol.symbol.fontSize, color)) {
            canvas.drawImage(*image, symbol.frame, 1);
        }
    }
    for (const auto& text : layout_.texts) {
        canvas.drawText(text.text.text, text.frame.origin(), text.text.font, color);
    }
    for (const auto& sparkline : layout_.sparklines) {
        SparklineView{sparkline.view.prices, color}.draw(canvas, sparkline.frame);
    }
}

}  // namespace glintar::floating
