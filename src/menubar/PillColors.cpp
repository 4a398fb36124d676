#include "menubar/PillColors.h"

#include "presenter/SystemColors.h"

namespace glintar::menubar {

using platform::Appearance;
using platform::Color;

Color colorNamed(std::string_view name, Appearance appearance) {
    const bool isDark = appearance == Appearance::Dark;
    if (name == "green") {
        return isDark ? Color{0.2, 0.85, 0.3} : Color{0, 0.6, 0};
    }
    if (name == "red") {
        return isDark ? Color{1.0, 0.3, 0.3} : Color{0.85, 0, 0};
    }
    if (name == "ref") {
        return isDark ? Color{1.0, 0.7, 0.2} : presenter::systemColor(presenter::SystemColor::Grey, appearance);
    }
    if (name == "text") {
        return isDark ? Color::white(1) : Color::white(0.1);
    }
    if (name == "subtext") {
        return isDark ? Color::white(2.0 / 3) : Color::white(0.5);
    }
    return isDark ? Color::white(1) : Color::white(0);
}

}  // namespace glintar::menubar
