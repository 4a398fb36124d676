#pragma once

#include "config/Coin.h"
#include "platform/RunLoop.h"

#include <compare>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace glintar::platform {
struct Platform;
}

namespace glintar::arbiter {

/// What one source asks for a coin.
struct ArbiterPrice {
    std::string id;            ///< UUID, fresh for every price
    std::string platformName;  ///< the source's name
    std::string iconName;      ///< the source's id, which is also the name of its image
    double price = 0;

    bool operator==(const ArbiterPrice& other) const { return iconName == other.iconName && price == other.price; }
    std::partial_ordering operator<=>(const ArbiterPrice& other) const { return price <=> other.price; }
};

/// One coin and its prices across the sources. Whoever shows it holds it; answers under way hold it weakly.
class CoinArbitrageData : public std::enable_shared_from_this<CoinArbitrageData> {
public:
    CoinArbitrageData(platform::Platform& platform, config::Coin coin);

    std::string id;                    ///< UUID of the row
    config::Coin coin;                 ///< never changes
    std::vector<ArbiterPrice> prices;  ///< one for each `platformName`, in order of arrival; main thread

    /// Runs on the main thread when `prices` have changed.
    std::function<void()> onChange;

    /// Puts the price at the end, on the main thread, in place of an earlier one of that platform. Any thread.
    void addPrice(ArbiterPrice price);

    /// Takes over an earlier row's prices, so that a refresh empties no table. They stay until new ones come, and until
    /// `until` at most. A price that the earlier row had itself taken over keeps its own, earlier limit. Main thread.
    void keepPrices(const CoinArbitrageData& earlier, platform::Instant until);

    /// Drops what was kept until now and has not been replaced. Main thread.
    void dropKeptPrices(platform::Instant now);

private:
    void replacePrice(ArbiterPrice price);

    platform::RunLoop& runLoop_;
    std::map<std::string, platform::Instant> keptUntil_;  // by the price's id
};

}  // namespace glintar::arbiter
