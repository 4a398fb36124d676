#pragma once

#include "menubar/Pill.h"
#include "presenter/StatusLine.h"

namespace glintar::menubar {

/// The picture of the network fee: the network's symbol and the fee, in the colour of its level. 24 points high.
[[nodiscard]] platform::ImagePtr renderGasPill(const platform::Graphics& graphics, const presenter::GasPart& gas,
                                               const Look& look);

}  // namespace glintar::menubar
