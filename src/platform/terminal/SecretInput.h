#pragma once

#include <optional>
#include <string>

namespace glintar::platform {

/// Reads one line from standard input, without its line break. On a terminal it writes `prompt` to standard error and
/// shows nothing of what is typed. None when the user interrupts it. Blocks.
[[nodiscard]] std::optional<std::string> readSecretLine(const std::string& prompt);

}  // namespace glintar::platform
