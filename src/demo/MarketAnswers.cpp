#include "demo/MarketAnswers.h"

#include "json/JsonWriter.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

namespace glintar::demo {

namespace {

struct Scene {
    const Market& market;
    const Question& question;
    Step step;
    std::chrono::milliseconds time;  // since 1970 UTC
    const std::string& address;

    [[nodiscard]] std::string_view parameter(std::string_view name) const {
        const auto found = question.parameters.find(std::string(name));
        return found == question.parameters.end() ? std::string_view() : found->second;
    }
    [[nodiscard]] std::chrono::seconds seconds() const { return std::chrono::floor<std::chrono::seconds>(time); }
    [[nodiscard]] std::string timestamp() const {
        return fmt::format("{:%FT%T}.{:03}Z", fmt::gmtime(seconds().count()), (time - seconds()).count());
    }
};

std::vector<std::string> split(std::string_view list) {
    std::vector<std::string> parts;
    while (!list.empty()) {
        const auto comma = std::min(list.find(','), list.size());
        if (comma > 0) {
            parts.emplace_back(list.substr(0, comma));
        }
        list.remove_prefix(std::min(comma + 1, list.size()));
    }
    return parts;
}

std::optional<std::string_view> between(std::string_view text, std::string_view prefix, std::string_view suffix) {
    if (text.size() <= prefix.size() + suffix.size() || !text.starts_with(prefix) || !text.ends_with(suffix)) {
        return std::nullopt;
    }
    return text.substr(prefix.size(), text.size() - prefix.size() - suffix.size());
}

/// All decimals that a price can have, without zeros at the end and never with an exponent.
std::string plain(double price) {
    std::string text = fmt::format("{:.8f}", price);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.')) {
        text.pop_back();
    }
    return text;
}

Answer refusal(int status, std::string_view key, std::string_view text) {
    json::Writer writer;
    writer.beginObject().key(key).string(text).endObject();
    return {status, std::string(writer.text())};
}

/// So many coins were traded in a day, or exist: figures that nobody compares.
constexpr double kTraded = 4726;
constexpr double kSupply = 19'700'000;

void writeMarketsElement(json::Writer& writer, const Scene& scene, const CoinState& coin, int rank) {
    std::string symbol = coin.symbol;
    std::ranges::transform(symbol, symbol.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    const auto whole = [&](std::string_view key, double value) { writer.key(key).number(std::round(value)); };
    const double change = coin.price - coin.open;
    writer.beginObject().key("id").string(coin.id).key("symbol").string(symbol).key("name").string(coin.name);
    writer.key("image").string(
        fmt::format("{}{}{}/large.png?{}", scene.address, MarketAnswers::kImagePath, coin.id, rank));
    writer.key("current_price").number(coin.price);
    whole("market_cap", coin.price * kSupply);
    writer.key("market_cap_rank").integer(rank);
    whole("fully_diluted_valuation", coin.price * kSupply);
    whole("total_volume", coin.price * kTraded);
    writer.key("high_24h").number(coin.high).key("low_24h").number(coin.low);
    writer.key("price_change_24h").number(change);
    writer.key("price_change_percentage_24h").number(std::round(coin.changePercent() * 1e5) / 1e5);
    whole("market_cap_change_24h", change * kSupply);
    writer.key("market_cap_change_percentage_24h").number(std::round(coin.changePercent() * 1e5) / 1e5);
    writer.key("circulating_supply").number(kSupply).key("total_supply").number(kSupply);
    writer.key("max_supply").number(kSupply);
    writer.key("ath").number(coin.high).key("ath_change_percentage").number((coin.price / coin.high - 1) * 100);
    writer.key("ath_date").string(scene.timestamp());
    writer.key("atl").number(coin.low).key("atl_change_percentage").number((coin.price / coin.low - 1) * 100);
    writer.key("atl_date").string(scene.timestamp());
    writer.key("roi").null().key("last_updated").string(scene.timestamp());
    if (scene.parameter("sparkline") == "true") {
        writer.key("sparkline_in_7d").beginObject().key("price").beginArray();
        for (const double price : coin.week) {
            writer.number(price);
        }
        writer.endArray().endObject();
    }
    if (scene.parameter("price_change_percentage") == "24h") {
        writer.key("price_change_percentage_24h_in_currency").number(coin.changePercent());
    }
    writer.endObject();
}

Answer coingecko(const Scene& scene) {
    if (scene.question.path != "/api/v3/coins/markets") {
        return refusal(404, "error", "Incorrect path. Please check https://www.coingecko.com/api/");
    }
    if (scene.parameter("vs_currency") != "usd") {
        return refusal(422, "error", "Missing parameter vs_currency");
    }
    const auto ids = scene.question.parameters.contains("ids") ? split(scene.parameter("ids")) : Market::wellKnownIds();
    json::Writer writer;
    writer.beginArray();
    int rank = 0;
    for (const std::string& id : ids) {
        writeMarketsElement(writer, scene, scene.market.byId(id, scene.step), ++rank);
    }
    writer.endArray();
    return {200, std::string(writer.text())};
}

Answer coingeckoSimple(const Scene& scene) {
    if (scene.question.path != "/api/v3/simple/price") {
        return refusal(404, "error", "Incorrect path. Please check https://www.coingecko.com/api/");
    }
    if (scene.parameter("ids").empty()) {
        return refusal(422, "error", "Missing parameter ids");
    }
    json::Writer writer;
    writer.beginObject();
    for (const std::string& id : split(scene.parameter("ids"))) {
        const CoinState coin = scene.market.byId(id, scene.step);
        writer.key(coin.id).beginObject().key("usd").number(coin.price);
        if (scene.parameter("include_24hr_change") == "true") {
            writer.key("usd_24h_change").number(coin.changePercent());
        }
        writer.endObject();
    }
    writer.endObject();
    return {200, std::string(writer.text())};
}

Answer binance(const Scene& scene) {
    const auto symbol =
        scene.question.path == "/api/v3/ticker/24hr" ? between(scene.parameter("symbol"), "", "USDT") : std::nullopt;
    json::Writer writer;
    writer.beginObject();
    if (!symbol || *symbol == "USDT") {
        writer.key("code").integer(-1121).key("msg").string("Invalid symbol.").endObject();
        return {400, std::string(writer.text())};
    }
    const CoinState coin = scene.market.bySymbol(*symbol, scene.step);
    const auto text = [&](std::string_view key, double value) { writer.key(key).string(fmt::format("{:.8f}", value)); };
    writer.key("symbol").string(coin.symbol + "USDT");
    text("priceChange", coin.price - coin.open);
    writer.key("priceChangePercent").string(fmt::format("{:.3f}", coin.changePercent()));
    text("weightedAvgPrice", (coin.high + coin.low) / 2);
    text("prevClosePrice", coin.open);
    text("lastPrice", coin.price);
    text("lastQty", 0.01);
    text("bidPrice", coin.price);
    text("bidQty", 0.184011);
    text("askPrice", coin.price);
    text("askQty", 0.195188);
    text("openPrice", coin.open);
    text("highPrice", coin.high);
    text("lowPrice", coin.low);
    text("volume", kTraded);
    text("quoteVolume", kTraded * coin.price);
    constexpr std::chrono::milliseconds kDay = std::chrono::days{1};
    writer.key("openTime").integer((scene.time - kDay).count()).key("closeTime").integer(scene.time.count());
    writer.key("firstId").integer(294247387).key("lastId").integer(294801814).key("count").integer(554428);
    writer.endObject();
    return {200, std::string(writer.text())};
}

Answer gate(const Scene& scene) {
    const auto symbol = scene.question.path == "/api/v4/spot/tickers"
                            ? between(scene.parameter("currency_pair"), "", "_USDT")
                            : std::nullopt;
    json::Writer writer;
    if (!symbol || *symbol == "USDT") {
        writer.beginObject().key("label").string("INVALID_CURRENCY").key("message").string("Invalid currency");
        writer.endObject();
        return {400, std::string(writer.text())};
    }
    const CoinState coin = scene.market.bySymbol(*symbol, scene.step);
    writer.beginArray().beginObject().key("currency_pair").string(coin.symbol + "_USDT");
    writer.key("last").string(plain(coin.price)).key("lowest_ask").string(plain(coin.price));
    writer.key("highest_bid").string(plain(coin.price));
    writer.key("change_percentage").string(fmt::format("{:.2f}", coin.changePercent()));
    writer.key("base_volume").string(plain(kTraded)).key("quote_volume").string(plain(kTraded * coin.price));
    writer.key("high_24h").string(plain(coin.high)).key("low_24h").string(plain(coin.low));
    writer.endObject().endArray();
    return {200, std::string(writer.text())};
}

Answer coinbase(const Scene& scene) {
    const auto symbol = between(scene.question.path, "/v2/prices/", "-USD/spot");
    json::Writer writer;
    writer.beginObject();
    if (!symbol) {
        writer.key("errors").beginArray().beginObject().key("id").string("not_found");
        writer.key("message").string("Invalid base currency").endObject().endArray().endObject();
        return {404, std::string(writer.text())};
    }
    const CoinState coin = scene.market.bySymbol(*symbol, scene.step);
    writer.key("data").beginObject().key("amount").string(plain(coin.price));
    writer.key("base").string(coin.symbol).key("currency").string("USD").endObject().endObject();
    return {200, std::string(writer.text())};
}

Answer defillama(const Scene& scene) {
    const auto list = between(scene.question.path, "/prices/current/", "");
    if (!list) {
        return refusal(404, "message", "Not found");
    }
    json::Writer writer;
    writer.beginObject().key("coins").beginObject();
    for (const std::string& name : split(*list)) {
        if (const auto id = between(name, "coingecko:", "")) {
            const CoinState coin = scene.market.byId(*id, scene.step);
            writer.key(name).beginObject().key("price").number(coin.price).key("symbol").string(coin.symbol);
            writer.key("timestamp").integer(scene.seconds().count()).key("confidence").number(0.99).endObject();
        }
    }
    writer.endObject().endObject();
    return {200, std::string(writer.text())};
}

Answer mempool(const Scene& scene) {
    if (scene.question.path != "/api/v1/fees/recommended") {
        return refusal(404, "error", "Not found");
    }
    const double fee = scene.market.fees(scene.step).bitcoin;
    json::Writer writer;
    writer.beginObject();
    const auto whole = [&](std::string_view key, double part) {
        writer.key(key).number(std::max(std::round(fee * part), 1.0));
    };
    whole("fastestFee", 1.5);
    whole("halfHourFee", 1);
    whole("hourFee", 0.8);
    whole("economyFee", 0.4);
    whole("minimumFee", 0.2);
    writer.endObject();
    return {200, std::string(writer.text())};
}

Answer blockscout(const Scene& scene) {
    if (scene.question.path != "/api/v2/stats") {
        return refusal(404, "message", "Not found");
    }
    const double fee = scene.market.fees(scene.step).ethereum;
    const double price = scene.market.byId("ethereum", scene.step).price;
    const auto hundredths = [](double value) { return std::round(value * 100) / 100; };
    json::Writer writer;
    writer.beginObject().key("average_block_time").integer(12000).key("coin_price").string(plain(price));
    writer.key("gas_price_updated_at").string(scene.timestamp()).key("gas_prices").beginObject();
    writer.key("slow").number(hundredths(fee * 0.6)).key("average").number(hundredths(fee));
    writer.key("fast").number(hundredths(fee * 2.6)).endObject();
    writer.key("gas_prices_update_in").integer(18461).key("gas_used_today").string("216713915844");
    writer.key("market_cap").string(fmt::format("{:.2f}", price * 120'000'000));
    writer.key("network_utilization_percentage").number(56.6).key("total_addresses").string("738505157");
    writer.key("total_blocks").string("26156417").key("total_transactions").string("3793417199");
    writer.key("transactions_today").string("1836071").key("tvl").null().endObject();
    return {200, std::string(writer.text())};
}

struct Service {
    std::string_view name;
    Answer (*answer)(const Scene&);
};

constexpr std::array kServices = {
    Service{"coingecko", coingecko}, Service{"coingecko_simple", coingeckoSimple},
    Service{"binance", binance},     Service{"gate", gate},
    Service{"coinbase", coinbase},   Service{"defillama", defillama},
    Service{"mempool", mempool},     Service{"blockscout", blockscout},
};

}  // namespace

Answer MarketAnswers::answer(const Question& question, Step step, std::chrono::system_clock::time_point time) const {
    for (const Service& service : kServices) {
        if (service.name == question.service) {
            const auto sinceEpoch = std::chrono::floor<std::chrono::milliseconds>(time.time_since_epoch());
            return service.answer({market_, question, step, sinceEpoch, address_});
        }
    }
    return refusal(404, "error", "Not found");
}

}  // namespace glintar::demo
