#include "platform/qt/graphics/Artwork.h"

#include <QFile>
#include <QPainter>

#include <algorithm>

namespace glintar::platform {

namespace {

// A theme, two ratios, the countdown's two pictures and the symbols' few colours.
constexpr std::size_t kKeptRenderings = 8;
constexpr qsizetype kLargestKept = qsizetype{256} * 256 * 4;
constexpr qint64 kLargestFile = 1'000'000;

}  // namespace

std::shared_ptr<Artwork> Artwork::read(const std::filesystem::path& file) {
    QFile source(QString::fromStdString(file.string()));
    if (source.size() > kLargestFile || !source.open(QIODevice::ReadOnly)) {
        return nullptr;
    }
    auto artwork = std::make_shared<Artwork>(source.readAll());
    return artwork->isValid() ? artwork : nullptr;
}

Artwork::Artwork(const QByteArray& svg) : renderer_(svg) {}

bool Artwork::isValid() const {
    const std::scoped_lock lock(mutex_);
    return renderer_.isValid() && !renderer_.viewBoxF().isEmpty();
}

Size Artwork::size() const {
    const std::scoped_lock lock(mutex_);
    const QSize size = renderer_.defaultSize();
    return {static_cast<double>(size.width()), static_cast<double>(size.height())};
}

QImage Artwork::rendered(const QSize& pixels, const QRectF& target, const std::optional<QColor>& tint) {
    const std::scoped_lock lock(mutex_);
    const auto known = std::ranges::find_if(kept_, [&](const Rendering& rendering) {
        return rendering.size == pixels && rendering.target == target && rendering.tint == tint;
    });
    if (known != kept_.end()) {
        std::rotate(kept_.begin(), known, known + 1);
        return kept_.front().pixels;
    }
    QImage image = render(pixels, target, tint);
    if (image.sizeInBytes() <= kLargestKept) {
        kept_.insert(kept_.begin(), {pixels, target, tint, image});
        kept_.resize(std::min(kept_.size(), kKeptRenderings));
    }
    return image;
}

std::size_t Artwork::byteCount() const {
    const std::scoped_lock lock(mutex_);
    std::size_t total = 0;
    for (const Rendering& rendering : kept_) {
        total += static_cast<std::size_t>(rendering.pixels.sizeInBytes());
    }
    return total;
}

QImage Artwork::render(const QSize& pixels, const QRectF& target, const std::optional<QColor>& tint) {
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing);
        renderer_.render(&painter, target);
        if (tint) {
            painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
            painter.fillRect(image.rect(), *tint);
        }
    }
    return image.copy();  // without the painter's memory
}

}  // namespace glintar::platform
