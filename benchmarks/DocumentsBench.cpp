// Reading documents, beside a bare parse of the same bytes by the same library with the same flags.

#include "benchmarks/Benches.h"
#include "benchmarks/Measure.h"
#include "config/AppConfig.h"
#include "config/Coin.h"
#include "config/CoinCatalogue.h"
#include "json/GuardedReader.h"
#include "market/Extraction.h"
#include "platform/posix/PosixFiles.h"
#include "platform/virtual/VirtualStores.h"

#include <fmt/format.h>
#include <rapidjson/document.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <random>

namespace glintar::bench {

namespace {

constexpr int kCoins = 250;
constexpr int kPoints = 168;

/// An answer with every member that the real one has, and numbers as long as its.
std::string batchAnswer() {
    std::mt19937_64 random(20261124);  // NOLINT(cert-msc51-cpp): the same answer in each run
    std::uniform_real_distribution<double> price(1, 100'000);
    std::string body = "[";
    for (int coin = 0; coin < kCoins; ++coin) {
        const double p = price(random);
        body += fmt::format(
            R"({}{{"id":"coin-{}","symbol":"c{}","name":"Coin {}","image":"https://coin-images.example/coins/images/{}/)"
            R"(large/coin.png?1696501400","current_price":{},"market_cap":{:.0f},"market_cap_rank":{},)"
            R"("fully_diluted_valuation":{:.0f},"total_volume":{:.0f},"high_24h":{},"low_24h":{},"price_change_24h":{},)"
            R"("price_change_percentage_24h":{:.5f},"market_cap_change_24h":{},"market_cap_change_percentage_24h":{:.5f},)"
            R"("circulating_supply":{},"total_supply":{},"max_supply":21000000.0,"ath":{},"ath_change_percentage":-46.6,)"
            R"("ath_date":"2025-10-06T18:57:42.558Z","atl":67.81,"atl_change_percentage":99149.48,"atl_date":)"
            R"("2013-07-06T00:00:00.000Z","roi":null,"last_updated":"2026-03-08T10:23:27.712Z","sparkline_in_7d":{{"price":[)",
            coin ? "," : "", coin, coin, coin, coin, p, p * 2e7, coin + 1, p * 2e7, p * 1e6, p * 1.02, p * 0.98, p / 99,
            p / 7e4, p * 1e5, p / 6e4, p * 19, p * 20, p * 2);
        for (int point = 0; point < kPoints; ++point) {
            body += fmt::format("{}{}", point ? "," : "", p * (1 + point / 9973.0));
        }
        body += R"(]},"price_change_percentage_24h_in_currency":1.5})";
    }
    return body + "]";
}

std::string wholeFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Takes every event and does nothing.
struct NoHandler : rapidjson::BaseReaderHandler<rapidjson::UTF8<>, NoHandler> {
    bool RawNumber(const char*, rapidjson::SizeType, bool) { return true; }
};

void bareEvents(std::string text) {
    rapidjson::InsituStringStream stream(text.data());
    rapidjson::Reader reader;
    NoHandler handler;
    if (reader.Parse<json::kReadFlags>(stream, handler).IsError()) {
        std::abort();
    }
}

void bareDocument(std::string text) {
    rapidjson::Document document;
    rapidjson::InsituStringStream stream(text.data());
    document.ParseStream<json::kReadFlags, rapidjson::UTF8<>>(stream);
    if (document.HasParseError()) {
        std::abort();
    }
}

}  // namespace

void benchDocuments(const std::string& resources) {
    const auto config = config::decodeAppConfig(wholeFile(resources + "/api_endpoints.json"));
    const auto& source = *config->source("coingecko");
    const auto body = batchAnswer();
    platform::VirtualConsole console;
    const auto readQuotes = [&] {
        if (market::parseBatchResponse(body, source, {}, console).size() != kCoins) {
            std::abort();
        }
    };
    const auto quotes = compare(60, readQuotes, [&] { bareDocument(body); });
    printRow({fmt::format("quotes from 250 coins, {} kB", body.size() / 1000), quotes.ours * 1e6, quotes.floor * 1e6,
              1.3, "us", "bare parse"});

    const auto catalogueText = wholeFile(resources + "/coingecko_coins_list.json");
    const auto catalogue = compare(
        60,
        [&] {
            if (!config::CoinCatalogue::decode(catalogueText)) {
                std::abort();
            }
        },
        [&] { bareEvents(catalogueText); });
    printRow({"loading the catalogue", catalogue.ours * 1e6, catalogue.floor * 1e6, 1.6, "us", "bare event parse"});
    const auto memory = memoryOf([&]() -> std::shared_ptr<void> {
        auto text = platform::PosixFiles().read(resources + "/coingecko_coins_list.json");
        return std::make_shared<config::CoinCatalogue>(*config::CoinCatalogue::decode(*std::move(text)));
    });
    printRow({"memory kept by the catalogue", memory.kept / 1e6, 0, 1, "MB", ""});
    printRow({"memory at the peak of its loading", memory.peak / 1e6, 0, 2, "MB", ""});
}

}  // namespace glintar::bench
