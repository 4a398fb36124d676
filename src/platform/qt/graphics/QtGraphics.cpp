#include "platform/qt/graphics/QtGraphics.h"

#include "platform/Directories.h"
#include "platform/qt/graphics/Artwork.h"
#include "platform/qt/graphics/IconDecoder.h"
#include "platform/qt/graphics/ImageShadow.h"
#include "platform/qt/graphics/PngFile.h"
#include "platform/qt/graphics/QtCanvas.h"
#include "platform/qt/graphics/QtImage.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace glintar::platform {

namespace {

constexpr double kLargestScale = 8;
constexpr double kLargestSymbol = 256;  // points
constexpr std::size_t kKeptArtworks = 64;
constexpr std::size_t kLongestName = 64;

bool isPlainName(std::string_view name) {
    return !name.empty() && name.size() <= kLongestName && name.front() != '.' &&
           std::ranges::all_of(name, [](char byte) {
               return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
                      byte == '_' || byte == '-' || byte == '.';
           });
}

/// A vector drawing has no scale of its own.
double scaleOf(const Image& image) {
    return dynamic_cast<const QtImage&>(image).scale().value_or(1);
}

}  // namespace

QtGraphics::QtGraphics(const Bundle& bundle) : bundle_(bundle) {}

QtGraphics::~QtGraphics() = default;

void QtGraphics::setFontFamily(std::string_view family) {
    fonts_.setFamily(QString::fromUtf8(family.data(), static_cast<qsizetype>(family.size())));
}

Size QtGraphics::measure(std::string_view text, const Font& font) const {
    return {fonts_.layOut(text, font).width, kLineHeight * font.size};
}

ImagePtr QtGraphics::draw(const Size& size, double scale, const std::function<void(Canvas&)>& paint) const {
    const double sane = scale > 0 ? std::min(scale, kLargestScale) : 1;
    QImage pixels(pixelSize(size, sane), QImage::Format_ARGB32_Premultiplied);
    pixels.fill(Qt::transparent);
    {
        // Its own picture of the same pixels: the one that is painted keeps the painter's memory, often more than its
        // own.
        QImage painted(pixels.bits(), pixels.width(), pixels.height(), pixels.bytesPerLine(), pixels.format());
        QtCanvas canvas(painted, std::isfinite(size.height) ? size.height : 0, sane, fonts_);
        paint(canvas);
    }
    return std::make_shared<PixelImage>(std::move(pixels), size, sane);
}

ImagePtr QtGraphics::withShadow(const ImagePtr& image, const Shadow& shadow) const {
    const double scale = scaleOf(*image);
    const QImage pixels = pixelsAt(*image, image->size(), scale);
    if (pixels.isNull()) {
        return image;
    }
    return std::make_shared<PixelImage>(platform::withShadow(pixels, scale, shadow), image->size(), scale);
}

ImagePtr QtGraphics::image(std::string_view name) const {
    auto found = artwork("images", name);
    if (!found) {
        return nullptr;
    }
    const Size size = found->size();
    return std::make_shared<VectorImage>(std::move(found), size);
}

ImagePtr QtGraphics::fitted(const ImagePtr& image, const Size& box) const {
    return dynamic_cast<const QtImage&>(*image).resized(fittedSize(image->size(), box));
}

ImagePtr QtGraphics::symbol(std::string_view name, double fontSize, const Color& color) const {
    auto found = artwork("symbols", name);
    if (!found) {
        return nullptr;
    }
    const double height = fontSize > 0 ? std::clamp(std::round(1.2 * fontSize), 1.0, kLargestSymbol) : 1;
    const Size natural = found->size();
    const double width = std::max(1.0, std::round(height * natural.width / natural.height));
    return std::make_shared<VectorImage>(std::move(found), Size{width, height}, qtColor(color));
}

std::expected<ImagePtr, std::string> QtGraphics::decode(std::string_view bytes) const {
    auto pixels = decodeIcon(bytes);
    if (!pixels) {
        return std::unexpected(std::move(pixels.error()));
    }
    const Size size{static_cast<double>(pixels->width()), static_cast<double>(pixels->height())};
    return std::make_shared<PixelImage>(std::move(*pixels), size, 1);
}

std::string QtGraphics::png(const Image& image) const {
    return writePng(pixelsAt(image, image.size(), scaleOf(image)));
}

std::shared_ptr<Artwork> QtGraphics::artwork(std::string_view folder, std::string_view name) const {
    if (!isPlainName(name)) {
        return nullptr;
    }
    const std::string path = fmt::format("{}/{}", folder, name);
    const std::scoped_lock lock(mutex_);
    if (const auto known = artworks_.find(path); known != artworks_.end()) {
        return known->second;
    }
    const auto file = bundle_.resource(path, "svg");
    if (artworks_.size() >= kKeptArtworks) {
        artworks_.clear();
    }
    return artworks_[path] = file ? Artwork::read(*file) : nullptr;
}

}  // namespace glintar::platform
