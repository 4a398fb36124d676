#include "config/Settings.h"
#include "platform/virtual/VirtualStores.h"
#include "presenter/StatusLine.h"
#include "presenter/StatusTexts.h"
#include "support/CommaLocale.h"
#include "support/Market.h"

#include <gtest/gtest.h>

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
    EXPECT_EQ(priceText(1e15), "1000000000000000.00");

    EXPECT_EQ(referenceText(60000), "60000.00");
    EXPECT_EQ(referenceText(0), std::nullopt);
    EXPECT_EQ(referenceText(-1), std::nullopt);
    EXPECT_EQ(referenceText(std::nullopt), std::nullopt);

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
    EXPECT_EQ(shortErrorLabel("Cooling down for error 429 (30s)"), "Limit 429");
    EXPECT_EQ(shortErrorLabel("Network 429"), "Limit 429");
    EXPECT_EQ(shortErrorLabel("Network timeout"), "Net Error");
    EXPECT_EQ(shortErrorLabel("Server timeout"), "Timeout");
    EXPECT_EQ(shortErrorLabel("TIMEOUT"), "Timeout");
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

class StatusLineTest : public testing::Test {
protected:
    StatusLineTest() {
        for (const auto* key : {"showChange24h", "showHighLow24h", "showSparkline", "showGasFee"}) {
            preferences.setBoolean(key, true);
        }
    }
    platform::VirtualPreferences preferences;
    const market::UnifiedMarketData whole{
        .price = 2, .change24h = 1, .high24h = 3, .low24h = 1, .sparkline = std::vector<double>{1, 2}};
};

TEST_F(StatusLineTest, APartIsThereWhenItIsWantedAndKnown) {
    const std::vector<config::Coin> coins{test::coin("BTC", "bitcoin", 5)};
    const auto compose = [&](const market::UnifiedMarketData& quote) {
        return composeStatusLine(config::Settings::load(preferences), coins, {{"bitcoin", quote}}, std::nullopt,
                                 Outcome{})
            .coins.at(0);
    };
    auto part = compose(whole);
    EXPECT_TRUE(part.reference && part.change && part.highLow && part.showsSparkline);
    auto quote = whole;
    quote.low24h.reset();
    EXPECT_FALSE(compose(quote).highLow) << "a high without a low is not shown";
    quote = whole;
    quote.sparkline->clear();
    EXPECT_FALSE(compose(quote).showsSparkline);
    part = compose({.price = 2});
    EXPECT_FALSE(part.change || part.highLow || part.showsSparkline);

    for (const std::string_view key : {"showChange24h", "showHighLow24h", "showSparkline"}) {
        preferences.setBoolean(key, false);
        part = compose(whole);
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
    const auto line = composeStatusLine(config::Settings::load(preferences), coins, quotes, std::nullopt, Outcome{});
    std::string shown;
    for (const auto& part : line.coins) {
        shown += part.coin.apiId;
    }
    EXPECT_EQ(shown, "gfdc");
}

TEST_F(StatusLineTest, NothingToShowIsEmptyAndNoQuotesAtAllSaySo) {
    const std::vector<config::Coin> coins{test::coin("BTC", "bitcoin")};
    EXPECT_TRUE(
        composeStatusLine(config::Settings::load(preferences), coins, {{"other", whole}}, std::nullopt, Outcome{})
            .isEmpty());
    EXPECT_EQ(composeStatusLine(config::Settings::load(preferences), coins, {}, std::nullopt,
                                Outcome{.error = "Network Error"})
                  .emptyText,
              "⚠️ Net Error");
    EXPECT_TRUE(composeStatusLine(config::Settings::load(preferences), coins, {}, 7, Outcome{}).gas);
    preferences.setBoolean("showGasFee", false);
    EXPECT_FALSE(composeStatusLine(config::Settings::load(preferences), coins, {}, 7, Outcome{}).gas);
}

}  // namespace
}  // namespace glintar::presenter
