#pragma once

#include "platform/Graphics.h"

#include <QColor>

namespace glintar::platform {

/// What lies behind the pictures of the strip.
struct StripLook {
    static constexpr int kHeight = 28;  ///< points; the pictures are 24 high
    /// From the bottom to the base line: what is drawn of a pill is then centred.
    static constexpr double kBase = 10.5;

    bool isTranslucent = false;
    Appearance appearance = Appearance::Light;

    [[nodiscard]] QColor background() const {
        if (isTranslucent) {
            return Qt::transparent;
        }
        return appearance == Appearance::Dark ? QColor(0x20, 0x20, 0x20) : QColor(0xf2, 0xf2, 0xf2);
    }
};

/// Widgets are a whole number of points wide.
[[nodiscard]] constexpr int roundedUp(double length) {
    const int whole = static_cast<int>(length);
    return whole < length ? whole + 1 : whole;
}

}  // namespace glintar::platform
