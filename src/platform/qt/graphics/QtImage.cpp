#include "platform/qt/graphics/QtImage.h"

#include "platform/qt/graphics/Artwork.h"

#include <algorithm>
#include <cmath>

namespace glintar::platform {

namespace {

constexpr int kWidest = 16'384;
constexpr int kHighest = 4'096;
constexpr double kFarthest = 1e6;  // pixels; Qt's own arithmetic ends at 32 bits

bool isDrawable(const QRectF& rect) {
    return rect.width() > 0 && rect.width() <= kWidest && rect.height() > 0 && rect.height() <= kWidest &&
           std::abs(rect.x()) < kFarthest && std::abs(rect.y()) < kFarthest;
}

int cutOff(double pixels, int most) {
    // What is a whole number but for rounding, such as 24 × 1.1 / 1.1, must not take a pixel more.
    return pixels > 1 ? static_cast<int>(std::min(std::ceil(pixels - 1e-6), static_cast<double>(most))) : 1;
}

}  // namespace

QImage pixelsAt(const Image& image, const Size& size, double scale) {
    QImage pixels = dynamic_cast<const QtImage&>(image).placed({0, 0, size.width * scale, size.height * scale}).pixels;
    if (!pixels.isNull() && pixels.devicePixelRatio() != scale) {
        pixels.setDevicePixelRatio(scale);
    }
    return pixels;
}

QSize pixelSize(const Size& size, double scale) {
    return {cutOff(size.width * scale, kWidest), cutOff(size.height * scale, kHighest)};
}

PixelImage::PixelImage(QImage pixels, Size size, double scale)
    : pixels_(std::move(pixels)), size_(size), scale_(scale) {
    pixels_.setDevicePixelRatio(scale);
}

QtImage::Placed PixelImage::placed(const QRectF& rect) const {
    if (!isDrawable(rect)) {
        return {};
    }
    const QPoint at(static_cast<int>(std::lround(rect.x())), static_cast<int>(std::lround(rect.y())));
    // The pixels of 97.3 points are 98: they lose their sharpness where they are squeezed into 97.
    if (std::abs(rect.width() - pixels_.width()) < 1 && std::abs(rect.height() - pixels_.height()) < 1) {
        return {pixels_, at};
    }
    const QSize wanted(std::max(1, static_cast<int>(std::lround(rect.width()))),
                       std::max(1, static_cast<int>(std::lround(rect.height()))));
    // Unlike a painter's own scaling, this one takes every pixel into account.
    return {pixels_.scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation), at};
}

VectorImage::VectorImage(std::shared_ptr<Artwork> artwork, Size size, std::optional<QColor> tint)
    : artwork_(std::move(artwork)), size_(size), tint_(tint) {}

std::size_t VectorImage::byteCount() const {
    return artwork_->byteCount();
}

QtImage::Placed VectorImage::placed(const QRectF& rect) const {
    if (!isDrawable(rect)) {
        return {};
    }
    const QPoint at(static_cast<int>(std::floor(rect.x())), static_cast<int>(std::floor(rect.y())));
    const QRectF target = rect.translated(-at);
    return {artwork_->rendered(pixelSize({target.right(), target.bottom()}, 1), target, tint_), at};
}

}  // namespace glintar::platform
