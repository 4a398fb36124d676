#pragma once

#include "arbiter/ArbiterColumnView.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::line {

using CompareRows = std::vector<std::shared_ptr<arbiter::CoinArbitrageData>>;

/// A row for each source and a column for each coin: the price, a mark behind the highest, the gap to the next lower
/// one. `corner` stands at the top left. The last line has no line break.
[[nodiscard]] std::string compareText(const std::vector<std::string>& sources, const CompareRows& coins,
                                      std::string_view corner);

/// All of it as one object; prices from the highest to the lowest.
[[nodiscard]] std::string compareJson(std::string_view time, const CompareRows& coins);

}  // namespace glintar::line
