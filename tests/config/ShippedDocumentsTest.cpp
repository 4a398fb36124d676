#include "config/AppConfig.h"
#include "config/CoinCatalogue.h"
#include "json/Json.h"
#include "support/TestFiles.h"
#include "text/Address.h"
#include "text/Unicode.h"

#include <gtest/gtest.h>

#include <set>

namespace glintar::config {
namespace {

TEST(ShippedDocumentsTest, SourcesDecodeAndCanBeAsked) {
    const auto config = decodeAppConfig(test::readFile(test::shippedResource("api_endpoints.json")));
    ASSERT_TRUE(config) << config.error();
    EXPECT_EQ(config->sources.size(), 14u);
    EXPECT_EQ(config->sources[0].id, "coingecko");
    std::set<std::string> ids;
    for (const SourceConfig& source : config->sources) {
        EXPECT_TRUE(ids.insert(source.id).second) << source.id << " stands there twice";
        EXPECT_EQ(
            text::webAddress(text::replaceAll(text::replaceAll(source.url_template, "{ID}", "a"), "{SYMBOL}", "A"))
                .value_or("")
                .find("https://"),
            0u)
            << source.id;
        EXPECT_TRUE(source.url_template.contains("{ID}") || source.url_template.contains("{SYMBOL}")) << source.id;
        const bool isBatchShape = source.response_type == "array" || source.response_type == "dictionary";
        EXPECT_EQ(source.supports_batch, isBatchShape) << source.id;
        EXPECT_EQ(source.api_key_available.value_or(false), source.header.has_value()) << source.id;
    }
}

TEST(ShippedDocumentsTest, EachFeeServiceIsFoundUnderItsOwnNetworkOnly) {
    const auto config = decodeAppConfig(test::readFile(test::shippedResource("api_endpoints.json")));
    ASSERT_TRUE(config && config->gasConfigs);
    const auto holdsAny = [](std::string_view id, std::initializer_list<std::string_view> words) {
        return std::ranges::any_of(words, [&](std::string_view word) { return text::lower(id).contains(word); });
    };
    std::size_t bitcoin = 0;
    for (const GasConfig& gas : *config->gasConfigs) {
        const bool isBitcoin = holdsAny(gas.id, {"btc", "bitcoin", "mempool"});
        EXPECT_NE(isBitcoin, holdsAny(gas.id, {"eth", "etherscan", "gas"})) << gas.id;
        bitcoin += isBitcoin ? 1 : 0;
        EXPECT_EQ(text::webAddress(gas.url), gas.url);
        EXPECT_GT(gas.divider, 0) << gas.id;
    }
    EXPECT_EQ(config->gasConfigs->size(), 4u);
    EXPECT_EQ(bitcoin, 2u);
}

TEST(ShippedDocumentsTest, CatalogueKeepsEveryCoin) {
    const std::string text = test::readFile(test::shippedResource("coingecko_coins_list.json"));
    const auto document = json::Document::parse(text);
    const auto catalogue = CoinCatalogue::decode(text);
    ASSERT_TRUE(document);
    ASSERT_TRUE(catalogue) << catalogue.error();
    ASSERT_EQ(catalogue->size(), 17399u);
    ASSERT_EQ(document->root().size(), catalogue->size());
    EXPECT_EQ((*catalogue)[0].id, "bitcoin");
    for (std::size_t i = 0; i < catalogue->size(); ++i) {
        const json::View element = document->root().at(i);
        const CoinEntry entry = (*catalogue)[i];
        ASSERT_EQ(entry.id, element.member("id")->string());
        ASSERT_EQ(entry.symbol, element.member("symbol")->string());
        ASSERT_EQ(entry.name, element.member("name")->string());
    }
}

}  // namespace
}  // namespace glintar::config
