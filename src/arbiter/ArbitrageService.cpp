#include "arbiter/ArbitrageService.h"

#include "arbiter/ArbitrageAnswers.h"
#include "market/CryptoService.h"
#include "platform/Console.h"
#include "platform/HttpClient.h"
#include "platform/Platform.h"
#include "platform/Registry.h"
#include "text/Address.h"
#include "text/Unicode.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace glintar::arbiter {

namespace {

/// Of one answer. Many arrive at once, and the largest known list of all of an exchange's pairs takes half of it.
constexpr std::size_t kMostBytes = std::size_t{4} << 20;

}  // namespace

ArbitrageService& ArbitrageService::shared(platform::Platform& platform) {
    return platform.registry.shared<ArbitrageService>([&] { return std::make_shared<ArbitrageService>(platform); });
}

ArbitrageService::Rows ArbitrageService::fetchArbitrageData(const std::vector<config::Coin>& coins,
                                                            const std::optional<market::MarketDataMap>& cachedData,
                                                            std::string_view mainSourceID,
                                                            const platform::DispatchGroup& requests) {
    Rows rows;
    for (const auto& coin : coins) {
        rows.push_back(std::make_shared<CoinArbitrageData>(platform_, coin));
    }
    const auto config = market::CryptoService::shared(platform_).loadedConfig();
    if (!config) {
        platform_.console.log({"❌ [Arbiter] 无法读取源配置"});
        return rows;
    }
    if (coins.empty()) {
        return rows;  // asked for no coin, a service may answer with all that it knows
    }
    const bool hasCache = cachedData && !cachedData->empty();
    for (const auto& source : config->sources) {
        if (source.id == mainSourceID && hasCache) {
            addCached(source, *cachedData, rows);
            continue;
        }
        if (source.id == mainSourceID) {
            platform_.console.log(
                {fmt::format("⚠️ [Arbiter] {} 是主源但无缓存，转为主动查询", text::oneLine(source.name))});
        }
        const SourcePtr asked(config, &source);
        if (source.supports_batch) {
            requestBatch(asked, coins, rows, requests);
        } else {
            requestEach(asked, rows, requests);
        }
    }
    return rows;
}

void ArbitrageService::addCached(const config::SourceConfig& source, const market::MarketDataMap& cached,
                                 const Rows& rows) {
    platform_.console.log({fmt::format("♻️ [Arbiter] {} 命中缓存，直接复用", text::oneLine(source.name))});
    for (const auto& row : rows) {
        auto quote = cached.find(row->coin.apiId);
        quote = quote == cached.end() ? cached.find(row->coin.displayName) : quote;
        if (quote != cached.end() && !quote->second.arrival.isOld) {
            row->addPrice(priceOf(source, quote->second.price, platform_));
        }
    }
}

void ArbitrageService::requestBatch(const SourcePtr& source, const std::vector<config::Coin>& coins, const Rows& rows,
                                    const platform::DispatchGroup& requests) {
    std::string keys;
    for (const auto& coin : coins) {
        if (&coin != &coins.front()) {
            keys += source->batch_separator.value_or(",");
        }
        keys += source->batch_param_type == "symbol" ? coin.displayName : coin.apiId;
    }
    const auto filled = text::replaceAll(text::replaceAll(source->url_template, "{ID}", keys), "{SYMBOL}", keys);
    const auto address = text::webAddress(filled);
    if (!address) {
        return;
    }
    platform_.console.log(
        {fmt::format("🚀 [Network Arbiter] 通用批量请求 {}: {}", text::oneLine(source->name), text::oneLine(filled))});
    send(*address, HeldRows(rows.begin(), rows.end()), requests,
         [source, &platform = platform_](std::string body, const Rows& held) {
             parseBatchResult(std::move(body), *source, held, platform);
         });
}

void ArbitrageService::requestEach(const SourcePtr& source, const Rows& rows, const platform::DispatchGroup& requests) {
    for (const auto& row : rows) {
        const auto symbol = text::upper(row->coin.displayName);
        const auto address = text::webAddress(
            text::replaceAll(text::replaceAll(source->url_template, "{ID}", row->coin.apiId), "{SYMBOL}", symbol));
        if (!address) {
            continue;
        }
        platform_.console.log({fmt::format("🚀 [Network Arbiter] 通用单次请求 {} -> {}", text::oneLine(source->name),
                                           text::oneLine(symbol))});
        send(*address, {row}, requests, [source, &platform = platform_](std::string body, const Rows& held) {
            parseSingleResult(std::move(body), *source, *held.front(), platform);
        });
    }
}

template <class Read>
void ArbitrageService::send(const std::string& address, HeldRows rows, const platform::DispatchGroup& requests,
                            Read read) {
    requests.enter();
    platform_.http.send(
        {.url = address, .maxBodyBytes = kMostBytes},
        [rows = std::move(rows), requests, read = std::move(read)](platform::HttpResult result) mutable {
            Rows held;
            std::ranges::transform(rows, std::back_inserter(held), [](const auto& row) { return row.lock(); });
            const bool isWanted = std::ranges::any_of(held, [](const auto& row) { return row != nullptr; });
            if (isWanted && result && !result->body.empty()) {
                read(std::move(result->body), held);
            }
            requests.leave();
        });
}

}  // namespace glintar::arbiter
