#pragma once

#include "platform/Geometry.h"

#include <QByteArray>
#include <QColor>
#include <QImage>
#include <QRectF>
#include <QSvgRenderer>

#include <cstddef>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

namespace glintar::platform {

/// A shipped SVG file. May be used by any thread.
///
/// A lock guards Qt's renderer, which only one thread may use at a time. The last renderings are kept: countdown and
/// pills ask for the same few again and again, and rendering takes tens of times as long as drawing pixels.
class Artwork {
public:
    /// Null when the file is missing or no drawing.
    [[nodiscard]] static std::shared_ptr<Artwork> read(const std::filesystem::path& file);

    explicit Artwork(const QByteArray& svg);

    [[nodiscard]] bool isValid() const;

    /// In points, as the file says.
    [[nodiscard]] Size size() const;

    /// Pixels of that size with the drawing stretched over `target` in them. With a `tint`, all of it has that colour.
    [[nodiscard]] QImage rendered(const QSize& pixels, const QRectF& target, const std::optional<QColor>& tint);

    /// Of the renderings that are kept.
    [[nodiscard]] std::size_t byteCount() const;

private:
    struct Rendering {
        QSize size;
        QRectF target;
        std::optional<QColor> tint;
        QImage pixels;
    };

    QImage render(const QSize& pixels, const QRectF& target, const std::optional<QColor>& tint);

    mutable std::mutex mutex_;
    QSvgRenderer renderer_;
    std::vector<Rendering> kept_;  // the last used first
};

}  // namespace glintar::platform
