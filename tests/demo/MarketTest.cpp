#include "demo/Market.h"
#include "demo/MarketOptions.h"
#include "demo/MarketServer.h"
#include "support/TemporaryFolder.h"
#include "support/TestFiles.h"

#include <gmock/gmock.h>
#include <httplib.h>

#include <algorithm>
#include <set>
#include <string>
#include <vector>

namespace glintar::demo {
namespace {

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

std::expected<MarketOptions, std::string> parse(std::vector<std::string> words) {
    words.insert(words.begin(), "glintar-demo-market");
    std::vector<char*> arguments;
    for (std::string& word : words) {
        arguments.push_back(word.data());
    }
    return parseMarketOptions(arguments);
}

TEST(MarketOptionsTest, ReadsWhatItUnderstandsAndRefusesTheRest) {
    const auto options = parse({"--port", "8080", "--seed", "9", "--step", "0.25", "--fault", "429:gate:2"});
    ASSERT_TRUE(options) << options.error();
    EXPECT_EQ(options->server.port, 8080);
    EXPECT_EQ(options->server.seed, 9);
    EXPECT_EQ(options->server.step, std::chrono::milliseconds{250});
    EXPECT_EQ(options->faults, std::vector<std::string>{"429:gate:2"});
    EXPECT_FALSE(parse({"--step", "per-request"})->server.step);

    const std::vector<std::vector<std::string>> wrong = {
        {"--port", "65536"}, {"--port", "-1"},       {"--port", "80x"},          {"--seed"},
        {"--step", "0"},     {"--fault", "418"},     {"--fault", "429:gate:no"}, {"--colour", "red"},
        {"--seed", "1.5"},   {"--remove-at-end", ""}};
    for (const auto& words : wrong) {
        EXPECT_FALSE(parse(words)) << testing::PrintToString(words);
    }
}

TEST(MarketOptionsTest, RemovesOnlyADirectoryMadeForADemonstration) {
    const test::TemporaryFolder folder;
    const auto& root = folder.path();
    std::filesystem::create_directory(root / "glintar-demo-abc");
    std::filesystem::create_directory(root / "precious");
    std::filesystem::create_directory_symlink(root / "precious", root / "glintar-demo-link");

    EXPECT_TRUE(parse({"--remove-at-end", root / "glintar-demo-abc"}));
    EXPECT_FALSE(parse({"--remove-at-end", root / "precious"}));
    EXPECT_FALSE(parse({"--remove-at-end", root / "glintar-demo-link"}));
    EXPECT_FALSE(parse({"--remove-at-end", root / "glintar-demo-abc/.."}));
    EXPECT_FALSE(parse({"--remove-at-end", root / "glintar-demo-missing"}));
}

}  // namespace
}  // namespace glintar::demo
