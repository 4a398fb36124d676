#include "demo/MarketScene.h"

#include <array>
#include <initializer_list>
#include <utility>

namespace glintar::demo {

namespace {

Answer binance(const Scene& scene) {
    const auto symbol =
        scene.question.path == "/api/v3/ticker/24hr" ? between(scene.parameter("symbol"), "", "USDT") : std::nullopt;
    json::Writer writer;
    writer.beginObject();
    if (!symbol || *symbol == "USDT") {
        writer.key("code").integer(-1121).key("msg").string("Invalid symbol.").endObject();
        return {400, std::string(writer.text())};
    }
    const CoinState coin = scene.traded(*symbol);
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
    const CoinState coin = scene.traded(*symbol);
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
    const CoinState coin = scene.traded(*symbol);
    writer.key("data").beginObject().key("amount").string(plain(coin.price));
    writer.key("base").string(coin.symbol).key("currency").string("USD").endObject().endObject();
    return {200, std::string(writer.text())};
}

/// A flat object of texts, as most exchanges answer.
void writeTexts(json::Writer& writer, std::initializer_list<std::pair<std::string_view, double>> members) {
    for (const auto& [key, value] : members) {
        writer.key(key).string(plain(value));
    }
}

Answer finished(json::Writer& writer) {
    return {200, std::string(writer.endObject().text())};
}

Answer kucoin(const Scene& scene) {
    const auto symbol =
        scene.question.path == "/api/v1/market/stats" ? between(scene.parameter("symbol"), "", "-USDT") : std::nullopt;
    json::Writer writer;
    writer.beginObject();
    if (!symbol || *symbol == "USDT") {
        writer.key("msg").string(fmt::format("Trading pair {} does not exist.", scene.parameter("symbol")));
        writer.key("code").string("900001");
        return finished(writer);  // with status 200
    }
    const CoinState coin = scene.traded(*symbol);
    writer.key("code").string("200000").key("data").beginObject();
    writer.key("time").integer(scene.time.count()).key("symbol").string(coin.symbol + "-USDT");
    writeTexts(writer, {{"buy", coin.price}, {"sell", coin.price}});
    writer.key("changeRate").string(fmt::format("{:.4f}", coin.changePercent() / 100));
    writeTexts(writer, {{"changePrice", coin.price - coin.open},
                        {"high", coin.high},
                        {"low", coin.low},
                        {"vol", kTraded},
                        {"volValue", kTraded * coin.price},
                        {"last", coin.price},
                        {"averagePrice", (coin.high + coin.low) / 2},
                        {"takerFeeRate", 0.001},
                        {"makerFeeRate", 0.001},
                        {"takerCoefficient", 1},
                        {"makerCoefficient", 1}});
    writer.endObject();
    return finished(writer);
}

Answer coinbaseExchange(const Scene& scene) {
    const auto symbol = between(scene.question.path, "/products/", "-USD/stats");
    if (!symbol) {
        return refusal(404, "message", "NotFound");
    }
    const CoinState coin = scene.traded(*symbol);
    json::Writer writer;
    writer.beginObject();
    writeTexts(writer, {{"open", coin.open},
                        {"high", coin.high},
                        {"low", coin.low},
                        {"volume", kTraded},
                        {"last", coin.price},
                        {"volume_30day", 30 * kTraded}});
    return finished(writer);
}

Answer gemini(const Scene& scene) {
    const auto symbol = between(scene.question.path, "/v2/ticker/", "USD");
    json::Writer writer;
    writer.beginObject();
    if (!symbol) {
        writer.key("result").string("error").key("reason").string("Bad Request");
        writer.key("message").string("Supplied value is not a valid symbol.").endObject();
        return {400, std::string(writer.text())};
    }
    const CoinState coin = scene.traded(*symbol);
    writer.key("symbol").string(coin.symbol + "USD").key("changes").beginArray();
    for (std::size_t hour = 0; hour < 24; ++hour) {
        writer.string(plain(coin.week[coin.week.size() - 1 - hour]));
    }
    writer.endArray();
    writeTexts(writer, {{"open", coin.open},
                        {"high", coin.high},
                        {"low", coin.low},
                        {"close", coin.price},
                        {"bid", coin.price},
                        {"ask", coin.price}});
    return finished(writer);
}

Answer whitebit(const Scene& scene) {
    const auto symbol =
        scene.question.path == "/api/v1/public/ticker" ? between(scene.parameter("market"), "", "_USDT") : std::nullopt;
    json::Writer writer;
    writer.beginObject().key("success").boolean(symbol.has_value());
    if (!symbol) {
        writer.key("message").string("Market is not available").key("result").beginArray().endArray();
        return finished(writer);
    }
    const CoinState coin = scene.traded(*symbol);
    writer.key("message").null().key("result").beginObject();
    writeTexts(writer, {{"open", coin.open},
                        {"bid", coin.price},
                        {"ask", coin.price},
                        {"low", coin.low},
                        {"high", coin.high},
                        {"last", coin.price},
                        {"volume", kTraded},
                        {"deal", kTraded * coin.price}});
    writer.key("change").string(fmt::format("{:.2f}", coin.changePercent())).endObject();
    return finished(writer);
}

/// Binance's answer but for a few members; the change is a part of one, whatever its name says.
Answer mexc(const Scene& scene) {
    const auto symbol =
        scene.question.path == "/api/v3/ticker/24hr" ? between(scene.parameter("symbol"), "", "USDT") : std::nullopt;
    if (!symbol || *symbol == "USDT") {
        return refusal(400, "msg", "Invalid symbol.");
    }
    const CoinState coin = scene.traded(*symbol);
    json::Writer writer;
    writer.beginObject().key("symbol").string(coin.symbol + "USDT");
    writeTexts(writer, {{"priceChange", coin.price - coin.open}, {"priceChangePercent", coin.changePercent() / 100}});
    writeTexts(writer, {{"prevClosePrice", coin.open}, {"lastPrice", coin.price}});
    writer.key("lastQty").string("").key("bidPrice").string(plain(coin.price)).key("bidQty").string("");
    writer.key("askPrice").string(plain(coin.price)).key("askQty").string("");
    writeTexts(writer,
               {{"openPrice", coin.open}, {"highPrice", coin.high}, {"lowPrice", coin.low}, {"volume", kTraded}});
    constexpr std::chrono::milliseconds kDay = std::chrono::days{1};
    writer.key("quoteVolume").null().key("openTime").integer((scene.time - kDay).count());
    writer.key("closeTime").integer(scene.time.count()).key("count").null();
    return finished(writer);
}

Answer cexIo(const Scene& scene) {
    const auto symbol = between(scene.question.path, "/api/ticker/", "/USD");
    if (!symbol) {
        return refusal(200, "error", "Invalid symbols pair");
    }
    const CoinState coin = scene.traded(*symbol);
    json::Writer writer;
    writer.beginObject().key("timestamp").string(fmt::format("{}", scene.seconds().count()));
    writeTexts(writer, {{"low", coin.low},
                        {"high", coin.high},
                        {"last", coin.price},
                        {"volume", kTraded},
                        {"volume30d", 30 * kTraded}});
    writer.key("bid").number(coin.price).key("ask").number(coin.price);
    writer.key("priceChange").string(plain(coin.price - coin.open));
    writer.key("priceChangePercentage").string(fmt::format("{:.2f}", coin.changePercent()));
    writer.key("pair").string(coin.symbol + ":USD");
    return finished(writer);
}

Answer poloniex(const Scene& scene) {
    const auto symbol = between(scene.question.path, "/markets/", "_USDT/ticker24h");
    if (!symbol || *symbol == "USDT") {
        return refusal(400, "message", "Invalid symbol");
    }
    const CoinState coin = scene.traded(*symbol);
    json::Writer writer;
    writer.beginObject().key("symbol").string(coin.symbol + "_USDT");
    writeTexts(writer, {{"open", coin.open},
                        {"low", coin.low},
                        {"high", coin.high},
                        {"close", coin.price},
                        {"quantity", kTraded},
                        {"amount", kTraded * coin.price}});
    constexpr std::chrono::milliseconds kDay = std::chrono::days{1};
    writer.key("tradeCount").integer(62498).key("startTime").integer((scene.time - kDay).count());
    writer.key("closeTime").integer(scene.time.count()).key("displayName").string(coin.symbol + "/USDT");
    writer.key("dailyChange").string(fmt::format("{:.4f}", coin.changePercent() / 100));
    writeTexts(writer, {{"bid", coin.price}, {"bidQuantity", 0.027}, {"ask", coin.price}, {"askQuantity", 0.286}});
    writer.key("ts").integer(scene.time.count()).key("markPrice").string(plain(coin.price));
    return finished(writer);
}

struct Exchange {
    std::string_view name;
    Answer (*answer)(const Scene&);
};

constexpr std::array kExchanges = {
    Exchange{"binance", binance},   Exchange{"binance_us", binance}, Exchange{"gate", gate},
    Exchange{"coinbase", coinbase}, Exchange{"kucoin", kucoin},      Exchange{"coinbase_exchange", coinbaseExchange},
    Exchange{"gemini", gemini},     Exchange{"whitebit", whitebit},  Exchange{"mexc", mexc},
    Exchange{"cex_io", cexIo},      Exchange{"poloniex", poloniex},
};

}  // namespace

std::optional<Answer> exchangeAnswer(const Scene& scene) {
    for (const auto& [name, answer] : kExchanges) {
        if (name == scene.question.service) {
            return answer(scene);
        }
    }
    return std::nullopt;
}

}  // namespace glintar::demo
