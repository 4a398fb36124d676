#pragma once

#include "arbiter/CoinArbitrageData.h"
#include "platform/Graphics.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace glintar::arbiter {

/// Where a price stands among its coin's. Alone it is neither the highest nor the lowest.
enum class PriceRank { Highest, Between, Lowest };

/// One price as a column shows it.
struct PriceEntry {
    std::string id;            ///< of its `ArbiterPrice`
    std::string platformName;  ///< to be read out or pointed at; it is not drawn
    std::string iconName;
    double price = 0;
    std::string text;
    PriceRank rank = PriceRank::Between;
    std::optional<std::string> gap;  ///< to the next lower price; none for the last
};

/// From the highest to the lowest price; equal ones in order of arrival.
[[nodiscard]] std::vector<PriceEntry> priceEntries(const std::vector<ArbiterPrice>& prices);

/// How far `lower` lies below `price`, as "1.000%", "<0.001%" or "0.00%" where that cannot be said.
[[nodiscard]] std::string gapText(double price, double lower);

/// One coin's column. Main thread only.
struct ArbiterColumnView {
    std::shared_ptr<CoinArbitrageData> data;
    platform::ImagePtr icon;  ///< null when none is kept; a symbol stands for it then

    [[nodiscard]] std::string heading() const;
    [[nodiscard]] std::vector<PriceEntry> entries() const { return priceEntries(data->prices); }
};

}  // namespace glintar::arbiter
