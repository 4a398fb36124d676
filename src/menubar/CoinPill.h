#pragma once

#include "menubar/Pill.h"
#include "presenter/StatusLine.h"

namespace glintar::menubar {

/// The picture of one coin: its icon, or a badge with its name while there is none (null); the price, above a reference
/// price if it has one; the change and the range of the day; and a sparkline. 24 points high, at least 40 wide.
[[nodiscard]] platform::ImagePtr renderCoinPill(const platform::Graphics& graphics, const presenter::CoinPart& part,
                                                const platform::ImagePtr& icon, const Look& look);

}  // namespace glintar::menubar
