#pragma once

#include <QRgb>

namespace glintar::platform {

// Qt's painter hands the blending of many spans to a pool of threads. In pictures as small as ours that costs more than
// the blending itself. So what happens ten times a second is blended here.

/// A premultiplied pixel, so many 255ths of it.
[[nodiscard]] constexpr QRgb portion(QRgb pixel, int alpha) {
    const auto times = [alpha](QRgb pair) {
        const QRgb product = pair * static_cast<QRgb>(alpha);
        return (product + ((product >> 8) & 0xff00ff) + 0x800080) >> 8 & 0xff00ff;
    };
    return times(pixel & 0xff00ff) | times(pixel >> 8 & 0xff00ff) << 8;
}

}  // namespace glintar::platform
