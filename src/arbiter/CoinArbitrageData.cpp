#include "arbiter/CoinArbitrageData.h"

#include "platform/Platform.h"

#include <algorithm>
#include <utility>

namespace glintar::arbiter {

CoinArbitrageData::CoinArbitrageData(platform::Platform& platform, config::Coin shownCoin)
    : id(config::randomUuid(platform.entropy)), coin(std::move(shownCoin)), runLoop_(platform.runLoop) {}

void CoinArbitrageData::addPrice(ArbiterPrice price) {
    runLoop_.post([row = weak_from_this(), price = std::move(price)]() mutable {
        if (const auto held = row.lock()) {
            held->replacePrice(std::move(price));
        }
    });
}

void CoinArbitrageData::replacePrice(ArbiterPrice price) {
    std::erase_if(prices, [&](const ArbiterPrice& old) { return old.platformName == price.platformName; });
    prices.push_back(std::move(price));
    if (onChange) {
        onChange();
    }
}

void CoinArbitrageData::keepPrices(const CoinArbitrageData& earlier, platform::Instant until) {
    prices = earlier.prices;
    for (const auto& price : prices) {
        const auto already = earlier.keptUntil_.find(price.id);
        keptUntil_[price.id] = already == earlier.keptUntil_.end() ? until : already->second;
    }
}

void CoinArbitrageData::dropKeptPrices(platform::Instant now) {
    const auto dropped = std::erase_if(prices, [&](const ArbiterPrice& price) {
        const auto kept = keptUntil_.find(price.id);
        return kept != keptUntil_.end() && kept->second <= now;
    });
    std::erase_if(keptUntil_, [&](const auto& kept) { return kept.second <= now; });
    if (dropped > 0 && onChange) {
        onChange();
    }
}

}  // namespace glintar::arbiter
