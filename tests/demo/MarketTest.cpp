#include "demo/Market.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace glintar::demo {
namespace {

using testing::Contains;
using testing::DoubleNear;

TEST(MarketTest, WalksLikeAMarketAndNotLikeNoise) {
    const Market market(1);
    const double start = market.byId("ethereum", 0).price;
    EXPECT_THAT(start, DoubleNear(3100, 1200));
    for (Step step = 0; step < 200; ++step) {
        const double now = market.byId("ethereum", step).price;
        EXPECT_THAT(market.byId("ethereum", step + 1).price, DoubleNear(now, now * 0.02)) << step;
    }
}

TEST(MarketTest, TellsOneStoryInAllItsFigures) {
    const Market market(3);
    constexpr Step kNow = 2000;
    const CoinState now = market.byId("solana", kNow);

    EXPECT_EQ(now.open, market.byId("solana", kNow - 24 * 60).price);
    EXPECT_DOUBLE_EQ(now.changePercent(), (now.price / now.open - 1) * 100);

    double high = 0;
    double low = now.price;
    for (Step back = 0; back <= 24 * 60; ++back) {
        const double then = market.byId("solana", kNow - back).price;
        high = std::max(high, then);
        low = std::min(low, then);
    }
    EXPECT_EQ(now.high, high);
    EXPECT_EQ(now.low, low);

    ASSERT_EQ(now.week.size(), 168);
    EXPECT_EQ(now.week.back(), now.price);
    EXPECT_EQ(now.week[166], market.byId("solana", kNow - 20).price) << "the last full hour, step 1980";
    EXPECT_EQ(now.week[165], market.byId("solana", kNow - 80).price);

    const auto later = market.byId("solana", kNow + 60).week;
    EXPECT_TRUE(std::equal(now.week.begin() + 1, now.week.end() - 1, later.begin())) << "the past does not change";
}

TEST(MarketTest, KnowsEveryCoinByIdAndBySymbol) {
    const Market market(1);
    const auto ids = Market::wellKnownIds();
    EXPECT_THAT(ids, Contains("dogecoin"));
    for (const std::string& id : ids) {
        const CoinState coin = market.byId(id, 5);
        EXPECT_EQ(coin.id, id);
        EXPECT_EQ(market.bySymbol(coin.symbol, 5).price, coin.price) << id;
    }
    EXPECT_NE(market.byId("floki", 5).price, market.byId("kaspa", 5).price);
    EXPECT_EQ(market.byId("floki", 5).price, market.bySymbol("FLOKI", 5).price);
}

}  // namespace
}  // namespace glintar::demo
