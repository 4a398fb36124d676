// What real services really answered, read by the paths that are shipped for them.

#include "config/AppConfig.h"
#include "json/Json.h"
#include "market/Extraction.h"
#include "market/ValuePath.h"
#include "platform/virtual/VirtualPlatform.h"
#include "support/Market.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

namespace glintar::market {
namespace {

struct Evidence {
    std::string source, file, coinId;
};

TEST(RealAnswersTest, EveryShippedPathLeadsToAValueInARecordedAnswerOfItsService) {
    const auto shipped = config::decodeAppConfig(test::readFile(test::shippedResource("api_endpoints.json")));
    ASSERT_TRUE(shipped) << shipped.error();
    const std::vector<Evidence> evidence{
        {"coingecko", "coingecko/markets_btc_sparkline168.json", "bitcoin"},
        {"binance", "binance/btcusdt_2020.json", "bitcoin"},
        {"gate", "gate/btc_usdt_2023.json", "bitcoin"},
        {"kucoin", "kucoin/btc_usdt_2024.json", "bitcoin"},
        {"coinbase_exchange", "coinbase_exchange/btc_usd_2022.json", "bitcoin"},
        {"coinbase", "coinbase/btc_usd_2016.json", "bitcoin"},
        {"gemini", "gemini/v2_btcusd_2020.json", "bitcoin"},
        {"whitebit", "whitebit/btc_usdt_v1.json", "bitcoin"},
        {"mexc", "mexc/apeusdt_2022.json", "apecoin"},
        {"cex_io", "cex_io/btc_usd_2021.json", "bitcoin"},
        {"poloniex", "poloniex/btc_usdt_ticker24h_2024.json", "bitcoin"},
        {"binance_us", "binance/bnbbtc_doc.json", "binancecoin"},  // its own documentation has the same answer
        {"defillama", "defillama/bnb_2022.json", "binancecoin"},
        {"coingecko_simple", "coingecko_simple/price_with_change_doc.json", "bitcoin"},
    };
    ASSERT_EQ(shipped->sources.size(), evidence.size());
    platform::VirtualConsole console;
    for (const auto& [id, file, coinId] : evidence) {
        SCOPED_TRACE(file);
        const auto* source = shipped->source(id);
        ASSERT_TRUE(source);
        const auto body = test::readFile(test::testData("answers/" + file));
        std::optional<UnifiedMarketData> quote;
        if (source->supports_batch) {
            auto quotes = parseBatchResponse(body, *source, {test::coin("", coinId)}, console);
            ASSERT_TRUE(quotes.contains(coinId));
            quote = quotes.at(coinId);
        } else {
            quote = parseSingleResponse(body, *source, coinId, console);
        }
        ASSERT_TRUE(quote);
        EXPECT_EQ(quote->change24h.has_value(), source->change_path.has_value());
        EXPECT_EQ(quote->high24h.has_value(), source->high_path.has_value());
        EXPECT_EQ(quote->low24h.has_value(), source->low_path.has_value());
        EXPECT_EQ(quote->imageUrl.has_value(), source->image_path.has_value());
        EXPECT_EQ(quote->sparkline.has_value(), source->sparkline_path.has_value());
    }
}

TEST(RealAnswersTest, EveryShippedFeePathLeadsToAValueInARecordedAnswerOfItsService) {
    const auto shipped = config::decodeAppConfig(test::readFile(test::shippedResource("api_endpoints.json")));
    ASSERT_TRUE(shipped) << shipped.error();
    const std::vector<std::pair<std::string, std::string>> evidence{
        {"mempool_space", "fees_mempool_space/recommended_live.json"},
        {"blockscout_eth", "fees_blockscout/eth_stats_2026.json"},
        {"blockchain_info_btc", "fees_blockchain_info/fees_2020.json"},
        {"beaconchain_gas", "fees_gasnow/beaconchain_2023.json"},
    };
    ASSERT_EQ(shipped->gasConfigs.value().size(), evidence.size());
    for (const auto& [id, file] : evidence) {
        const auto gas = std::ranges::find(*shipped->gasConfigs, id, &config::GasConfig::id);
        ASSERT_NE(gas, shipped->gasConfigs->end()) << id;
        const auto document = json::Document::parse(test::readFile(test::testData("answers/" + file)));
        ASSERT_TRUE(document);
        const auto value = valueAtPath(gas->pricePath, document->root());
        ASSERT_TRUE(value && value->number()) << file;
        EXPECT_GT(*value->number() / gas->divider, 0.1) << file;
        EXPECT_LT(*value->number() / gas->divider, 1000) << file << ": sat/vB or Gwei";
    }
}

}  // namespace
}  // namespace glintar::market
