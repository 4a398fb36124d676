#include "arbiter/DashboardStyle.h"

#include "presenter/SystemColors.h"

namespace glintar::arbiter {

using platform::Appearance;
using platform::Color;
using presenter::SystemColor;

DashboardStyle dashboardStyle(Appearance appearance) {
    const bool isDark = appearance == Appearance::Dark;
    const auto system = [&](SystemColor color) { return presenter::systemColor(color, appearance); };
    const Color primary = Color::white(isDark ? 1 : 0);
    return {.primary = primary,
            .secondary = system(SystemColor::SecondaryLabel),
            .background = Color::white(isDark ? 0.1 : 0.96),
            .footer = isDark ? Color::white(0, 0.3) : Color::white(1, 0.5),
            .line = primary.withAlpha(0.1),
            .entryPlate = primary.withAlpha(0.05),
            .gapText = system(isDark ? SystemColor::Grey : SystemColor::SecondaryLabel),
            .gapPlate = isDark ? Color::white(0, 0.8) : Color::white(1, 0.9),
            .highest = isDark ? system(SystemColor::Green) : Color{0, 0.5, 0},
            .lowest = isDark ? system(SystemColor::Red) : Color{0.7, 0, 0},
            .coinSymbol = system(SystemColor::Orange),
            .statusDot = system(SystemColor::Green)};
}

const Color& DashboardStyle::priceColor(PriceRank rank) const {
    switch (rank) {
        case PriceRank::Highest:
            return highest;
        case PriceRank::Lowest:
            return lowest;
        case PriceRank::Between:
            break;
    }
    return primary;
}

platform::ImagePtr platformImage(const platform::Graphics& graphics, std::string_view iconName, const Color& color) {
    constexpr double kSize = 13;  // 16 points high
    auto image = graphics.image(iconName);
    return image ? image : graphics.symbol("globe", kSize, color);
}

}  // namespace glintar::arbiter
