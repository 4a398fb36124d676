#pragma once

#include <expected>
#include <string>
#include <string_view>

namespace glintar::demo {

/// The shipped source configuration (see config/AppConfig.h) with all its services on the market at `address` (without
/// a slash at its end): what was "https://host/path" is found behind the service's name there. The error says what is
/// wrong with the shipped one.
[[nodiscard]] std::expected<std::string, std::string> marketDocument(std::string shipped, std::string_view address);

}  // namespace glintar::demo
