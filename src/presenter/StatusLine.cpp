#include "presenter/StatusLine.h"

#include "config/Settings.h"
#include "platform/Preferences.h"

namespace glintar::presenter {

namespace {

CoinPart composeCoin(const ShownParts& parts, const config::Coin& coin, const market::UnifiedMarketData& quote) {
    CoinPart part{.coin = coin, .quote = quote, .price = priceText(quote.price)};
    part.reference = referenceText(coin.referencePrice);
    if (quote.change24h && parts.change24h) {
        part.change = changeText(*quote.change24h);
    }
    if (quote.high24h && quote.low24h && parts.highLow24h) {
        part.highLow = highLowText(*quote.high24h, *quote.low24h);
    }
    part.showsSparkline = quote.sparkline && !quote.sparkline->empty() && parts.sparkline;
    return part;
}

GasPart composeGas(const platform::Preferences& preferences, double fee, const market::MarketDataMap& quotes) {
    GasPart part{.network = market::gasNetworkOf(preferences.integer(config::kGasSource)), .fee = fee};
    if (part.network == market::GasNetwork::Ethereum) {
        if (const auto price = ethereumPrice(quotes)) {
            part.transferCost = transferCost(fee, *price);
        }
    }
    part.text = gasText(part.network, fee, part.transferCost);
    return part;
}

}  // namespace

StatusLine composeStatusLine(const platform::Preferences& preferences, const std::vector<config::Coin>& coins,
                             const market::MarketDataMap& quotes, std::optional<double> gasPrice,
                             std::optional<std::string> error) {
    StatusLine line{.sourceId = config::selectedSourceID(preferences),
                    .parts = {.change24h = preferences.boolean(config::kShowChange),
                              .highLow24h = preferences.boolean(config::kShowHighLow),
                              .sparkline = preferences.boolean(config::kShowSparkline)}};
    for (std::size_t i = 0; i < std::min(coins.size(), kShownCoins); ++i) {
        if (const auto quote = quotes.find(coins[i].apiId); quote != quotes.end()) {
            line.coins.push_back(composeCoin(line.parts, coins[i], quote->second));
        }
    }
    if (quotes.empty()) {
        line.emptyText = emptyLineText(error);
    }
    if (gasPrice && preferences.boolean(config::kShowGasFee)) {
        line.gas = composeGas(preferences, *gasPrice, quotes);
    }
    line.error = std::move(error);
    return line;
}

}  // namespace glintar::presenter
