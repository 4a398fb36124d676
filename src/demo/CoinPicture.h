#pragma once

#include <string>
#include <string_view>

namespace glintar::demo {

/// A round picture of 64 x 64 pixels (PNG) in a colour that belongs to the coin's name.
[[nodiscard]] std::string coinPicture(std::string_view id);

}  // namespace glintar::demo
