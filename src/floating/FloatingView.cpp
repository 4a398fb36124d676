#include "floating/FloatingView.h"

#include "floating/CountdownRing.h"

#include <utility>

namespace glintar::floating {

using platform::Canvas;
using platform::Color;
using platform::ImagePtr;
using platform::Point;
using platform::Rect;

namespace {

constexpr double kPlateRadius = 8;
constexpr double kShadowRadius = 4;
constexpr Point kShadowOffset{0, -2};
constexpr double kShadowMargin = 2 * kShadowRadius + 2;  // the blur reaches about twice its radius
constexpr double kOutlineWidth = 1;

/// Grown on all sides, or shrunk.
Rect grown(const Rect& rect, double by) {
    return {rect.x - by, rect.y - by, rect.width + 2 * by, rect.height + 2 * by};
}

/// Clockwise from the top.
Canvas::Arc ringArc(const Rect& frame, double progress) {
    return {.center = {frame.x + frame.width / 2, frame.y + frame.height / 2},
            .radius = frame.width / 2,
            .start = 90,
            .sweep = -360 * progress};
}

/// Paints what lies in the frame in its own colours.
struct ItemPainter {
    Canvas& canvas;
    const Palette& palette;
    const Rect& frame;

    void operator()(const StyledText& text) const { canvas.drawText(text.text, frame.origin(), text.font, text.color); }
    void operator()(const PanelLayout::Symbol& symbol) const { canvas.drawImage(*symbol.image, frame, 1); }
    void operator()(const ImagePtr& image) const { canvas.drawImage(*image, frame, 1); }
    void operator()(const SparklineView& sparkline) const { sparkline.draw(canvas, frame); }
    void operator()(PanelLayout::Divider) const { canvas.fillRounded(frame, 0, palette.divider); }
    void operator()(PanelLayout::Ring) const {
        canvas.strokeArc(ringArc(frame, 1), palette.ringTrack, CountdownRing::kLineWidth, Canvas::Caps::Butt);
    }
};

/// Paints the place of what is to be set off from what lies beneath.
struct OutlinePainter {
    Canvas& canvas;
    const platform::Graphics& graphics;
    const Color& color;
    const Rect& frame;

    void operator()(const StyledText& text) const { canvas.drawText(text.text, frame.origin(), text.font, color); }
    void operator()(const PanelLayout::Symbol& symbol) const {
        if (const auto image = graphics.symbol(symbol.style.name, symbol.style.fontSize, color)) {
            canvas.drawImage(*image, frame, 1);
        }
    }
    void operator()(const ImagePtr& /*in the ring*/) const {}
    void operator()(const SparklineView& sparkline) const {
        SparklineView{sparkline.prices, color}.draw(canvas, frame);
    }
    void operator()(PanelLayout::Divider) const {}
    void operator()(PanelLayout::Ring) const {
        const Rect whole = grown(frame, CountdownRing::kLineWidth / 2);
        canvas.fillRounded(whole, whole.width / 2, color);
    }
};

}  // namespace

bool FloatingView::update(const FloatingState& state, const Surroundings& surroundings, double timeProgress) {
    auto content = composeContent(state, surroundings.appearance);
    const double progress = CountdownRing::shownProgress(timeProgress, surroundings.scale);
    const bool hasNewLayout = !picture_ || content != content_ || surroundings != surroundings_;
    if (!hasNewLayout && progress == shownProgress_) {
        return false;
    }
    shownProgress_ = progress;
    if (hasNewLayout) {
        content_ = std::move(content);
        surroundings_ = surroundings;
        const PixelGrid pixels(surroundings.scale);
        layout_ =
            layOutPanel(content_, graphics_, pixels, surroundings.isTranslucent ? pixels.covering(kShadowMargin) : 0);
        base_ = drawBase();
    }
    picture_ = draw([this](Canvas& canvas) {
        if (content_.isTransparent && surroundings_.isTranslucent) {
            paintArcShadow(canvas);
        }
        canvas.drawImage(*base_, {0, 0, base_->size().width, base_->size().height}, 1);
        paintArc(canvas, layout_.ring);
    });
    return true;
}

ImagePtr FloatingView::draw(const std::function<void(Canvas&)>& paint) const {
    const Rect whole = grown(layout_.plate, margin());
    return graphics_.draw(whole.size(), surroundings_.scale, paint);
}

ImagePtr FloatingView::drawBase() const {
    ImagePtr base = draw([this](Canvas& canvas) {
        content_.isTransparent ? paintOutline(canvas) : paintPlate(canvas);
        for (const auto& [what, frame] : layout_.items) {
            std::visit(ItemPainter{canvas, content_.palette, frame}, what);
        }
    });
    return surroundings_.isTranslucent ? withShadow(base) : base;
}

ImagePtr FloatingView::withShadow(const ImagePtr& image) const {
    return graphics_.withShadow(image,
                                {.color = content_.palette.shadow, .radius = kShadowRadius, .offset = kShadowOffset});
}

void FloatingView::paintArc(Canvas& canvas, const Rect& frame) const {
    if (shownProgress_ > 0) {
        canvas.strokeArc(ringArc(frame, shownProgress_), content_.palette.green, CountdownRing::kLineWidth,
                         Canvas::Caps::Round);
    }
}

/// The base has the shadow of the track, which is fainter. A small picture, since this happens with every pixel of the
/// ring; beneath everything, since its shadow must not fall on the base.
void FloatingView::paintArcShadow(Canvas& canvas) const {
    const PixelGrid pixels(surroundings_.scale);
    const double reach = margin() + pixels.covering(CountdownRing::kLineWidth / 2);
    const double side = pixels.covering(layout_.ring.width + 2 * reach);
    const ImagePtr arc = graphics_.draw({side, side}, surroundings_.scale, [&](Canvas& onto) {
        paintArc(onto, {reach, reach, layout_.ring.width, layout_.ring.height});
    });
    canvas.drawImage(*withShadow(arc), {layout_.ring.x - reach, layout_.ring.y - reach, side, side}, 1);
}

void FloatingView::paintPlate(Canvas& canvas) const {
    const Color& plate = content_.palette.plate;
    if (surroundings_.isTranslucent) {
        canvas.fillRounded(layout_.plate, kPlateRadius, plate);
        return;
    }
    // A rim in place of the shadow, since the plate may lie on a ground of its own colour.
    const double rim = PixelGrid(surroundings_.scale).pixel();
    canvas.fillRounded(layout_.plate, kPlateRadius, plate.withAlpha(1));
    canvas.strokeRounded(grown(layout_.plate, -rim / 2), kPlateRadius - rim / 2, content_.palette.divider, rim);
}

/// Sets the content off where neither plate nor shadow does.
void FloatingView::paintOutline(Canvas& canvas) const {
    if (surroundings_.isTranslucent) {
        return;
    }
    const Color color = content_.palette.plate.withAlpha(1);
    const auto outline = draw([&](Canvas& onto) {
        for (const auto& [what, frame] : layout_.items) {
            std::visit(OutlinePainter{onto, graphics_, color, frame}, what);
        }
    });
    for (const double x : {-kOutlineWidth, 0.0, kOutlineWidth}) {
        for (const double y : {-kOutlineWidth, 0.0, kOutlineWidth}) {
            canvas.drawImage(*outline, {x, y, outline->size().width, outline->size().height}, 1);
        }
    }
}

}  // namespace glintar::floating
