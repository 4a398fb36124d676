// What real services really answered, read by the paths that are configured for them.

#include "config/AppConfig.h"
#include "json/Json.h"
#include "market/CryptoService.h"
#include "market/Extraction.h"
#include "market/ValuePath.h"
#include "platform/virtual/VirtualPlatform.h"
#include "support/Market.h"
#include "support/TestFiles.h"

#include <gtest/gtest.h>

namespace glintar::market {
namespace {

void expectField(const std::optional<double>& field, json::View expected, std::string_view name) {
    const auto value = expected.member(name);
    ASSERT_TRUE(value) << name;
    EXPECT_EQ(field, value->number()) << name;
}

void expectQuote(const UnifiedMarketData& quote, json::View expected) {
    expectField(quote.price, expected, "price");
    expectField(quote.change24h, expected, "change24h");
    expectField(quote.high24h, expected, "high24h");
    expectField(quote.low24h, expected, "low24h");
    const auto image = expected.member("imageUrl")->string();
    EXPECT_EQ(quote.imageUrl, image ? std::optional(std::string(*image)) : std::nullopt);
    const auto count = quote.sparkline ? std::optional(static_cast<double>(quote.sparkline->size())) : std::nullopt;
    expectField(count, expected, "sparklineCount");
    if (quote.sparkline) {
        expectField(quote.sparkline->back(), expected, "sparklineLast");
    }
}

TEST(RealAnswersTest, EveryRecordedAnswerGivesItsRecordedQuotes) {
    const auto text = test::readFile(test::testData("answers/expected.json"));
    const auto document = json::Document::parse(text);
    const auto config = config::decodeAppConfig(text);
    ASSERT_TRUE(document && config);
    ASSERT_GT(config->sources.size(), 50U);
    platform::VirtualConsole console;
    for (std::size_t i = 0; i < config->sources.size(); ++i) {
        const auto& source = config->sources[i];
        const auto row = document->root().member("sources")->at(i);
        const std::string file(row.member("file")->string().value());
        SCOPED_TRACE(file);
        std::vector<config::Coin> coins;
        const auto asked = *row.member("coins");
        for (std::size_t c = 0; c < asked.size(); ++c) {
            coins.push_back(test::coin(std::string(*asked.at(c).member("displayName")->string()),
                                       std::string(*asked.at(c).member("apiId")->string())));
        }
        const auto body = test::readFile(test::testData("answers/" + file));
        MarketDataMap quotes;
        if (source.supports_batch) {
            quotes = parseBatchResponse(body, source, coins, console);
        } else {
            for (const auto& coin : coins) {
                if (auto quote = parseSingleResponse(body, source, coin.apiId, console)) {
                    quotes.emplace(coin.apiId, *std::move(quote));
                }
            }
        }
        for (const auto& coin : coins) {
            const auto expected = row.member("expect")->member(coin.apiId);
            ASSERT_TRUE(expected) << coin.apiId;
            const auto quote = quotes.find(coin.apiId);
            ASSERT_EQ(quote == quotes.end(), expected->isNull()) << coin.apiId;
            if (quote != quotes.end()) {
                expectQuote(quote->second, *expected);
            }
        }
    }
}

TEST(RealAnswersTest, EveryRecordedFeeAnswerGivesItsFee) {
    const auto text = test::readFile(test::testData("answers/expected_fees.json"));
    const auto document = json::Document::parse(text);
    const auto config = config::decodeAppConfig(text);
    ASSERT_TRUE(document && config && config->gasConfigs);
    ASSERT_GT(config->gasConfigs->size(), 10U);
    for (std::size_t i = 0; i < config->gasConfigs->size(); ++i) {
        const auto& gas = config->gasConfigs->at(i);
        const auto row = document->root().member("gas_configs")->at(i);
        const std::string file(row.member("file")->string().value());
        SCOPED_TRACE(file);
        platform::VirtualPlatform machine;
        constexpr std::string_view kAlone =
            R"({{"sources":[],"gas_configs":[{{"id":"","name":"","url":"{}","price_path":"{}","divider":{}}}]}})";
        test::ship(machine, fmt::format(kAlone, gas.url, gas.pricePath, gas.divider));
        machine.http.answer("https://", test::readFile(test::testData("answers/" + file)));
        std::optional<double> fee;
        CryptoService::shared(machine.platform()).fetchGasPrice([&](std::optional<double> answer) { fee = answer; });
        machine.advance(std::chrono::seconds{1});
        EXPECT_EQ(fee, row.member("expect")->number());
    }
}

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
