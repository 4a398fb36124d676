#pragma once

#include "menubar/Pill.h"
#include "menubar/StatusLine.h"

#include <string_view>

namespace glintar::menubar {

/// How dear the network is: from 20 (sat/vB or Gwei) and from 50.
enum class GasLevel { Low, Middle, High };
[[nodiscard]] GasLevel gasLevel(double fee);

/// The picture of the network fee: the network's symbol and the fee, in the colour of its level. 24 points high.
[[nodiscard]] platform::ImagePtr renderGasPill(const platform::Graphics& graphics, const GasPart& gas,
                                               const Look& look);

}  // namespace glintar::menubar
