#include "arbiter/ArbitrageService.h"
#include "platform/virtual/VirtualPlatform.h"
#include "support/Market.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace glintar::arbiter {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

class ArbitrageServiceTest : public testing::Test {
protected:
    ArbitrageServiceTest() { test::ship(machine); }

    ArbitrageService::Rows fetch(const std::optional<market::MarketDataMap>& cached = {}) {
        return ArbitrageService::shared(machine.platform()).fetchArbitrageData(coins, cached, "coingecko");
    }

    /// "Binance 100.5, Gate 99" and so on, by name.
    static std::string shown(const CoinArbitrageData& row) {
        std::map<std::string, double> prices;
        for (const auto& price : row.prices) {
            prices[price.platformName] = price.price;
        }
        std::string text;
        for (const auto& [name, price] : prices) {
            text += fmt::format("{}{} {}", text.empty() ? "" : ", ", name, price);
        }
        return text;
    }

    platform::VirtualPlatform machine;
    std::vector<config::Coin> coins{test::coin("btc", "bitcoin"), test::coin("eth", "ethereum")};
};

TEST_F(ArbitrageServiceTest, AsksEverySourceItsWayAndReusesTheQuotesOfTheSelectedOne) {
    machine.secrets.add("apiKey_coingecko", "GlintarUser", "secret");
    machine.http.answer("binance.test/t?symbol=BTCUSDT", R"({"lastPrice":"100.5"})");
    machine.http.answer("gate.test/t?pair=BTC_USDT&id=bitcoin", R"([{"last":99}])");
    machine.http.answer("gate.test/t?pair=ETH_USDT", R"([])");
    machine.http.answer("simple.test/p?ids=btc%7Ceth&again=btc%7Ceth", R"({"BTC":{"usd":7},"eth":{"usd":"8"}})", 500);
    const auto rows = fetch(market::MarketDataMap{{"bitcoin", {.price = 101}}, {"eth", {.price = 5}}});
    EXPECT_THAT(rows.at(0)->prices, IsEmpty()) << "even what is at hand comes later";
    machine.advance(1s);
    EXPECT_EQ(shown(*rows.at(0)), "Binance 100.5, CoinGecko 101, Gate 99, Simple 7");
    EXPECT_EQ(shown(*rows.at(1)), "CoinGecko 5, Simple 8");
    EXPECT_EQ(machine.http.asked("gecko.test"), 0);
    for (const auto& request : machine.http.requests) {
        EXPECT_TRUE(request.headers.empty() && request.originHeaders.empty()) << request.url;
    }
    EXPECT_EQ(machine.secrets.reads, 0);
    for (const auto* said :
         {"♻️ [Arbiter] CoinGecko 命中缓存，直接复用", "🚀 [Network Arbiter] 通用批量请求 Simple: https://",
          "🚀 [Network Arbiter] 通用单次请求 Gate -> BTC"}) {
        EXPECT_EQ(machine.console.count(said), 1) << said;
    }
}

TEST_F(ArbitrageServiceTest, WithoutQuotesTheSelectedSourceIsAskedLikeTheOthers) {
    machine.http.answer("gecko.test/markets?ids=bitcoin,ethereum",
                        R"([{"id":"ethereum","current_price":"2"},{"id":7},3,{"id":"bitcoin","current_price":[]},)"
                        R"({"id":"ethereum","current_price":1e15}])");
    const auto rows = fetch(market::MarketDataMap{});
    EXPECT_EQ(machine.console.count("⚠️ [Arbiter] CoinGecko 是主源但无缓存，转为主动查询"), 1);
    machine.advance(1s);
    EXPECT_EQ(shown(*rows.at(0)), "");
    EXPECT_EQ(shown(*rows.at(1)), "CoinGecko 1000000000000000") << "one entry a platform, the later one";
}

TEST_F(ArbitrageServiceTest, WhatNoServiceShouldAnswerHurtsNobody) {
    for (const auto* body : {"<html>", "", "[]", "{}", R"({"btc":3,"BTC":{"usd":"cheap"}})", R"([[{"last":1}]])"}) {
        machine.http.answer("test/", body);
        const auto rows = fetch();
        machine.advance(1s);
        EXPECT_THAT(rows.at(0)->prices, IsEmpty()) << body;
    }
    EXPECT_EQ(machine.console.count("❌ [Arbiter] 解析失败: Simple"), 1) << "an empty body is no answer";
    machine.files.contents[test::kShippedConfiguration] = "broken";
    machine.registry.clear();
    EXPECT_EQ(fetch().size(), 2);
    EXPECT_EQ(machine.console.count("❌ [Arbiter] 无法读取源配置"), 1);
}

TEST_F(ArbitrageServiceTest, AnswersForRowsThatNobodyHoldsAreNotRead) {
    machine.http.answer("simple.test", "<html>");
    fetch().clear();
    machine.advance(1s);
    EXPECT_EQ(machine.console.count("❌ [Arbiter] 解析失败: Simple"), 0);
}

TEST_F(ArbitrageServiceTest, PricesAreKeptUntilNewOnesComeOrTheirTimeIsUp) {
    const auto row = [&] { return std::make_shared<CoinArbitrageData>(machine.platform(), coins[0]); };
    const auto first = row();
    first->addPrice({.id = "1", .platformName = "A", .iconName = "a", .price = 1});
    first->addPrice({.id = "2", .platformName = "B", .iconName = "b", .price = 2});
    machine.runLoop.settle();
    const auto second = row();
    const auto now = machine.runLoop.now();
    second->keepPrices(*first, now + 10s);
    second->addPrice({.id = "3", .platformName = "A", .iconName = "a", .price = 3});
    machine.runLoop.settle();
    const auto third = row();
    third->keepPrices(*second, now + 15s);
    third->dropKeptPrices(now + 9s);
    EXPECT_EQ(shown(*third), "A 3, B 2");
    third->dropKeptPrices(now + 10s);
    EXPECT_EQ(shown(*third), "A 3") << "what was kept twice is as old as it is";
    third->dropKeptPrices(now + 15s);
    EXPECT_EQ(shown(*third), "");
}

}  // namespace
}  // namespace glintar::arbiter
