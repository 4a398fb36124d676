#pragma once

#include <optional>
#include <string>

namespace glintar::platform {

/// Reads one line from standard input, without its line break. From a terminal nothing that is typed is shown, after
/// `prompt` on standard error. None when the user interrupts it. Blocks.
[[nodiscard]] std::optional<std::string> readSecretLine(const std::string& prompt);

}  // namespace glintar::platform
