#pragma once

#include <string>
#include <string_view>

namespace glintar::demo {

/// A source configuration document (see config/AppConfig.h) of the services that a market plays, found at `address`
/// (without a slash at its end).
[[nodiscard]] std::string marketDocument(std::string_view address);

}  // namespace glintar::demo
