#include "config/AppConfig.h"
#include "config/Coin.h"
#include "demo/Market.h"
#include "demo/MarketDocument.h"
#include "demo/MarketOptions.h"
#include "demo/MarketServer.h"
#include "json/Json.h"
#include "market/Extraction.h"
#include "market/ValuePath.h"
#include "platform/virtual/VirtualPlatform.h"
#include "support/TemporaryFolder.h"
#include "support/TestFiles.h"
#include "text/Address.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
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

using namespace std::chrono_literals;

class MarketServerTest : public testing::Test {
protected:
    void SetUp() override {
        auto started = MarketServer::start({.step = std::nullopt});
        ASSERT_TRUE(started) << started.error();
        server = std::move(*started);
    }

    /// Without an answer its status is -1.
    httplib::Response get(const std::string& path) {
        httplib::Client client(server->address());
        client.set_read_timeout(5s);
        const auto result = client.Get(path);
        return result ? *result : httplib::Response();
    }
    std::string binance() { return get("/binance/api/v3/ticker/24hr?symbol=BTCUSDT").body; }

    std::unique_ptr<MarketServer> server;
};

TEST_F(MarketServerTest, TellsNearlyOnePriceInEveryShapeThatItsDocumentDescribes) {
    const auto still = MarketServer::start({.step = 1h}).value();
    const std::string shipped = test::readFile(GLINTAR_RESOURCES "/api_endpoints.json");
    const auto document = config::decodeAppConfig(marketDocument(shipped, still->address()).value());
    ASSERT_TRUE(document) << document.error();
    ASSERT_EQ(document->sources.size(), config::decodeAppConfig(shipped)->sources.size());
    platform::VirtualConsole console;
    httplib::Client client(still->address());
    const auto read = [&](std::string address) {
        address = text::replaceAll(text::replaceAll(address, "{ID}", "dogecoin"), "{SYMBOL}", "DOGE");
        return client.Get(address.substr(still->address().size()))->body;
    };

    std::optional<market::UnifiedMarketData> first;
    std::set<double> prices;
    for (const config::SourceConfig& source : document->sources) {
        const auto body = read(source.url_template);
        const config::Coin coin{.id = "", .displayName = "DOGE", .apiId = "dogecoin", .referencePrice = {}};
        const auto batch = market::parseBatchResponse(body, source, {coin}, console);
        const auto quote = source.supports_batch
                               ? batch.contains("dogecoin") ? std::optional(batch.at("dogecoin")) : std::nullopt
                               : market::parseSingleResponse(body, source, "dogecoin", console);
        ASSERT_TRUE(quote) << source.id << body;
        if (!first) {  // CoinGecko, which has everything
            first = quote;
            ASSERT_TRUE(quote->sparkline && quote->high24h && quote->low24h && quote->change24h && quote->imageUrl);
            EXPECT_EQ(quote->sparkline->back(), quote->price);
            EXPECT_TRUE(client.Get(quote->imageUrl->substr(still->address().size()))->body.starts_with("\x89PNG"));
        }
        const double venuesDiffer = first->price * 0.0017;
        EXPECT_NEAR(quote->price, first->price, venuesDiffer) << source.id;
        EXPECT_NEAR(quote->high24h.value_or(*first->high24h), *first->high24h, venuesDiffer) << source.id;
        EXPECT_NEAR(quote->low24h.value_or(*first->low24h), *first->low24h, venuesDiffer) << source.id;
        prices.insert(quote->price);
        EXPECT_NEAR(quote->change24h.value_or(*first->change24h), *first->change24h, 0.006) << source.id;
        EXPECT_EQ(quote->change24h.has_value(), source.change_path.has_value()) << source.id;
    }
    EXPECT_GT(prices.size(), 10) << "there are gaps to be seen";
    for (const config::GasConfig& fee : document->gasConfigs.value()) {
        const auto body = json::parseContainer(read(fee.url));
        ASSERT_TRUE(body) << fee.id;
        const auto value = market::valueAtPath(fee.pricePath, body->root());
        EXPECT_GT(value.value().number().value_or(0), 0) << fee.id;
    }
}

TEST_F(MarketServerTest, MovesWithEveryRequestAsItsSeedSays) {
    const auto price = [](const std::string& body) { return body.substr(body.find("lastPrice"), 30); };
    const auto first = price(binance());
    const auto second = price(binance());
    EXPECT_NE(first, second);
    SetUp();
    EXPECT_EQ(price(binance()), first);
    EXPECT_EQ(price(binance()), second);
    server = MarketServer::start({.seed = 2, .step = std::nullopt}).value();
    EXPECT_NE(price(binance()), first);
}

TEST_F(MarketServerTest, LogsRequestsAndKeysButNotItsOwnControl) {
    httplib::Client client(server->address());
    client.Get("/coingecko/api/v3/coins/markets?vs_currency=usd&ids=a%7Cb", {{"x-cg-demo-api-key", "CG-1"}});
    client.Head("/nowhere/at/all");
    EXPECT_EQ(get("/nowhere").status, 404);
    EXPECT_EQ(get("/control/log").body,
              "/coingecko/api/v3/coins/markets?vs_currency=usd&ids=a%7Cb CG-1\nHEAD /nowhere/at/all\n/nowhere\n");
}

TEST_F(MarketServerTest, FailsWhereAndAsOftenAsItIsTold) {
    const auto fees = [&] { return get("/mempool/api/v1/fees/recommended").status; };
    get("/control/fault?service=mempool&count=1&kind=503");
    EXPECT_TRUE(binance().contains("lastPrice"));
    EXPECT_EQ(fees(), 503);
    EXPECT_EQ(fees(), 200);
    EXPECT_EQ(get("/control/fault?kind=418").status, 400);
    EXPECT_EQ(get("/control/fault?kind=429&count=many").status, 400);

    get("/control/fault?service=mempool&kind=429");
    get("/control/fault?kind=500");
    EXPECT_EQ(fees(), 500) << "all services are meant";
    get("/control/fault?kind=off");
    EXPECT_EQ(fees(), 200);
}

TEST_F(MarketServerTest, DelaysOneServiceWithoutHoldingUpOthers) {
    get("/control/fault?service=binance&kind=slow&ms=60000");
    httplib::Client impatient(server->address());
    impatient.set_read_timeout(100ms);
    EXPECT_EQ(impatient.Get("/binance/api/v3/ticker/24hr?symbol=BTCUSDT").error(), httplib::Error::Read);
    EXPECT_EQ(get("/gate/api/v4/spot/tickers?currency_pair=BTC_USDT").status, 200);
    get("/control/fault?service=binance&kind=slow&ms=50");
    const auto asked = std::chrono::steady_clock::now();
    EXPECT_TRUE(binance().contains("lastPrice"));
    EXPECT_GE(std::chrono::steady_clock::now() - asked, 50ms);
}

TEST_F(MarketServerTest, TellsThatItsPortIsTaken) {
    const auto port = wholeNumber(server->address().substr(server->address().rfind(':') + 1));
    EXPECT_FALSE(MarketServer::start({.port = static_cast<int>(port.value())}));
}

}  // namespace
}  // namespace glintar::demo
