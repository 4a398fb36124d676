#pragma once

#include "platform/Graphics.h"

namespace glintar::presenter {

/// The colours that desktops of either appearance use for these.
enum class SystemColor { Blue, Green, Orange, Red, Grey, SecondaryLabel, TertiaryLabel };
[[nodiscard]] platform::Color systemColor(SystemColor color, platform::Appearance appearance);

}  // namespace glintar::presenter
