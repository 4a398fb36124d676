#pragma once

#include "json/Json.h"
#include "market/MarketData.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::config {
struct Coin;
struct SourceConfig;
}  // namespace glintar::config

namespace glintar::platform {
class Console;
}

namespace glintar::market {

// Reading of services' answers by the paths of their configuration. Any thread.

/// The quote in one JSON object. "{ID}" in the price and image paths stands for the coin's identifier. None without a
/// price; any other field that is missing or of the wrong kind is just absent.
[[nodiscard]] std::optional<UnifiedMarketData> extractMarketData(json::View object, const config::SourceConfig& source,
                                                                 std::string_view coinId);

/// The quote in an answer about one coin: an object, or with `response_type` "array_first" the first of an array of
/// objects. A body that is not JSON gives none and one console line.
[[nodiscard]] std::optional<UnifiedMarketData> parseSingleResponse(std::string body, const config::SourceConfig& source,
                                                                   std::string_view coinId, platform::Console& console);

/// The quotes in an answer about many coins: with `response_type` "array" keyed by the text at `id_mapping_path` of
/// each element (a later one replaces an earlier), with "dictionary" by `apiId`. A body that is not JSON gives an empty
/// map and one console line.
[[nodiscard]] MarketDataMap parseBatchResponse(std::string body, const config::SourceConfig& source,
                                               const std::vector<config::Coin>& coins, platform::Console& console);

}  // namespace glintar::market
