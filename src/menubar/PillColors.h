#pragma once

#include "platform/Graphics.h"

#include <string_view>

namespace glintar::menubar {

/// The colours that desktops of either appearance use for these.
enum class SystemColor { Blue, Green, Orange, Red, Grey, SecondaryLabel, TertiaryLabel };
[[nodiscard]] platform::Color systemColor(SystemColor color, platform::Appearance appearance);

/// Colours of the price line: "green", "red", "ref", "text", "subtext"; any other name is that of the foreground.
[[nodiscard]] platform::Color colorNamed(std::string_view name, platform::Appearance appearance);

}  // namespace glintar::menubar
