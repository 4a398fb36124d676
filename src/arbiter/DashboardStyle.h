#pragma once

#include "arbiter/ArbiterColumnView.h"
#include "platform/Graphics.h"

#include <string_view>

namespace glintar::arbiter {

/// The dashboard's colours in one appearance.
struct DashboardStyle {
    platform::Color primary, secondary;  ///< texts
    platform::Color background, footer;  ///< the footer's lies on the background
    platform::Color line;                ///< dividers and rims
    platform::Color entryPlate;          ///< under a price
    platform::Color gapText, gapPlate;   ///< of the badge
    platform::Color highest, lowest;     ///< prices
    platform::Color coinSymbol, statusDot;

    [[nodiscard]] const platform::Color& priceColor(PriceRank rank) const;
};
[[nodiscard]] DashboardStyle dashboardStyle(platform::Appearance appearance);

/// The source's own image, or a neutral one.
[[nodiscard]] platform::ImagePtr platformImage(const platform::Graphics& graphics, std::string_view iconName,
                                               const platform::Color& color);

}  // namespace glintar::arbiter
