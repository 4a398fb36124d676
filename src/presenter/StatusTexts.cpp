#include "presenter/StatusTexts.h"

#include "text/Number.h"
#include "text/Unicode.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>

namespace glintar::presenter {

namespace {

std::string rangeText(double value) {
    return text::fixed(value, value <= 1.0 ? 3 : 1);
}

}  // namespace

std::string priceText(double price) {
    return text::fixed(price, price <= 1.0 ? 4 : 2);
}

std::string panelPriceText(double price) {
    return text::fixed(price, price >= 1 ? 2 : 4);
}

std::optional<std::string> referenceText(std::optional<double> referencePrice) {
    return referencePrice && *referencePrice > 0 ? std::optional(text::fixed(*referencePrice, 2)) : std::nullopt;
}

std::string changeText(double change24h) {
    const double change = change24h + 0.0;  // makes the negative zero a plain one
    return fmt::format("{}{}%", change >= 0 ? "+" : "", text::fixed(change, 2));
}

HighLowText highLowText(double high, double low) {
    return {rangeText(high), rangeText(low)};
}

std::string formatGasValue(double value) {
    if (value == 0) {
        return "0";
    }
    if (value < 0.01) {
        return "<0.01";
    }
    return text::fixed(value, value == std::floor(value) ? 0 : 2);
}

GasLevel gasLevel(double fee) {
    if (fee < 20) {
        return GasLevel::Low;
    }
    return fee < 50 ? GasLevel::Middle : GasLevel::High;
}

std::optional<double> transferCost(double fee, double ethereumPrice) {
    const double cost = fee * 21'000 * ethereumPrice / 1'000'000'000;
    return ethereumPrice > 0 && std::isfinite(cost) ? std::optional(cost) : std::nullopt;
}

std::optional<double> ethereumPrice(const market::MarketDataMap& quotes) {
    auto quote = quotes.find("ethereum");
    if (quote == quotes.end()) {
        quote = quotes.find("ETH");
    }
    return quote != quotes.end() && quote->second.price > 0 ? std::optional(quote->second.price) : std::nullopt;
}

std::string gasText(market::GasNetwork network, double fee, std::optional<double> cost) {
    if (network == market::GasNetwork::Bitcoin) {
        return formatGasValue(fee) + " sat";
    }
    return formatGasValue(fee) + "G" + (cost ? fmt::format(" (${})", text::fixed(*cost, 3)) : "");
}

std::string shortErrorLabel(std::string_view error) {
    const auto lowered = text::lower(error);
    if (lowered.contains("429")) {
        return "Limit 429";
    }
    if (lowered.contains("network")) {
        return "Net Error";
    }
    if (lowered.contains("timeout")) {
        return "Timeout";
    }
    if (lowered.contains("server")) {
        return "Server Err";
    }
    return "Error";
}

std::string errorText(std::string_view error) {
    return "⚠️ " + shortErrorLabel(error);
}

std::string emptyLineText(const std::optional<std::string>& error) {
    return error ? errorText(*error) : "No Price Data";
}

std::optional<std::string> failureText(const std::optional<std::string>& error, bool hasPrices) {
    if (error) {
        return errorText(*error);
    }
    return hasPrices ? std::nullopt : std::optional<std::string>("⚠️ No Price Data");
}

std::string tooltipText(const std::optional<std::string>& error, bool hasPrices, bool isApiKeyInvalid,
                        std::string_view time) {
    if (!error) {
        return fmt::format("{}{}", hasPrices ? "Last Updated: " : "⚠️ No Price Data @ ", time);
    }
    return isApiKeyInvalid ? fmt::format("⚠️ Invalid API Key (Reverted to 60s) @ {}", time)
                           : fmt::format("Error: {} @ {}", *error, time);
}

std::string oldPricesText(std::string_view oldest, std::string_view now) {
    static constexpr std::size_t kDate = 10;
    static constexpr std::size_t kClock = 8;
    const auto date = oldest.substr(0, kDate);
    const auto clock = oldest.substr(std::min(kDate + 1, oldest.size()), kClock);
    return now.starts_with(date) ? fmt::format("Prices from {}", clock) : fmt::format("Prices from {} {}", date, clock);
}

std::string lackingText(std::string_view sourceName, const std::vector<std::string>& coins) {
    return fmt::format("No price at {}: {}", text::oneLine(sourceName),
                       text::oneLine(fmt::to_string(fmt::join(coins, ", "))));
}

bool isKeyRejection(std::string_view error) {
    return error.contains("401") || error.contains("403");
}

}  // namespace glintar::presenter
