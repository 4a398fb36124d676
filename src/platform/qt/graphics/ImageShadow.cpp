#include "platform/qt/graphics/ImageShadow.h"

#include "platform/qt/graphics/PixelMath.h"
#include "platform/qt/graphics/QtCanvas.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <iterator>
#include <numeric>
#include <vector>

namespace glintar::platform {

namespace {

constexpr double kFarthest = 256;  // pixels of blur

struct Plane {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> values;  // row by row

    [[nodiscard]] const std::uint8_t* row(int y) const { return values.data() + std::ptrdiff_t{width} * y; }
    [[nodiscard]] std::uint8_t* row(int y) { return values.data() + std::ptrdiff_t{width} * y; }
};

/// Each value becomes the mean of those up to `reach` away in its row and column. All columns go along together, since
/// a processor takes a row's values several at once.
Plane blurred(const Plane& from, int reach) {
    const int share = ((1 << 16) + reach) / (2 * reach + 1);  // of 1 << 16, since division is slow
    const auto mean = [share](int sum) { return static_cast<std::uint8_t>((sum * share + (1 << 15)) >> 16); };
    Plane rows{from.width, from.height, std::vector<std::uint8_t>(from.values.size())};
    for (int y = 0; y < from.height; ++y) {
        const std::uint8_t* const row = from.row(y);
        std::uint8_t* const to = rows.row(y);
        int sum = std::accumulate(row, row + std::min(reach, from.width), 0);
        for (int x = 0; x < from.width; ++x) {
            sum += x + reach < from.width ? row[x + reach] : 0;
            to[x] = mean(sum);
            sum -= x >= reach ? row[x - reach] : 0;
        }
    }
    Plane columns{from.width, from.height, std::vector<std::uint8_t>(from.values.size())};
    std::vector<int> sums(static_cast<std::size_t>(from.width));
    const auto add = [&](int y, auto operation) {
        if (y >= 0 && y < rows.height) {
            std::transform(sums.begin(), sums.end(), rows.row(y), sums.begin(), operation);
        }
    };
    for (int y = -reach; y < from.height; ++y) {
        add(y + reach, std::plus{});
        if (y >= 0) {
            std::transform(sums.begin(), sums.end(), columns.row(y), mean);
            add(y - reach, std::minus{});
        }
    }
    return columns;
}

Plane alphaOf(const QImage& pixels) {
    Plane plane{pixels.width(), pixels.height(), {}};
    plane.values.reserve(std::size_t(plane.width) * std::size_t(plane.height));
    for (int y = 0; y < plane.height; ++y) {
        const auto* row = reinterpret_cast<const QRgb*>(pixels.constScanLine(y));
        std::transform(row, row + plane.width, std::back_inserter(plane.values),
                       [](QRgb pixel) { return static_cast<std::uint8_t>(qAlpha(pixel)); });
    }
    return plane;
}

}  // namespace

QImage withShadow(const QImage& pixels, double scale, const Shadow& shadow) {
    Plane plane = alphaOf(pixels);
    const double blur = 2 * shadow.radius * scale;
    int reach = blur > 0 ? static_cast<int>(std::lround(std::min(blur, kFarthest))) : 0;
    // Three means in a row look like a Gaussian bell; together they reach as far as the blur does.
    for (int passes = 3; passes > 0; --passes) {
        const int share = reach / passes;
        plane = blurred(plane, share);
        reach -= share;
    }
    const QRgb color = qPremultiply(qtColor(shadow.color).rgba());
    const auto shift = [scale](double points) {
        return static_cast<int>(std::lround(std::clamp(points * scale, -kFarthest, kFarthest)));
    };
    const int right = shift(shadow.offset.x);
    const int down = shift(-shadow.offset.y);
    QImage result = pixels.copy();
    for (int y = std::max(0, down); y < std::min(plane.height, plane.height + down); ++y) {
        auto* const row = reinterpret_cast<QRgb*>(result.scanLine(y));
        const std::uint8_t* const mask = plane.row(y - down);
        for (int x = std::max(0, right); x < std::min(plane.width, plane.width + right); ++x) {
            row[x] += portion(portion(color, mask[x - right]), 255 - qAlpha(row[x]));
        }
    }
    return result;
}

}  // namespace glintar::platform
