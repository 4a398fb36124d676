#pragma once

#include "platform/Graphics.h"

#include <string_view>

namespace glintar::menubar {

/// Colours of the price line: "green", "red", "ref", "text", "subtext"; any other name is that of the foreground. On
/// light plates signal colours are darker than usual, so that small text can be read.
[[nodiscard]] platform::Color colorNamed(std::string_view name, platform::Appearance appearance);

}  // namespace glintar::menubar
