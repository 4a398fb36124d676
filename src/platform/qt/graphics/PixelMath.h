#pragma once

#include <QRgb>

namespace glintar::platform {

// Qt's painter hands the blending of many spans to a pool of threads, which costs more than what it blends in pictures
// as small as ours. So what would be done ten times a second that way is done here.

/// A premultiplied pixel, so many 255ths of it.
[[nodiscard]] constexpr QRgb portion(QRgb pixel, int alpha) {
    const auto times = [alpha](QRgb pair) {
        const QRgb product = pair * static_cast<QRgb>(alpha);
        return (product + ((product >> 8) & 0xff00ff) + 0x800080) >> 8 & 0xff00ff;
    };
    return times(pixel & 0xff00ff) | times(pixel >> 8 & 0xff00ff) << 8;
}

}  // namespace glintar::platform
