#include "demo/MarketAnswers.h"

#include "demo/MarketScene.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace glintar::demo {

namespace {

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

Answer defillama(const Scene& scene) {
    const auto list = between(scene.question.path, "/prices/current/", "");
    if (!list) {
        return refusal(404, "message", "Not found");
    }
    json::Writer writer;
    writer.beginObject().key("coins").beginObject();
    for (const std::string& name : split(*list)) {
        if (const auto id = between(name, "coingecko:", "")) {
            const CoinState coin = scene.market.at("defillama", scene.market.byId(*id, scene.step), scene.step);
            writer.key(name).beginObject().key("price").number(coin.price).key("symbol").string(coin.symbol);
            writer.key("timestamp").integer(scene.seconds().count()).key("confidence").number(0.99).endObject();
        }
    }
    writer.endObject().endObject();
    return {200, std::string(writer.text())};
}

std::optional<Answer> aggregatorAnswer(const Scene& scene) {
    const std::string& service = scene.question.service;
    if (service == "coingecko") {
        return coingecko(scene);
    }
    if (service == "coingecko_simple") {
        return coingeckoSimple(scene);
    }
    if (service == "defillama") {
        return defillama(scene);
    }
    return std::nullopt;
}

}  // namespace

Answer MarketAnswers::answer(const Question& question, Step step, std::chrono::system_clock::time_point time) const {
    const auto sinceEpoch = std::chrono::floor<std::chrono::milliseconds>(time.time_since_epoch());
    const Scene scene{market_, question, step, sinceEpoch, address_};
    for (const auto answerOf : {aggregatorAnswer, exchangeAnswer, feeAnswer}) {
        if (auto answer = answerOf(scene)) {
            return *std::move(answer);
        }
    }
    return refusal(404, "error", "Not found");
}

}  // namespace glintar::demo
