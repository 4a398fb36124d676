#include "demo/MarketDocument.h"

#include "json/JsonWriter.h"

#include <fmt/format.h>

#include <array>

namespace glintar::demo {

namespace {

/// Empty members are left out of the document.
struct Source {
    std::string_view id;
    std::string_view name;
    std::string_view path;  // behind our address
    std::string_view responseType;
    std::string_view pricePath;
    std::string_view changePath;
    std::string_view highPath;
    std::string_view lowPath;
    std::string_view idMappingPath;
    std::string_view imagePath;
    std::string_view sparklinePath;
    std::string_view header;
    std::string_view webAddress;
    std::string_view documentation;
    bool isBatch = false;
};

constexpr std::array kSources = {
    Source{
        .id = "coingecko",
        .name = "CoinGecko",
        .path = "/coingecko/api/v3/coins/markets?vs_currency=usd&ids={ID}&sparkline=true&price_change_percentage=24h",
        .responseType = "array",
        .pricePath = "current_price",
        .changePath = "price_change_percentage_24h",
        .highPath = "high_24h",
        .lowPath = "low_24h",
        .idMappingPath = "id",
        .imagePath = "image",
        .sparklinePath = "sparkline_in_7d.price",
        .header = "x-cg-demo-api-key",
        .webAddress = "https://www.coingecko.com",
        .documentation = "https://docs.coingecko.com/reference/introduction",
        .isBatch = true},
    Source{.id = "binance",
           .name = "Binance",
           .path = "/binance/api/v3/ticker/24hr?symbol={SYMBOL}USDT",
           .responseType = "object",
           .pricePath = "lastPrice",
           .changePath = "priceChangePercent",
           .highPath = "highPrice",
           .lowPath = "lowPrice",
           .webAddress = "https://www.binance.com",
           .documentation = "https://developers.binance.com/docs/binance-spot-api-docs/rest-api"},
    Source{.id = "gate",
           .name = "Gate.io",
           .path = "/gate/api/v4/spot/tickers?currency_pair={SYMBOL}_USDT",
           .responseType = "array_first",
           .pricePath = "last",
           .changePath = "change_percentage",
           .highPath = "high_24h",
           .lowPath = "low_24h",
           .webAddress = "https://www.gate.com",
           .documentation = "https://www.gate.com/docs/developers/apiv4/en/"},
    Source{.id = "coinbase",
           .name = "Coinbase",
           .path = "/coinbase/v2/prices/{SYMBOL}-USD/spot",
           .responseType = "object",
           .pricePath = "data.amount",
           .webAddress = "https://www.coinbase.com",
           .documentation = "https://docs.cdp.coinbase.com/coinbase-app/track-apis/prices"},
    Source{.id = "defillama",
           .name = "DefiLlama",
           .path = "/defillama/prices/current/coingecko:{ID}",
           .responseType = "object",
           .pricePath = "coins.coingecko:{ID}.price",
           .webAddress = "https://defillama.com",
           .documentation = "https://api-docs.defillama.com"},
    Source{.id = "coingecko_simple",
           .name = "CoinGecko Simple",
           .path = "/coingecko_simple/api/v3/simple/price?ids={ID}&vs_currencies=usd&include_24hr_change=true",
           .responseType = "dictionary",
           .pricePath = "usd",
           .changePath = "usd_24h_change",
           .header = "x-cg-demo-api-key",
           .webAddress = "https://www.coingecko.com",
           .documentation = "https://docs.coingecko.com/reference/simple-price",
           .isBatch = true},
};

struct FeeService {
    std::string_view id;
    std::string_view name;
    std::string_view path;
    std::string_view pricePath;
};

constexpr std::array kFeeServices = {
    FeeService{"mempool_space", "mempool.space", "/mempool/api/v1/fees/recommended", "halfHourFee"},
    FeeService{"blockscout_eth", "Blockscout", "/blockscout/api/v2/stats", "gas_prices.average"},
};

void writeSource(json::Writer& writer, const Source& source, std::string_view address) {
    const auto text = [&](std::string_view key, std::string_view value) {
        if (!value.empty()) {
            writer.key(key).string(value);
        }
    };
    writer.beginObject();
    text("id", source.id);
    text("name", fmt::format("{} (simulated)", source.name));
    writer.key("supports_batch").boolean(source.isBatch);
    text("url_template", fmt::format("{}{}", address, source.path));
    text("response_type", source.responseType);
    text("price_path", source.pricePath);
    text("batch_separator", source.isBatch ? "," : "");
    text("id_mapping_path", source.idMappingPath);
    text("image_path", source.imagePath);
    text("change_path", source.changePath);
    text("high_path", source.highPath);
    text("low_path", source.lowPath);
    text("sparkline_path", source.sparklinePath);
    text("offical_URL", source.webAddress);
    text("API_intro", source.documentation);
    writer.key("api_key_available").boolean(!source.header.empty());
    text("header", source.header);
    writer.endObject();
}

}  // namespace

std::string marketDocument(std::string_view address) {
    json::Writer writer;
    writer.beginObject().key("sources").beginArray();
    for (const Source& source : kSources) {
        writeSource(writer, source, address);
    }
    writer.endArray().key("gas_configs").beginArray();
    for (const FeeService& service : kFeeServices) {
        writer.beginObject().key("id").string(service.id);
        writer.key("name").string(fmt::format("{} (simulated)", service.name));
        writer.key("url").string(fmt::format("{}{}", address, service.path));
        writer.key("price_path").string(service.pricePath).key("divider").integer(1).endObject();
    }
    writer.endArray().endObject();
    return std::string(writer.text());
}

}  // namespace glintar::demo
