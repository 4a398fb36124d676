#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace glintar::market {

/// One coin's quote. Prices are in the service's quote currency, all finite.
struct UnifiedMarketData {
    double price = 0;
    std::optional<std::string> imageUrl;
    std::optional<double> change24h;  ///< a percentage
    std::optional<double> high24h;
    std::optional<double> low24h;
    std::optional<std::vector<double>> sparkline;  ///< at most the 24 most recent values, oldest first
    bool isGasData = false;
};

/// Quotes by coin identifier, normally the coin's `apiId`.
using MarketDataMap = std::map<std::string, UnifiedMarketData, std::less<>>;

}  // namespace glintar::market
