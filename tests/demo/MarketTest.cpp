#include "config/AppConfig.h"
#include "config/Coin.h"
#include "demo/DemoSession.h"
#include "demo/Market.h"
#include "demo/MarketDocument.h"
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
}

TEST(DemoDirectoryTest, RemovesOnlyADirectoryMadeForADemonstration) {
    const test::TemporaryFolder folder;
    const auto& root = folder.path();
    std::filesystem::create_directory(root / "glintar-demo-abc");
    std::filesystem::create_directory(root / "precious");
    std::filesystem::create_directory_symlink(root / "precious", root / "glintar-demo-link");

    EXPECT_TRUE(isDemoDirectory(root / "glintar-demo-abc"));
    EXPECT_FALSE(isDemoDirectory(root / "precious"));
    EXPECT_FALSE(isDemoDirectory(root / "glintar-demo-link"));
    EXPECT_FALSE(isDemoDirectory(root / "glintar-demo-abc/.."));
    EXPECT_FALSE(isDemoDirectory(root / "glintar-demo-missing"));
}

TEST(MarketServerTest, TellsNearlyOnePriceInEveryShapeThatItsDocumentDescribes) {
    const auto still = MarketServer::start(std::chrono::hours{1}).value();
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

}  // namespace
}  // namespace glintar::demo
