#pragma once

#include "config/Coin.h"
#include "market/GasNetwork.h"
#include "market/MarketData.h"
#include "presenter/StatusTexts.h"

#include <optional>
#include <string>
#include <vector>

namespace glintar::config {
struct Settings;
}

namespace glintar::presenter {

/// How many coins are shown, whatever the length of the user's list.
inline constexpr std::size_t kShownCoins = 5;

/// How opaque a price is drawn that the last refresh did not bring.
inline constexpr double kOldOpacity = 0.55;

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
    market::Arrival arrival;
};

/// What the preferences ask to be shown of every coin that has it.
struct ShownParts {
    bool change24h = false;
    bool highLow24h = false;
    bool sparkline = false;
};

/// The coin with the parts that are asked for and that its quote has.
[[nodiscard]] CoinPart composeCoin(const ShownParts& parts, const config::Coin& coin,
                                   const market::UnifiedMarketData& quote);

/// What the last completed refresh that asked for quotes came to.
struct Outcome {
    std::optional<std::string> error;
    bool hasPrices = true;           ///< of at least one coin of the user's
    std::string time;                ///< when it ended, as the user reads it: "HH:mm:ss"
    std::vector<std::string> asked;  ///< identifiers of the coins that it was for and that are still watched
};

/// What the price line shows, before anybody draws or writes it.
struct StatusLine {
    std::string sourceId;
    ShownParts parts;
    std::vector<CoinPart> coins;
    std::optional<std::string> emptyText;  ///< in place of coins when there is no quote at all
    std::optional<GasPart> gas;
    std::string time;                    ///< of the last try: "HH:mm:ss"; empty before the first
    std::optional<std::string> error;    ///< of that try; older quotes may be shown beside it
    std::optional<std::string> failure;  ///< in a few words, when that try brought no price: "⚠️ Net Error"
    std::vector<std::string> lacking;    ///< names of coins that a good answer had no price for, and none is known

    [[nodiscard]] bool isEmpty() const { return coins.empty() && !emptyText && !gas; }
    [[nodiscard]] bool hasOld() const;
    [[nodiscard]] bool areAllCoinsOld() const;  ///< false without coins
    [[nodiscard]] std::optional<market::Arrival> oldest() const;
    [[nodiscard]] std::optional<market::Arrival> newest() const;  ///< of the coins, if there are any
};

/// The first five coins that have a quote, in the user's order, with the parts that the settings ask for. Without an
/// outcome no refresh has ended yet.
[[nodiscard]] StatusLine composeStatusLine(const config::Settings& settings, const std::vector<config::Coin>& coins,
                                           const market::MarketDataMap& quotes,
                                           const std::optional<market::NetworkFee>& gasPrice,
                                           const std::optional<Outcome>& outcome);

}  // namespace glintar::presenter
