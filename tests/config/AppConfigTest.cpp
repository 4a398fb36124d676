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

/// Every field of the format, each with a value of its own.
constexpr std::string_view kWhole = R"({"sources":[{"id":"s1","name":"S One","supports_batch":true,
"batch_separator":"|","batch_param_type":"symbol","url_template":"u","response_type":"array","id_mapping_path":"i",
"image_path":"im","price_path":"p","change_path":"c","high_path":"h","low_path":"l","sparkline_path":"sp",
"offical_URL":"o","API_intro":"a","api_key_available":true,"header":"H","extra":[{}]},
{"id":"s2","name":"","supports_batch":false,"url_template":"","response_type":"","price_path":"","header":null}],
"gas_configs":[{"id":"g","name":"G","url":"gu","price_path":"gp","divider":1e9}],"extra":{}})";

std::string wholeBut(std::string_view what, std::string_view with) {
    std::string text = text::replaceAll(kWhole, what, with);
    EXPECT_NE(text, kWhole) << what;
    return text;
}

TEST(AppConfigTest, DecodesEveryField) {
    const auto config = decodeAppConfig(std::string(kWhole));
    ASSERT_TRUE(config) << config.error();
    ASSERT_EQ(config->sources.size(), 2u);
    const SourceConfig& source = config->sources[0];
    EXPECT_EQ(source.id + source.name + source.url_template + source.response_type + source.price_path,
              "s1S Oneuarrayp");
    std::string optional;
    for (const auto& field : {source.batch_separator, source.batch_param_type, source.id_mapping_path,
                              source.image_path, source.change_path, source.high_path, source.low_path,
                              source.sparkline_path, source.offical_URL, source.API_intro, source.header}) {
        optional += field.value_or("<none>") + " ";
    }
    EXPECT_EQ(optional, "| symbol i im c h l sp o a H ");
    EXPECT_TRUE(source.supports_batch && source.api_key_available.value());
    EXPECT_FALSE(config->sources[1].header || config->sources[1].api_key_available);

    ASSERT_TRUE(config->gasConfigs);
    const GasConfig& gas = config->gasConfigs->at(0);
    EXPECT_EQ(gas.id + gas.name + gas.url + gas.pricePath, "gGgugp");
    EXPECT_EQ(gas.divider, 1e9);
}

TEST(AppConfigTest, TakesADocumentWithoutFees) {
    for (const std::string text : {R"({"sources":[]})", R"({"sources":[],"gas_configs":null})"}) {
        const auto config = decodeAppConfig(text);
        ASSERT_TRUE(config) << config.error();
        EXPECT_FALSE(config->gasConfigs);
    }
    EXPECT_TRUE(decodeAppConfig(R"({"sources":[],"gas_configs":[]})")->gasConfigs) << "empty is not absent";
}

TEST(AppConfigTest, OneWrongValueRefusesTheWholeDocument) {
    struct Case {
        std::string_view what;
        std::string_view with;
        std::string_view error;
    };
    for (const auto& [what, with, error] : {
             Case{R"("id":"s1",)", "", "sources[0].id: missing"},
             {R"("name":"",)", "", "sources[1].name: missing"},
             {R"("supports_batch":false)", R"("x":1)", "sources[1].supports_batch: missing"},
             {R"("url_template":"",)", "", "sources[1].url_template: missing"},
             {R"("response_type":"",)", "", "sources[1].response_type: missing"},
             {R"("price_path":"",)", "", "sources[1].price_path: missing"},
             {R"("name":"S One")", R"("name":null)", "sources[0].name: of the wrong type"},
             {R"("supports_batch":true)", R"("supports_batch":1)", "sources[0].supports_batch: of the wrong type"},
             {R"("batch_separator":"|")", R"("batch_separator":0)", "sources[0].batch_separator: of the wrong type"},
             {R"("api_key_available":true)", R"("api_key_available":"true")",
              "sources[0].api_key_available: of the wrong type"},
             {R"("header":"H")", R"("header":["H"])", "sources[0].header: of the wrong type"},
             {R"("id":"g")", R"("ID":"g")", "gas_configs[0].id: missing"},
             {R"("name":"G",)", "", "gas_configs[0].name: missing"},
             {R"("url":"gu",)", "", "gas_configs[0].url: missing"},
             {R"("price_path":"gp")", R"("pricePath":"gp")", "gas_configs[0].price_path: missing"},
             {R"(,"divider":1e9)", "", "gas_configs[0].divider: missing"},
             {R"("divider":1e9)", R"("divider":"1")", "gas_configs[0].divider: of the wrong type"},
             {R"("gas_configs":[)", R"("gas_configs":{},"x":[)", "gas_configs: of the wrong type"},
             {R"("gas_configs":[)", R"("gas_configs":[7,)", "gas_configs[0]: not an object"},
             {R"("sources":[)", R"("source":[)", "sources: missing"},
             {R"("sources":[)", R"("sources":[[],)", "sources[0]: not an object"},
         }) {
        const auto config = decodeAppConfig(wholeBut(what, with));
        ASSERT_FALSE(config) << error;
        EXPECT_EQ(config.error(), error);
    }
    EXPECT_FALSE(decodeAppConfig("[]"));
    EXPECT_FALSE(decodeAppConfig(R"({"sources":[]} x)"));
}

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
