#pragma once

#include "platform/Graphics.h"

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QRectF>

#include <memory>
#include <optional>

namespace glintar::platform {

class Artwork;

/// A picture that Qt can draw. All that `QtGraphics` hands out are of this class. May be drawn by any thread.
class QtImage : public Image {
public:
    /// Pixels, and the pixel of the device at which their top left corner belongs.
    struct Placed {
        QImage pixels;  ///< null when there is nothing to draw
        QPoint at;
    };

    /// The picture stretched over a rectangle of a device, in the device's pixels from the top left.
    [[nodiscard]] virtual Placed placed(const QRectF& rect) const = 0;

    /// Pixels to a point that the picture was made with; none when it has any number of them.
    [[nodiscard]] virtual std::optional<double> scale() const = 0;

    /// The same picture in another size.
    [[nodiscard]] virtual ImagePtr resized(const Size& size) const = 0;
};

/// The picture at that size in points with so many pixels to a point, which is also the device pixel ratio of the
/// result: pixels of that very number as they are, other ones smoothly scaled, a vector drawing rendered for the size.
/// Null when the size is empty or absurd. `image` is one that `QtGraphics` made.
[[nodiscard]] QImage pixelsAt(const Image& image, const Size& size, double scale);

/// Pixels to a side that a size takes at a scale: rounded up, at least one, and cut off at 16,384 by 4,096, which is
/// more than any screen shows and 256 MiB.
[[nodiscard]] QSize pixelSize(const Size& size, double scale);

/// Some pixels. They are laid on whole pixels of the device, and unscaled where they fit to less than a pixel.
class PixelImage final : public QtImage {
public:
    /// `pixels` are `ARGB32_Premultiplied`, so many to a point.
    PixelImage(QImage pixels, Size size, double scale);

    Size size() const override { return size_; }
    std::size_t byteCount() const override { return static_cast<std::size_t>(pixels_.sizeInBytes()); }
    Placed placed(const QRectF& rect) const override;
    std::optional<double> scale() const override { return scale_; }
    ImagePtr resized(const Size& size) const override { return std::make_shared<PixelImage>(pixels_, size, scale_); }
    [[nodiscard]] const QImage& pixels() const { return pixels_; }

private:
    QImage pixels_;
    Size size_;
    double scale_;
};

/// A shipped drawing, in its own colours or all in one. It is rendered for the pixels it is drawn on, so it is always
/// sharp.
class VectorImage final : public QtImage {
public:
    VectorImage(std::shared_ptr<Artwork> artwork, Size size, std::optional<QColor> tint = {});

    Size size() const override { return size_; }
    std::size_t byteCount() const override;
    Placed placed(const QRectF& rect) const override;
    std::optional<double> scale() const override { return {}; }
    ImagePtr resized(const Size& size) const override { return std::make_shared<VectorImage>(artwork_, size, tint_); }

private:
    std::shared_ptr<Artwork> artwork_;
    Size size_;
    std::optional<QColor> tint_;
};

}  // namespace glintar::platform
