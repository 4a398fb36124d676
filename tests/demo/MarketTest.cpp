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

/// Every member's name in a document, in quotes, with its colon and what begins its value; of a number, 0.
std::set<std::string> membersOf(std::string text) {
    std::set<std::string> names;
    for (const char blank : {' ', '\n', '\r'}) {
        std::erase(text, blank);
    }
    for (std::size_t end = text.find("\":"); end != std::string::npos; end = text.find("\":", end + 1)) {
        const auto begin = text.rfind('"', end - 1);
        const char value = text.at(end + 2);
        names.insert(text.substr(begin, end - begin + 2) +
                     (value == '-' || (value >= '0' && value <= '9') ? '0' : value));
    }
    return names;
}

TEST(MarketAnswersTest, EachHasTheShapeOfARecordedAnswer) {
    const auto server = MarketServer::start({}).value();
    httplib::Client client(server->address());
    for (const auto& [address, file] : {
             std::pair<std::string, std::string>{
                 "/coingecko/api/v3/coins/markets?vs_currency=usd&ids=bitcoin&sparkline=true"
                 "&price_change_percentage=24h",
                 "coingecko/markets_btc_sparkline168.json"},
             {"/coingecko/api/v3/coins/markets?vs_currency=usd&ids=bitcoin", "coingecko/markets_btc_in_myr.json"},
             {"/coingecko/api/v3/coins/markets?ids=bitcoin", "coingecko/error_422_missing_vs_currency.json"},
             {"/coingecko_simple/api/v3/simple/price?ids=bitcoin", "coingecko_simple/price_btc_usd.json"},
             {"/binance/api/v3/ticker/24hr?symbol=BTCUSDT", "binance/btcusdt_2020.json"},
             {"/binance/api/v3/ticker/24hr?symbol=USDTUSDT", "binance/error_400_invalid_symbol.json"},
             {"/gate/api/v4/spot/tickers?currency_pair=BTC_USDT", "gate/btc_usdt_2023.json"},
             {"/gate/api/v4/spot/tickers?currency_pair=BTC", "gate/error_400_invalid_currency.json"},
             {"/coinbase/v2/prices/BTC-USD/spot", "coinbase/btc_usd_2016.json"},
             {"/kucoin/api/v1/market/stats?symbol=BTC-USDT", "kucoin/btc_usdt_2024.json"},
             {"/kucoin/api/v1/market/stats?symbol=BTC", "kucoin/error_200_pair_does_not_exist.json"},
             {"/coinbase_exchange/products/BTC-USD/stats", "coinbase_exchange/btc_usd_2022.json"},
             {"/gemini/v2/ticker/BTCUSD", "gemini/v2_btcusd_2020.json"},
             {"/gemini/v2/ticker/bla", "gemini/error_400_bad_symbol.json"},
             {"/whitebit/api/v1/public/ticker?market=BTC_USDT", "whitebit/btc_usdt_v1.json"},
             {"/mexc/api/v3/ticker/24hr?symbol=APEUSDT", "mexc/apeusdt_2022.json"},
             {"/cex_io/api/ticker/BTC/USD", "cex_io/btc_usd_2021.json"},
             {"/poloniex/markets/BTC_USDT/ticker24h", "poloniex/btc_usdt_ticker24h_2024.json"},
             {"/blockchain/mempool/fees", "fees_blockchain_info/fees_2020.json"},
             {"/beaconchain/api/v1/execution/gasnow", "fees_gasnow/beaconchain_2023.json"},
             {"/defillama/prices/current/coingecko:binancecoin", "defillama/bnb_2022.json"},
             {"/mempool/api/v1/fees/recommended", "fees_mempool_space/recommended_live.json"},
             {"/blockscout/api/v2/stats", "fees_blockscout/eth_stats_2026.json"},
         }) {
        const auto answer = client.Get(address);
        ASSERT_TRUE(answer) << address;
        EXPECT_EQ(membersOf(answer->body), membersOf(test::readFile(test::testData("answers/" + file)))) << address;
    }
}

}  // namespace
}  // namespace glintar::demo
