#pragma once

#include "presenter/StatusLine.h"

#include <string>
#include <string_view>

namespace glintar::platform {
class LocalTime;
}

namespace glintar::line {

/// One JSON object for a text bar or script. Numbers read back to the same doubles. "time" is that of the last try,
/// "updated" when the newest quote that is shown came.
[[nodiscard]] std::string jsonText(const presenter::StatusLine& line, const platform::LocalTime& local,
                                   std::string_view plain, std::string_view tooltip);

}  // namespace glintar::line
