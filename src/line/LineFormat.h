#pragma once

#include "menubar/StatusLine.h"

#include <string>
#include <string_view>

namespace glintar::line {

/// One JSON object for a text bar or script. Numbers read back to the same doubles.
[[nodiscard]] std::string jsonText(const menubar::StatusLine& line, std::string_view plain, std::string_view tooltip);

}  // namespace glintar::line
