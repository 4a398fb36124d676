#pragma once

#include "config/Coin.h"
#include "market/GasNetwork.h"
#include "market/MarketData.h"
#include "presenter/StatusTexts.h"

#include <optional>
#include <string>
#include <vector>

namespace glintar::platform {
class Preferences;
}

namespace glintar::presenter {

/// How many coins are shown, whatever the length of the user's list.
inline constexpr std::size_t kShownCoins = 5;

/// One coin of the line: its quote, and what is shown of it. A part that is not shown is absent.
struct CoinPart {
    config::Coin coin;
    market::UnifiedMarketData quote;
    std::string price;
    std::optional<std::string> reference;
    std::optional<std::string> change;
    std::optional<HighLowText> highLow;
    bool showsSparkline = false;  ///< the quote has one with at least one value
};

/// The network fee of the line.
struct GasPart {
    market::GasNetwork network;
    double fee = 0;                      ///< sat/vB or Gwei
    std::optional<double> transferCost;  ///< dollars
    std::string text;
};

/// What the preferences ask to be shown of every coin that has it.
struct ShownParts {
    bool change24h = false;
    bool highLow24h = false;
    bool sparkline = false;
};

/// What the price line shows, before anybody draws or writes it.
struct StatusLine {
    std::string sourceId;
    ShownParts parts;
    std::vector<CoinPart> coins;
    std::optional<std::string> emptyText;  ///< in place of coins when there is no quote at all
    std::optional<GasPart> gas;
    std::string time;                  ///< when it was composed, as the user reads it: "HH:mm:ss"
    std::optional<std::string> error;  ///< of the refresh that led here; older quotes may be shown beside it

    [[nodiscard]] bool isEmpty() const { return coins.empty() && !emptyText && !gas; }
};

/// The first five coins that have a quote, in the user's order, with the parts that the preferences ask for.
[[nodiscard]] StatusLine composeStatusLine(const platform::Preferences& preferences,
                                           const std::vector<config::Coin>& coins, const market::MarketDataMap& quotes,
                                           std::optional<double> gasPrice, std::optional<std::string> error);

}  // namespace glintar::presenter
