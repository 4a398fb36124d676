#include "presenter/StatusLine.h"

#include "config/Settings.h"

#include <algorithm>

namespace glintar::presenter {

namespace {

GasPart composeGas(const config::Settings& settings, const market::NetworkFee& fee,
                   const market::MarketDataMap& quotes) {
    GasPart part{.network = market::gasNetworkOf(settings.gasSource), .fee = fee.price, .arrival = fee.arrival};
    if (part.network == market::GasNetwork::Ethereum) {
        if (const auto price = ethereumPrice(quotes)) {
            part.transferCost = transferCost(fee.price, *price);
        }
    }
    part.text = gasText(part.network, fee.price, part.transferCost);
    return part;
}

std::vector<market::Arrival> arrivals(const StatusLine& line) {
    std::vector<market::Arrival> all;
    all.reserve(line.coins.size() + 1);
    for (const auto& part : line.coins) {
        all.push_back(part.quote.arrival);
    }
    if (line.gas) {
        all.push_back(line.gas->arrival);
    }
    return all;
}

}  // namespace

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

bool StatusLine::hasOld() const {
    return std::ranges::any_of(arrivals(*this), &market::Arrival::isOld);
}

bool StatusLine::areAllCoinsOld() const {
    return !coins.empty() && std::ranges::all_of(coins, [](const auto& part) { return part.quote.arrival.isOld; });
}

std::optional<market::Arrival> StatusLine::oldest() const {
    const auto all = arrivals(*this);
    const auto found = std::ranges::min_element(all, {}, &market::Arrival::instant);
    return found == all.end() ? std::nullopt : std::optional(*found);
}

std::optional<market::Arrival> StatusLine::newest() const {
    auto all = arrivals(*this);
    if (!coins.empty()) {
        all.resize(coins.size());  // a new fee makes no old price new
    }
    const auto found = std::ranges::max_element(all, {}, &market::Arrival::instant);
    return found == all.end() ? std::nullopt : std::optional(*found);
}

StatusLine composeStatusLine(const config::Settings& settings, const std::vector<config::Coin>& coins,
                             const market::MarketDataMap& quotes, const std::optional<market::NetworkFee>& gasPrice,
                             const std::optional<Outcome>& outcome) {
    StatusLine line{.sourceId = settings.selectedSourceID,
                    .parts = {.change24h = settings.showChange24h,
                              .highLow24h = settings.showHighLow24h,
                              .sparkline = settings.showSparkline}};
    const bool isGoodAnswer = outcome && !outcome->error && outcome->hasPrices;
    for (std::size_t i = 0; i < std::min(coins.size(), kShownCoins); ++i) {
        if (const auto quote = quotes.find(coins[i].apiId); quote != quotes.end()) {
            line.coins.push_back(composeCoin(line.parts, coins[i], quote->second));
        } else if (isGoodAnswer && std::ranges::find(outcome->asked, coins[i].apiId) != outcome->asked.end()) {
            line.lacking.push_back(coins[i].displayName);
        }
    }
    if (gasPrice && settings.showGasFee) {
        line.gas = composeGas(settings, *gasPrice, quotes);
    }
    if (outcome) {
        line.time = outcome->time;
        line.error = outcome->error;
        line.failure = failureText(outcome->error, outcome->hasPrices);
    }
    if (quotes.empty() && !coins.empty()) {
        line.emptyText = outcome ? emptyLineText(outcome->error) : "Loading...";
    }
    return line;
}

}  // namespace glintar::presenter
