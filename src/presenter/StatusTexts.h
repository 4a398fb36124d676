#pragma once

#include "market/GasNetwork.h"
#include "market/MarketData.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::presenter {

// What the price line says, in words and numbers. The locale never matters.

/// Four decimals up to and including 1, two above.
[[nodiscard]] std::string priceText(double price);

/// As panels show it: two decimals from 1 upwards, four below.
[[nodiscard]] std::string panelPriceText(double price);

/// None for a reference price that is missing or not above 0.
[[nodiscard]] std::optional<std::string> referenceText(std::optional<double> referencePrice);

/// "+1.20%", "-2.50%", "+0.00%".
[[nodiscard]] std::string changeText(double change24h);

/// Each with three decimals up to and including 1, one above.
struct HighLowText {
    std::string high;
    std::string low;
};
[[nodiscard]] HighLowText highLowText(double high, double low);

/// "0", "<0.01", "12", "12.50".
[[nodiscard]] std::string formatGasValue(double value);

/// How dear the network is: from 20 (sat/vB or Gwei) and from 50.
enum class GasLevel { Low, Middle, High };
[[nodiscard]] GasLevel gasLevel(double fee);

/// Dollars for a plain Ethereum transfer (21 000 gas; fee in Gwei). None without a price above 0.
[[nodiscard]] std::optional<double> transferCost(double fee, double ethereumPrice);

/// The Ethereum price among quotes, under whichever identifier it came; none when it is not above 0.
[[nodiscard]] std::optional<double> ethereumPrice(const market::MarketDataMap& quotes);

/// "12G ($0.525)", "12G", "7 sat".
[[nodiscard]] std::string gasText(market::GasNetwork network, double fee, std::optional<double> cost);

/// A few words for an engine's error text, such as "Limit 429" or "Net Error".
[[nodiscard]] std::string shortErrorLabel(std::string_view error);

/// "⚠️ " and the short label.
[[nodiscard]] std::string errorText(std::string_view error);

/// What stands in place of the coins when there is no quote at all.
[[nodiscard]] std::string emptyLineText(const std::optional<std::string>& error);

/// What stands before quotes that the last refresh did not bring: the error, or that there was no price in the answer.
/// None after a good one.
[[nodiscard]] std::optional<std::string> failureText(const std::optional<std::string>& error, bool hasPrices);

/// How the last refresh ended; `time` as "HH:mm:ss".
[[nodiscard]] std::string tooltipText(const std::optional<std::string>& error, bool hasPrices, bool isApiKeyInvalid,
                                      std::string_view time);

/// "Prices from 14:58:56", with the date when it is another one than today's. Both as RFC 3339 timestamps.
[[nodiscard]] std::string oldPricesText(std::string_view oldest, std::string_view now);

/// "No price at Binance: XYZ, ABC".
[[nodiscard]] std::string lackingText(std::string_view sourceName, const std::vector<std::string>& coins);

/// Whether the service refused the API key (401 or 403).
[[nodiscard]] bool isKeyRejection(std::string_view error);

}  // namespace glintar::presenter
