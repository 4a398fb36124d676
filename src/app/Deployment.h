#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>

namespace glintar::app {

/// What is decided where the program is built and deployed.
///
/// The configuration server's address: the environment's choice (GLINTAR_CONFIG_SERVER) when there is one, else the one
/// built in; empty means none. It must be https, or http to a loopback address, and must not end with a slash; the
/// error is a sentence for the user.
[[nodiscard]] std::expected<std::string, std::string> configServer(std::optional<std::string_view> fromEnvironment);

}  // namespace glintar::app
