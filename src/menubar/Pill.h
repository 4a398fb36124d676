#pragma once

#include "platform/Graphics.h"

#include <functional>

namespace glintar::menubar {

/// What a picture is drawn for.
struct Look {
    platform::Appearance appearance = platform::Appearance::Light;
    double scale = 1;  ///< pixels to a point
    bool operator==(const Look&) const = default;
};

inline constexpr double kPillHeight = 24;
inline constexpr double kPillPadding = 6;   ///< at either end
inline constexpr double kWidestPill = 640;  ///< beyond lie prices of more than forty digits

/// A rounded plate and what is painted on it, a whole number of pixels wide, so that both its sides are sharp. What
/// lies beyond `kWidestPill` is cut off: a price of three hundred digits must not take the machine's memory.
[[nodiscard]] platform::ImagePtr drawPill(const platform::Graphics& graphics, const Look& look, double width,
                                          const std::function<void(platform::Canvas&)>& paint);

/// Where the bottom of something of that height is, when it stands in the middle.
[[nodiscard]] constexpr double centered(double height) {
    return (kPillHeight - height) / 2;
}

}  // namespace glintar::menubar
