#pragma once

#include "platform/Graphics.h"
#include "platform/qt/graphics/QtFonts.h"
#include "platform/qt/graphics/QtImage.h"

#include <QColor>
#include <QPainter>
#include <QRectF>

namespace glintar::platform {

/// The colour, with components outside 0 to 1 brought inside.
[[nodiscard]] QColor qtColor(const Color& color);

/// Draws on pixels of Qt. What is not finite, or farther away than any picture is large, is not drawn.
///
/// The top left corner of the points is that of the pixels; this is the one place where y is turned round.
class QtCanvas final : public Canvas {
public:
    /// `target` has `scale` pixels to a point and lasts as long as the canvas.
    QtCanvas(QImage& target, double height, double scale, const QtFonts& fonts);

    void fillRounded(const Rect& rect, double radius, const Color& color) override;
    void strokeRounded(const Rect& rect, double radius, const Color& color, double width) override;
    void drawText(std::string_view text, const Point& origin, const Font& font, const Color& color) override;
    void drawImage(const Image& image, const Rect& rect, double opacity) override;
    void drawImageInPie(const Image& image, const Rect& rect, const Arc& pie) override;
    void strokeLine(std::span<const Point> points, const Color& color, double width) override;
    void strokeArc(const Arc& arc, const Color& color, double width, Caps caps) override;

private:
    [[nodiscard]] QPointF turned(const Point& point) const { return {point.x, height_ - point.y}; }
    [[nodiscard]] QRectF turned(const Rect& rect) const {
        return {rect.x, height_ - rect.top(), rect.width, rect.height};
    }
    [[nodiscard]] QRectF around(const Arc& arc) const;
    [[nodiscard]] QtImage::Placed placed(const Image& image, const Rect& rect) const;
    void put(const QImage& pixels, const QPoint& at, double opacity);

    QPainter painter_;
    double height_;
    double scale_;
    const QtFonts& fonts_;
};

}  // namespace glintar::platform
