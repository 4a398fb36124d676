#pragma once

#include "presenter/StatusLine.h"

#include <span>
#include <string>
#include <vector>

namespace glintar::presenter {

// The price line in words: for text bars, and for those who cannot see the pills. Display names are the user's, so
// control characters in them do not get through.

/// One block character (U+2581 to U+2588) for each finite value, from the lowest to the highest; empty for fewer than
/// two.
[[nodiscard]] std::string sparklineText(std::span<const double> values);

/// "BTC 64012.55 (60000.00) +1.20% 64500.0/63000.0 ▁▃▇".
[[nodiscard]] std::string plainText(const CoinPart& part);

/// "⛽ 12G ($0.857)".
[[nodiscard]] std::string plainText(const GasPart& gas);

/// One piece of the line: of a coin, of the fee, or words of its own.
struct LinePiece {
    std::string text;
    const CoinPart* coin = nullptr;
    const GasPart* gas = nullptr;
};

/// The line's pieces, which point into it.
[[nodiscard]] std::vector<LinePiece> pieces(const StatusLine& line);

/// The parts with " | " between them. What failed stands first, before quotes of an earlier refresh: for all of them at
/// once, else "⚠️" before each old one.
[[nodiscard]] std::string plainText(const StatusLine& line);

}  // namespace glintar::presenter
