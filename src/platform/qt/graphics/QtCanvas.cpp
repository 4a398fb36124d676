#include "platform/qt/graphics/QtCanvas.h"

#include "platform/qt/graphics/PixelMath.h"

#include <QPainterPath>
#include <QPen>
#include <QPolygonF>

#include <algorithm>
#include <array>
#include <cmath>

namespace glintar::platform {

namespace {

constexpr double kFarthest = 1e6;  // points

template <typename... Values>
bool areSane(Values... values) {
    return ((std::abs(values) < kFarthest) && ...);  // not a number compares as false
}

bool isSane(const Rect& rect) {
    return areSane(rect.x, rect.y, rect.width, rect.height) && rect.width > 0 && rect.height > 0;
}

bool isSane(const Canvas::Arc& arc) {
    return areSane(arc.center.x, arc.center.y, arc.radius, arc.start, arc.sweep) && arc.radius > 0 && arc.sweep != 0;
}

float component(double value) {
    return value > 0 ? static_cast<float>(std::min(value, 1.0)) : 0.0F;
}

QPen roundPen(const Color& color, double width) {
    return {qtColor(color), width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

}  // namespace

QColor qtColor(const Color& color) {
    return QColor::fromRgbF(component(color.red), component(color.green), component(color.blue),
                            component(color.alpha));
}

QtCanvas::QtCanvas(QImage& target, double height, double scale, const QtFonts& fonts)
    : painter_(&target), height_(height), scale_(scale), fonts_(fonts) {
    painter_.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter_.setLayoutDirection(Qt::LayoutDirectionAuto);  // the text's own, not that of the user's language
    painter_.scale(scale, scale);
}

void QtCanvas::fillRounded(const Rect& rect, double radius, const Color& color) {
    if (isSane(rect) && areSane(radius)) {
        const double corner = std::clamp(radius, 0.0, std::min(rect.width, rect.height) / 2);
        painter_.setPen(Qt::NoPen);
        painter_.setBrush(qtColor(color));
        painter_.drawRoundedRect(turned(rect), corner, corner);
    }
}

void QtCanvas::strokeRounded(const Rect& rect, double radius, const Color& color, double width) {
    if (isSane(rect) && areSane(radius, width) && width > 0) {
        const double corner = std::clamp(radius, 0.0, std::min(rect.width, rect.height) / 2);
        painter_.setPen(QPen(qtColor(color), width, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
        painter_.setBrush(Qt::NoBrush);
        painter_.drawRoundedRect(turned(rect), corner, corner);
    }
}

void QtCanvas::drawText(std::string_view text, const Point& origin, const Font& font, const Color& color) {
    if (!areSane(origin.x, origin.y)) {
        return;
    }
    const TextLine line = fonts_.layOut(text, font);
    painter_.save();
    painter_.translate(turned(Point{origin.x, origin.y + kDescent * font.size}));
    painter_.scale(line.unit, line.unit);
    painter_.setFont(line.font);
    painter_.setPen(qtColor(color));
    for (const TextLine::Run& run : line.runs) {
        painter_.drawText(QPointF(run.x, 0), run.text);
    }
    painter_.restore();
}

void QtCanvas::drawImage(const Image& image, const Rect& rect, double opacity) {
    if (const auto [pixels, at] = placed(image, rect); !pixels.isNull()) {
        put(pixels, at, component(opacity));
    }
}

void QtCanvas::drawImageInPie(const Image& image, const Rect& rect, const Arc& pie) {
    const auto [pixels, at] = isSane(pie) ? placed(image, rect) : QtImage::Placed{};
    if (pixels.isNull()) {
        return;
    }
    QPainterPath slice(turned(pie.center));
    slice.arcTo(around(pie), pie.start, std::clamp(pie.sweep, -360.0, 360.0));
    slice.closeSubpath();
    QImage part(pixels.size(), QImage::Format_ARGB32_Premultiplied);
    part.fill(Qt::transparent);
    {
        QPainter painter(&part);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate(-at);
        painter.scale(scale_, scale_);
        painter.fillPath(slice, Qt::black);
    }
    for (int y = 0; y < part.height(); ++y) {
        auto* const row = reinterpret_cast<QRgb*>(part.scanLine(y));
        const auto* const source = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
        std::transform(row, row + part.width(), source, row,
                       [](QRgb mask, QRgb pixel) { return portion(pixel, qAlpha(mask)); });
    }
    put(part, at, 1);
}

void QtCanvas::strokeLine(std::span<const Point> points, const Color& color, double width) {
    QPolygonF line;
    for (const Point& point : points) {
        if (areSane(point.x, point.y)) {
            line << turned(point);
        }
    }
    if (line.size() > 1 && areSane(width) && width > 0) {
        painter_.setPen(roundPen(color, width));
        painter_.setBrush(Qt::NoBrush);
        painter_.drawPolyline(line);
    }
}

void QtCanvas::strokeArc(const Arc& arc, const Color& color, double width, Caps caps) {
    if (!isSane(arc) || !areSane(width) || width <= 0) {
        return;
    }
    QPainterPath path;
    if (std::abs(arc.sweep) >= 360) {
        path.addEllipse(around(arc));
    } else {
        path.arcMoveTo(around(arc), arc.start);
        path.arcTo(around(arc), arc.start, arc.sweep);
    }
    QPen pen = roundPen(color, width);
    pen.setCapStyle(caps == Caps::Round ? Qt::RoundCap : Qt::FlatCap);
    painter_.strokePath(path, pen);
}

QtImage::Placed QtCanvas::placed(const Image& image, const Rect& rect) const {
    if (!isSane(rect)) {
        return {};
    }
    const QRectF target = turned(rect);
    return dynamic_cast<const QtImage&>(image).placed(
        {target.x() * scale_, target.y() * scale_, target.width() * scale_, target.height() * scale_});
}

void QtCanvas::put(const QImage& pixels, const QPoint& at, double opacity) {
    painter_.save();
    painter_.resetTransform();
    painter_.setOpacity(opacity);
    painter_.drawImage(QRect(at, pixels.size()), pixels, pixels.rect());  // whatever ratio they were made for
    painter_.restore();
}

QRectF QtCanvas::around(const Arc& arc) const {
    return turned(Rect{arc.center.x - arc.radius, arc.center.y - arc.radius, 2 * arc.radius, 2 * arc.radius});
}

}  // namespace glintar::platform
