#include "market/Extraction.h"

#include "config/AppConfig.h"
#include "config/Coin.h"
#include "market/ValuePath.h"
#include "platform/Console.h"
#include "text/Address.h"

#include <utility>

namespace glintar::market {

namespace {

constexpr std::size_t kSparklinePoints = 24;

std::optional<PathValue> valueAtCoinPath(std::string_view path, std::string_view coinId, json::View object) {
    return path.contains("{ID}") ? valueAtPath(text::replaceAll(path, "{ID}", coinId), object)
                                 : valueAtPath(path, object);
}

std::optional<double> numberAt(const std::optional<std::string>& path, json::View object) {
    const auto value = path ? valueAtPath(*path, object) : std::nullopt;
    return value ? value->number() : std::nullopt;
}

std::optional<std::vector<double>> numbersAt(const std::optional<std::string>& path, json::View object) {
    const auto value = path ? valueAtPath(*path, object) : std::nullopt;
    const auto array = value ? value->other() : std::nullopt;
    return array ? array->lastNumbers(kSparklinePoints) : std::nullopt;
}

bool isArrayOfObjects(json::View value) {
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (!value.at(i).isObject()) {
            return false;
        }
    }
    return value.isArray();
}

MarketDataMap quotesInArray(json::View array, const config::SourceConfig& source) {
    MarketDataMap quotes;
    if (!source.id_mapping_path || !isArrayOfObjects(array)) {
        return quotes;
    }
    for (std::size_t i = 0; i < array.size(); ++i) {
        const auto element = array.at(i);
        const auto mapped = valueAtPath(*source.id_mapping_path, element);
        const auto id = mapped ? mapped->string() : std::nullopt;
        if (!id) {
            continue;
        }
        if (auto quote = extractMarketData(element, source, *id)) {
            quotes.insert_or_assign(std::string(*id), *std::move(quote));
        }
    }
    return quotes;
}

MarketDataMap quotesInDictionary(json::View object, const config::SourceConfig& source,
                                 const std::vector<config::Coin>& coins) {
    MarketDataMap quotes;
    for (const auto& coin : coins) {
        const auto member = object.member(coin.apiId);
        if (!member || !member->isObject()) {
            continue;
        }
        if (auto quote = extractMarketData(*member, source, coin.apiId)) {
            quotes.insert_or_assign(coin.apiId, *std::move(quote));
        }
    }
    return quotes;
}

}  // namespace

std::optional<UnifiedMarketData> extractMarketData(json::View object, const config::SourceConfig& source,
                                                   std::string_view coinId) {
    const auto priceValue = valueAtCoinPath(source.price_path, coinId, object);
    const auto price = priceValue ? priceValue->number() : std::nullopt;
    if (!price) {
        return std::nullopt;
    }
    UnifiedMarketData quote{.price = *price};
    if (source.image_path) {
        const auto image = valueAtCoinPath(*source.image_path, coinId, object);
        if (const auto address = image ? image->string() : std::nullopt) {
            quote.imageUrl = std::string(*address);
        }
    }
    quote.change24h = numberAt(source.change_path, object);
    quote.high24h = numberAt(source.high_path, object);
    quote.low24h = numberAt(source.low_path, object);
    quote.sparkline = numbersAt(source.sparkline_path, object);
    return quote;
}

std::optional<UnifiedMarketData> parseSingleResponse(std::string body, const config::SourceConfig& source,
                                                     std::string_view coinId, platform::Console& console) {
    const auto document = json::parseContainer(std::move(body));
    if (!document) {
        console.print("❌ 解析错误: " + document.error().text());
        return std::nullopt;
    }
    auto object = document->root();
    if (source.response_type == "array_first" && object.size() > 0 && isArrayOfObjects(object)) {
        object = object.at(0);
    }
    return object.isObject() ? extractMarketData(object, source, coinId) : std::nullopt;
}

MarketDataMap parseBatchResponse(std::string body, const config::SourceConfig& source,
                                 const std::vector<config::Coin>& coins, platform::Console& console) {
    const auto document = json::parseContainer(std::move(body));
    if (!document) {
        console.print("❌ 批量解析错误: " + document.error().text());
        return {};
    }
    if (source.response_type == "array") {
        return quotesInArray(document->root(), source);
    }
    if (source.response_type == "dictionary") {
        return quotesInDictionary(document->root(), source, coins);
    }
    return {};
}

}  // namespace glintar::market
