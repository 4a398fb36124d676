#pragma once

#include "platform/RunLoop.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace glintar::market {

/// When a quote or fee came. It is old when the last completed refresh that asked for it did not bring it.
struct Arrival {
    platform::WallTime time;    ///< for people
    platform::Instant instant;  ///< for reckoning
    bool isOld = false;
    bool operator==(const Arrival&) const = default;
};

/// One coin's quote. Prices are in the service's quote currency, all finite.
struct UnifiedMarketData {
    double price = 0;
    std::optional<std::string> imageUrl;
    std::optional<double> change24h;  ///< a percentage
    std::optional<double> high24h;
    std::optional<double> low24h;
    std::optional<std::vector<double>> sparkline;  ///< at most the 24 most recent values, oldest first
    bool isGasData = false;
    Arrival arrival;  ///< set by the presenter
};

/// The current fee of a network, in sat/vB or Gwei.
struct NetworkFee {
    NetworkFee(double fee, Arrival came = {})
        : price(fee), arrival(came) {}  // NOLINT(google-explicit-constructor): a number
    double price;
    Arrival arrival;
    bool operator==(const NetworkFee&) const = default;
};

/// Quotes by coin identifier, normally the coin's `apiId`.
using MarketDataMap = std::map<std::string, UnifiedMarketData, std::less<>>;

}  // namespace glintar::market
