#pragma once

#include "presenter/StatusLine.h"

#include <string>
#include <string_view>

namespace glintar::line {

/// One JSON object for a text bar or script. Numbers read back to the same doubles.
[[nodiscard]] std::string jsonText(const presenter::StatusLine& line, std::string_view plain, std::string_view tooltip);

}  // namespace glintar::line
