#pragma once

#include "menubar/StatusLine.h"

#include <span>
#include <string>
#include <string_view>

namespace glintar::line {

// The price line as text.

/// One block character (U+2581 to U+2588) for each value, from the lowest to the highest; empty for fewer than two.
[[nodiscard]] std::string sparklineText(std::span<const double> values);

/// "BTC 64012.55 (60000.00) +1.20% 64500.0/63000.0 ▁▃▇ | ⛽ 12G ($0.857)". Display names are the user's, so control
/// characters in them do not get through. An error stands at the end, after quotes of an earlier refresh.
[[nodiscard]] std::string plainText(const menubar::StatusLine& line);

/// One JSON object for a text bar or script. Numbers read back to the same doubles.
[[nodiscard]] std::string jsonText(const menubar::StatusLine& line, std::string_view plain, std::string_view tooltip);

}  // namespace glintar::line
