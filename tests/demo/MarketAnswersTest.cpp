// The simulated answers beside what the real services once answered.

#include "demo/MarketServer.h"
#include "json/Json.h"
#include "support/TestFiles.h"

#include <fmt/format.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <algorithm>
#include <vector>

namespace glintar::demo {
namespace {

/// Names and kinds of all members, whatever their order and values; of an array its first element.
std::string shape(json::View value, const std::vector<std::string>& names) {
    switch (value.kind()) {
        case json::Kind::Null:
            return "null";
        case json::Kind::Boolean:
            return "boolean";
        case json::Kind::Number:
            return "number";
        case json::Kind::String:
            return "string";
        case json::Kind::Array:
            return value.size() == 0 ? "[]" : fmt::format("[{}]", shape(value.at(0), names));
        case json::Kind::Object:
            break;
    }
    std::string text = "{";
    for (const std::string& name : names) {
        if (const auto member = value.member(name)) {
            text += fmt::format("{}:{} ", name, shape(*member, names));
        }
    }
    return text + "}";
}

/// Every text between quotes: the names of all members are among them.
std::vector<std::string> textsInQuotes(std::string_view text) {
    std::vector<std::string> found;
    for (std::size_t at = text.find('"'); at != std::string_view::npos; at = text.find('"', at + 1)) {
        const auto end = std::min(text.find('"', at + 1), text.size());
        found.emplace_back(text.substr(at + 1, end - at - 1));
        at = end;
    }
    std::ranges::sort(found);
    const auto again = std::ranges::unique(found);
    found.erase(again.begin(), again.end());
    return found;
}

struct Recorded {
    std::string address, file;
    std::string within = {};  ///< compare only this member
};

TEST(MarketAnswersTest, EachHasTheShapeOfARecordedAnswer) {
    const auto server = MarketServer::start({}).value();
    httplib::Client client(server->address());
    for (const auto& [address, file, within] : {
             Recorded{"/coingecko/api/v3/coins/markets?vs_currency=usd&ids=bitcoin&sparkline=true"
                      "&price_change_percentage=24h",
                      "coingecko/markets_btc_sparkline168.json"},
             {"/coingecko/api/v3/coins/markets?vs_currency=usd&ids=bitcoin", "coingecko/markets_btc_in_myr.json"},
             {"/coingecko/api/v3/coins/markets?ids=bitcoin", "coingecko/error_422_missing_vs_currency.json"},
             {"/coingecko_simple/api/v3/simple/price?ids=bitcoin&include_24hr_change=true",
              "coingecko_simple/price_change_null.json", "bitcoin"},
             {"/binance/api/v3/ticker/24hr?symbol=BTCUSDT", "binance/btcusdt_2020.json"},
             {"/binance/api/v3/ticker/24hr?symbol=USDTUSDT", "binance/error_400_invalid_symbol.json"},
             {"/gate/api/v4/spot/tickers?currency_pair=BTC_USDT", "gate/btc_usdt_2023.json"},
             {"/gate/api/v4/spot/tickers?currency_pair=BTC", "gate/error_400_invalid_currency.json"},
             {"/coinbase/v2/prices/BTC-USD/spot", "coinbase/btc_usd_2016.json"},
             {"/kucoin/api/v1/market/stats?symbol=BTC-USDT", "kucoin/btc_usdt_2024.json"},
             {"/kucoin/api/v1/market/stats?symbol=BTC", "kucoin/error_200_pair_does_not_exist.json"},
             {"/coinbase_exchange/products/BTC-USD/stats", "coinbase_exchange/btc_usd_2022.json"},
             {"/gemini/v2/ticker/BTCUSD", "gemini/v2_btcusd_2020.json"},
             {"/gemini/v2/ticker/bla", "gemini/error_400_bad_symbol.json"},
             {"/whitebit/api/v1/public/ticker?market=BTC_USDT", "whitebit/btc_usdt_v1.json"},
             {"/mexc/api/v3/ticker/24hr?symbol=APEUSDT", "mexc/apeusdt_2022.json"},
             {"/cex_io/api/ticker/BTC/USD", "cex_io/btc_usd_2021.json"},
             {"/poloniex/markets/BTC_USDT/ticker24h", "poloniex/btc_usdt_ticker24h_2024.json"},
             {"/blockchain/mempool/fees", "fees_blockchain_info/fees_2020.json"},
             {"/beaconchain/api/v1/execution/gasnow", "fees_gasnow/beaconchain_2023.json"},
             {"/defillama/prices/current/coingecko:binancecoin", "defillama/bnb_2022.json"},
             {"/mempool/api/v1/fees/recommended", "fees_mempool_space/recommended_live.json"},
             {"/blockscout/api/v2/stats", "fees_blockscout/eth_stats_2026.json"},
         }) {
        const auto answer = client.Get(address);
        ASSERT_TRUE(answer) << address;
        const std::string recorded = test::readFile(test::testData("answers/" + file));
        const auto ours = json::parseContainer(answer->body);
        const auto theirs = json::parseContainer(recorded);
        ASSERT_TRUE(ours && theirs) << answer->body;
        const auto names = textsInQuotes(answer->body + recorded);
        const auto part = [&](json::View root) { return root.member(within).value_or(root); };
        EXPECT_EQ(shape(part(ours->root()), names), shape(part(theirs->root()), names)) << address;
    }
}

}  // namespace
}  // namespace glintar::demo
