#pragma once

#include "config/Coin.h"
#include "platform/Preferences.h"
#include "platform/virtual/VirtualPlatform.h"

#include <fmt/format.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::test {

/// A configuration with one source of each answer shape, and a fee service for each network.
inline constexpr std::string_view kConfiguration = R"({"sources":[
  {"id":"coingecko","name":"CoinGecko","supports_batch":true,"url_template":"https://gecko.test/markets?ids={ID}",
   "response_type":"array","id_mapping_path":"id","image_path":"image","price_path":"current_price",
   "change_path":"change","high_path":"high","low_path":"low","sparkline_path":"spark.price","header":"x-key"},
  {"id":"binance","name":"Binance","supports_batch":false,"url_template":"https://binance.test/t?symbol={SYMBOL}USDT",
   "response_type":"object","price_path":"lastPrice","header":"x-each"},
  {"id":"binance_us","name":"Binance US","supports_batch":false,
   "url_template":"https://binance.test/us?symbol={SYMBOL}USDT","response_type":"object","price_path":"lastPrice"},
  {"id":"gate","name":"Gate","supports_batch":false,"url_template":"https://gate.test/t?pair={SYMBOL}_USDT&id={ID}",
   "response_type":"array_first","price_path":"last"},
  {"id":"simple","name":"Simple","supports_batch":true,"batch_separator":"|","batch_param_type":"symbol",
   "url_template":"https://simple.test/p?ids={ID}&again={SYMBOL}","response_type":"dictionary","price_path":"usd"},
  {"id":"broken","name":"Broken","supports_batch":true,"url_template":"nonsense","response_type":"array",
   "price_path":"p"},
  {"id":"broken_each","name":"Broken","supports_batch":false,"url_template":"nonsense","response_type":"object",
   "price_path":"p"}],
 "gas_configs":[
  {"id":"etherscan_gas","name":"E","url":"https://eth.test/gas","price_path":"result.average","divider":1},
  {"id":"mempool_fees","name":"M","url":"https://btc.test/fees","price_path":"halfHourFee","divider":1}]})";

inline constexpr std::string_view kShippedConfiguration = "/bundle/api_endpoints.json";

inline config::Coin coin(std::string displayName, std::string apiId, std::optional<double> reference = std::nullopt) {
    return {.id = "11111111-2222-4333-8444-555555555555",
            .displayName = std::move(displayName),
            .apiId = std::move(apiId),
            .referencePrice = reference};
}

inline void saveCoins(platform::Preferences& preferences, const std::vector<config::Coin>& coins) {
    preferences.setData(config::kSavedCoinsKey, config::encodeCoins(coins));
}

/// An answer of the first source: one element for each identifier, all at one price.
inline std::string geckoAnswer(const std::vector<std::string>& ids, double price) {
    std::string body;
    for (const auto& id : ids) {
        body += fmt::format(R"({}{{"id":"{}","current_price":{}}})", body.empty() ? "" : ",", id, price);
    }
    return "[" + body + "]";
}

/// A machine on which the configuration above is shipped.
inline void ship(platform::VirtualPlatform& machine, std::string_view configuration = kConfiguration) {
    machine.files.contents[kShippedConfiguration] = std::string(configuration);
}

}  // namespace glintar::test
