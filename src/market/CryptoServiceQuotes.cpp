// CryptoService: building the requests for quotes, and joining their answers.

#include "config/Settings.h"
#include "keystore/KeychainHelper.h"
#include "market/CryptoService.h"
#include "market/Extraction.h"
#include "platform/Console.h"
#include "platform/DispatchGroup.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "text/Address.h"
#include "text/Unicode.h"

#include <fmt/format.h>

#include <mutex>

namespace glintar::market {

namespace {

constexpr int kRetries = 1;

std::string fillTemplate(std::string_view addressTemplate, std::string_view symbol, std::string_view id) {
    return text::replaceAll(text::replaceAll(addressTemplate, "{SYMBOL}", symbol), "{ID}", id);
}

/// What the requests of one fetch share; answers arrive on several threads.
struct JoinedQuotes {
    std::mutex mutex;
    MarketDataMap quotes;
    std::optional<std::string> error;

    void fail(std::string text) {
        const std::lock_guard lock(mutex);
        error = std::move(text);
    }

    void add(const std::string& apiId, UnifiedMarketData quote) {
        const std::lock_guard lock(mutex);
        quotes.insert_or_assign(apiId, std::move(quote));
    }
};

/// Leaves the group however the answer's reading ends, so that a fetch always completes.
struct Leaving {
    platform::DispatchGroup& group;
    ~Leaving() { group.leave(); }
};

}  // namespace

void CryptoService::fetchMarketData(const std::vector<config::Coin>& coins, MarketCompletion completion) {
    const std::string selected = config::Settings::load(platform_.preferences).selectedSourceID;
    if (const auto remaining = sourceCoolDowns_.remaining(selected)) {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(*remaining).count();
        completion({}, fmt::format("Cooling down for error 429 ({}s)", seconds));
        return;
    }
    const auto config = loadedConfig_;
    const auto* found = config ? config->source(selected) : nullptr;
    if (!found) {
        completion({}, "Config Missing");
        return;
    }
    const SourcePtr source(config, found);
    // A source that names no header has no use for a key, and asking a key ring costs.
    const auto apiKey = source->header ? keystore::KeychainHelper(platform_).apiKeyOf(source->id) : std::string();
    if (source->supports_batch) {
        fetchBatch(coins, source, apiKey, std::move(completion));
    } else {
        fetchEachCoin(coins, source, apiKey, std::move(completion));
    }
}

void CryptoService::fetchEachCoin(const std::vector<config::Coin>& coins, const SourcePtr& source,
                                  const std::string& apiKey, MarketCompletion completion) {
    platform::DispatchGroup group;
    const auto joined = std::make_shared<JoinedQuotes>();
    const bool isLogged = source->id.contains("gate") || source->id.contains("binance");
    for (const auto& coin : coins) {
        const std::string symbol = text::upper(text::trimmed(coin.displayName));
        const std::string filled = fillTemplate(source->url_template, symbol, coin.apiId);
        if (isLogged) {
            platform_.console.debug(fmt::format("🔗 {} | 币: {} | Symbol: {}", text::oneLine(source->id),
                                                text::oneLine(coin.apiId), text::oneLine(symbol)));
            platform_.console.debug("   👉 生成 URL: " + text::oneLine(filled));
        }
        auto address = text::webAddress(filled);
        if (!address) {
            continue;
        }
        group.enter();
        performRequest(*std::move(address), source, apiKey, kRetries,
                       [group, joined, source, apiId = coin.apiId, &console = platform_.console](
                           std::optional<std::string> body, std::optional<std::string> error) mutable {
                           const Leaving leaving{group};
                           if (error) {
                               joined->fail(*std::move(error));
                           } else if (body) {
                               if (auto quote = parseSingleResponse(*std::move(body), *source, apiId, console)) {
                                   joined->add(apiId, *std::move(quote));
                               }
                           }
                       });
    }
    group.notify(platform_.workQueue, [joined, completion = std::move(completion)]() mutable {
        // Nothing is under way any more, so nobody else holds the lock.
        completion(joined->quotes, joined->quotes.empty() ? joined->error : std::nullopt);
    });
}

void CryptoService::fetchBatch(const std::vector<config::Coin>& coins, const SourcePtr& source,
                               const std::string& apiKey, MarketCompletion completion) {
    std::string list;
    for (const auto& coin : coins) {
        if (&coin != &coins.front()) {
            list += source->batch_separator.value_or(",");
        }
        list += source->batch_param_type == "symbol" ? coin.displayName : coin.apiId;
    }
    auto address =
        text::webAddress(text::replaceAll(text::replaceAll(source->url_template, "{ID}", list), "{SYMBOL}", list));
    if (!address) {
        completion({}, "Bad URL");
        return;
    }
    performRequest(*std::move(address), source, apiKey, kRetries,
                   [source, coins, &console = platform_.console, completion = std::move(completion)](
                       std::optional<std::string> body, std::optional<std::string> error) mutable {
                       MarketDataMap quotes;
                       if (body) {
                           try {
                               quotes = parseBatchResponse(*std::move(body), *source, coins, console);
                           } catch (const std::exception&) {  // no memory for it
                               error = "Unknown Error";
                           }
                       } else if (!error) {
                           error = "Unknown Error";
                       }
                       completion(std::move(quotes), std::move(error));
                   });
}

}  // namespace glintar::market
