#pragma once

#include <QImage>

namespace glintar::test {

/// How two pictures of one size differ. They are compared by tiles of 8 by 8 pixels, each overlapping the next by
/// half, so that a small change counts as much as a large one; each figure is that of the worst tile and of its worst
/// colour channel, in levels of 255.
struct PictureDifference {
    double change = 0;  ///< how far pixels are apart, on average: what moved
    double shift = 0;   ///< how far the average colours are apart, in which noise cancels out: what was recoloured
    QRect tile;         ///< the one that changed most

    /// Beyond what another release of the font engine may do.
    [[nodiscard]] bool isNoticeable() const;
};

/// Both of one size, with 32 bits to a pixel.
[[nodiscard]] PictureDifference differenceOf(const QImage& before, const QImage& after);

}  // namespace glintar::test
