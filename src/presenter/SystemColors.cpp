#include "presenter/SystemColors.h"

namespace glintar::presenter {

using platform::Appearance;
using platform::Color;

namespace {

constexpr Color bytes(int red, int green, int blue) {
    return {red / 255.0, green / 255.0, blue / 255.0};
}

}  // namespace

// Small text must be read in them: on light plates they are darker than the usual signal colours.
Color systemColor(SystemColor color, Appearance appearance) {
    const bool isDark = appearance == Appearance::Dark;
    switch (color) {
        case SystemColor::Blue:
            return isDark ? bytes(10, 132, 255) : bytes(10, 96, 216);
        case SystemColor::Green:
            return isDark ? bytes(50, 215, 75) : bytes(31, 138, 61);
        case SystemColor::Orange:
            return isDark ? bytes(255, 159, 10) : bytes(194, 90, 0);
        case SystemColor::Red:
            return isDark ? bytes(255, 69, 58) : bytes(208, 37, 43);
        case SystemColor::Grey:
            return isDark ? bytes(152, 152, 157) : bytes(142, 142, 147);
        case SystemColor::SecondaryLabel:
            return isDark ? Color::white(1, 0.55) : Color::white(0, 0.5);
        case SystemColor::TertiaryLabel:
            return isDark ? Color::white(1, 0.25) : Color::white(0, 0.26);
    }
    return {};
}

}  // namespace glintar::presenter
