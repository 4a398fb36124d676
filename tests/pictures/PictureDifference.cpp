#include "pictures/PictureDifference.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <vector>

namespace glintar::test {

namespace {

constexpr int kBlock = 4;  // half a tile

using Channels = std::array<int, 3>;

Channels channels(QRgb pixel) {
    return {qRed(pixel), qGreen(pixel), qBlue(pixel)};
}

/// By how much a part of the pictures differs, added up over its pixels.
struct Sums {
    Channels apart{};  ///< whichever way
    Channels shift{};

    void add(const Channels& before, const Channels& after) {
        for (std::size_t i = 0; i < before.size(); ++i) {
            apart[i] += std::abs(after[i] - before[i]);
            shift[i] += after[i] - before[i];
        }
    }
    void add(const Sums& other) {
        for (std::size_t i = 0; i < apart.size(); ++i) {
            apart[i] += other.apart[i];
            shift[i] += other.shift[i];
        }
    }
};

}  // namespace

bool PictureDifference::isNoticeable() const {
    // Measured: every pixel three levels off, this way or that, makes a change of 3.0 and a shift of 2.2; of the faults
    // that must be noticed, the faintest makes a change of 4.1 or, as one of colour, a shift of 2.8.
    static constexpr double kMostChange = 3.5;
    static constexpr double kMostShift = 2.5;
    return change > kMostChange || shift > kMostShift;
}

PictureDifference differenceOf(const QImage& before, const QImage& after) {
    const int columns = before.width() / kBlock + 2;  // one more, so that every block has a neighbour
    const int rows = before.height() / kBlock + 2;
    std::vector<Sums> blocks(static_cast<std::size_t>(columns * rows));
    const auto block = [&](int column, int row) -> Sums& {
        return blocks[static_cast<std::size_t>(row * columns + column)];
    };
    for (int y = 0; y < before.height(); ++y) {
        const auto* const from = reinterpret_cast<const QRgb*>(before.constScanLine(y));
        const auto* const to = reinterpret_cast<const QRgb*>(after.constScanLine(y));
        for (int x = 0; x < before.width(); ++x) {
            if (from[x] != to[x]) {
                block(x / kBlock, y / kBlock).add(channels(from[x]), channels(to[x]));
            }
        }
    }
    PictureDifference worst;
    for (int row = 0; row + 1 < rows; ++row) {
        for (int column = 0; column + 1 < columns; ++column) {
            Sums tile = block(column, row);
            tile.add(block(column + 1, row));
            tile.add(block(column, row + 1));
            tile.add(block(column + 1, row + 1));
            static constexpr double kPixels = 4 * kBlock * kBlock;
            const double change = std::ranges::max(tile.apart) / kPixels;
            const auto [least, most] = std::ranges::minmax(tile.shift);
            if (change > worst.change) {
                worst.change = change;
                worst.tile = {column * kBlock, row * kBlock, 2 * kBlock, 2 * kBlock};
            }
            worst.shift = std::max(worst.shift, std::max(-least, most) / kPixels);
        }
    }
    return worst;
}

}  // namespace glintar::test
