#include "config/Settings.h"
#include "platform/virtual/VirtualStores.h"
#include "presenter/LineText.h"
#include "presenter/Sparkline.h"
#include "presenter/StatusLine.h"
#include "presenter/StatusTexts.h"
#include "support/CommaLocale.h"
#include "support/Market.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <limits>

namespace glintar::presenter {
namespace {

using market::GasNetwork;

TEST(StatusTextsTest, NumbersReadAsOnThePill) {
    const test::CommaLocale german;
    EXPECT_EQ(priceText(0.5), "0.5000");
    EXPECT_EQ(priceText(1.0), "1.0000");
    EXPECT_EQ(priceText(1.5), "1.50");
    EXPECT_EQ(priceText(64012.553), "64012.55");
    EXPECT_EQ(priceText(-3), "-3.0000");
    EXPECT_EQ(priceText(1e-12), "0.0000");

    EXPECT_EQ(referenceText(60000), "60000.00");
    EXPECT_EQ(referenceText(0), std::nullopt);

    EXPECT_EQ(changeText(-2.5), "-2.50%");
    EXPECT_EQ(changeText(0), "+0.00%");
    EXPECT_EQ(changeText(1.2), "+1.20%");

    EXPECT_EQ(highLowText(0.9, 1.2).high, "0.900");
    EXPECT_EQ(highLowText(0.9, 1.2).low, "1.2");
    EXPECT_EQ(highLowText(1.0, 1.0).high, "1.000");
}

TEST(StatusTextsTest, FeesReadAsOnThePill) {
    const test::CommaLocale german;
    EXPECT_EQ(gasText(GasNetwork::Ethereum, 0, std::nullopt), "0G");
    EXPECT_EQ(gasText(GasNetwork::Ethereum, 0.004, std::nullopt), "<0.01G");
    EXPECT_EQ(gasText(GasNetwork::Ethereum, 12, std::nullopt), "12G");
    EXPECT_EQ(gasText(GasNetwork::Ethereum, 12.345, std::nullopt), "12.35G");
    EXPECT_EQ(gasText(GasNetwork::Ethereum, 10, transferCost(10, 2500)), "10G ($0.525)");
    EXPECT_EQ(gasText(GasNetwork::Bitcoin, 7, transferCost(7, 2500)), "7 sat");
    EXPECT_EQ(transferCost(10, 0), std::nullopt);
    EXPECT_EQ(transferCost(1e308, 2500), std::nullopt);
}

TEST(StatusTextsTest, TheEthereumPriceIsFoundUnderEitherName) {
    EXPECT_EQ(ethereumPrice({{"ETH", {.price = 5}}}), 5);
    EXPECT_EQ(ethereumPrice({{"ETH", {.price = 5}}, {"ethereum", {.price = 6}}}), 6);
    EXPECT_EQ(ethereumPrice({{"ETH", {.price = 5}}, {"ethereum", {.price = 0}}}), std::nullopt);
    EXPECT_EQ(ethereumPrice({{"eth", {.price = 5}}}), std::nullopt);
}

TEST(StatusTextsTest, ErrorsBecomeAFewWords) {
    EXPECT_EQ(shortErrorLabel("Network 429"), "Limit 429");
    EXPECT_EQ(shortErrorLabel("Network timeout"), "Net Error");
    EXPECT_EQ(shortErrorLabel("Server TIMEOUT"), "Timeout");
    EXPECT_EQ(shortErrorLabel("Server Error (502)"), "Server Err");
    EXPECT_EQ(shortErrorLabel("HTTP 404"), "Error");
    EXPECT_EQ(emptyLineText(std::nullopt), "No Price Data");
    EXPECT_EQ(emptyLineText("Limit Exceeded (429)"), "⚠️ Limit 429");
    EXPECT_TRUE(isKeyRejection("HTTP 401") && isKeyRejection("HTTP 403"));
    EXPECT_FALSE(isKeyRejection("HTTP 404"));
}

TEST(StatusTextsTest, TheTooltipSaysHowFreshAndHowWell) {
    EXPECT_EQ(tooltipText(std::nullopt, true, true, "09:08:07"), "Last Updated: 09:08:07");
    EXPECT_EQ(tooltipText(std::nullopt, false, false, "09:08:07"), "⚠️ No Price Data @ 09:08:07");
    EXPECT_EQ(tooltipText("HTTP 404", true, false, "09:08:07"), "Error: HTTP 404 @ 09:08:07");
    EXPECT_EQ(tooltipText("HTTP 401", true, true, "09:08:07"), "⚠️ Invalid API Key (Reverted to 60s) @ 09:08:07");
}

TEST(SparklineTest, ItStaysInsideItsFrameWhateverTheValues) {
    constexpr double kMost = std::numeric_limits<double>::max();
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    struct SparklineCase {
        std::vector<double> values;
        const char *points, *text;
    };
    for (const auto& [values, points, text] : {
             SparklineCase{{1, 3, 2}, "100,4 118,18 136,11 ", "▁█▅"},
             SparklineCase{{1, 2, 3, 4, 5, 6, 7, 8},
                           "100,4 105.143,6 110.286,8 115.429,10 120.571,12 125.714,14 130.857,16 136,18 ",
                           "▁▂▃▄▅▆▇█"},
             SparklineCase{{5, 5}, "100,4 136,4 ", "▁▁"},  // flat, at the bottom
             SparklineCase{{1, 1 + 1e-15}, "100,4 136,18 ", "▁█"},
             SparklineCase{{-kMost, kMost}, "100,4 136,18 ", "▁█"},
             SparklineCase{{kNone, 1, kInfinite, 2, -kInfinite}, "100,4 136,18 ", "▁█"},
             SparklineCase{{1, 3, kNone}, "100,4 136,18 ", "▁█"},
             SparklineCase{{kNone, 1}, "", ""},
             SparklineCase{{1}, "", ""},
             SparklineCase{{}, "", ""},
         }) {
        std::string line;
        for (const auto& [x, y] : sparklinePoints(values, {100, 4, 36, 14})) {
            line += fmt::format("{:.6g},{:.6g} ", x, y);
        }
        EXPECT_EQ(line, points);
        EXPECT_EQ(sparklineText(values), text) << points;
    }
    EXPECT_NEAR(sparklineHeights(std::vector{1, 1.00001}, 0.0001).at(1), 0.1, 1e-9) << "hardly any range";
}

class StatusLineTest : public testing::Test {
protected:
    StatusLineTest() {
        for (const auto* key : {"showChange24h", "showHighLow24h", "showSparkline", "showGasFee"}) {
            preferences.setBoolean(key, true);
        }
    }
    StatusLine compose(const std::vector<config::Coin>& coins, const market::MarketDataMap& quotes,
                       std::optional<double> gas = {}, const Outcome& outcome = {}) const {
        return composeStatusLine(config::Settings::load(preferences), coins, quotes, gas, outcome);
    }

    platform::VirtualPreferences preferences;
    const market::UnifiedMarketData whole{
        .price = 2, .change24h = 1, .high24h = 3, .low24h = 1, .sparkline = std::vector<double>{1, 2}};
};

TEST_F(StatusLineTest, APartIsThereWhenItIsWantedAndKnown) {
    const std::vector<config::Coin> coins{test::coin("BTC", "bitcoin", 5)};
    const auto partOf = [&](const market::UnifiedMarketData& quote) {
        return compose(coins, {{"bitcoin", quote}}).coins.at(0);
    };
    auto part = partOf(whole);
    EXPECT_TRUE(part.reference && part.change && part.highLow && part.showsSparkline);
    auto quote = whole;
    quote.low24h.reset();
    EXPECT_FALSE(partOf(quote).highLow) << "a high without a low is not shown";
    quote = whole;
    quote.sparkline->clear();
    EXPECT_FALSE(partOf(quote).showsSparkline);
    part = partOf({.price = 2});
    EXPECT_FALSE(part.change || part.highLow || part.showsSparkline);

    for (const std::string_view key : {"showChange24h", "showHighLow24h", "showSparkline"}) {
        preferences.setBoolean(key, false);
        part = partOf(whole);
        EXPECT_EQ(part.change.has_value(), key != "showChange24h");
        EXPECT_EQ(part.highLow.has_value(), key != "showHighLow24h");
        EXPECT_EQ(part.showsSparkline, key != "showSparkline");
        preferences.setBoolean(key, true);
    }
}

TEST_F(StatusLineTest, OnlyTheFirstFiveCoinsCountAndMissingOnesLeaveNoGap) {
    std::vector<config::Coin> coins;
    market::MarketDataMap quotes;
    for (const auto* id : {"g", "f", "e", "d", "c", "b", "a"}) {
        coins.push_back(test::coin(id, id));
        if (std::string_view(id) != "e") {
            quotes[id] = whole;
        }
    }
    std::string shown;
    for (const auto& part : compose(coins, quotes).coins) {
        shown += part.coin.apiId;
    }
    EXPECT_EQ(shown, "gfdc");
}

TEST_F(StatusLineTest, NothingToShowIsEmptyAndNoQuotesAtAllSaySo) {
    const std::vector<config::Coin> coins{test::coin("BTC", "bitcoin")};
    EXPECT_TRUE(compose(coins, {{"other", whole}}).isEmpty());
    EXPECT_EQ(compose(coins, {}, {}, {.error = "Network Error"}).emptyText, "⚠️ Net Error");
    preferences.setBoolean("showGasFee", false);
    EXPECT_FALSE(compose(coins, {}, 7).gas);
}

}  // namespace
}  // namespace glintar::presenter
