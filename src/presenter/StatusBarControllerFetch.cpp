// StatusBarController: one fetch, from its requests to what is shown.

#include "config/Settings.h"
#include "keystore/KeychainHelper.h"
#include "market/CryptoService.h"
#include "platform/Console.h"
#include "platform/Machine.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "presenter/RefreshState.h"
#include "presenter/SharedRefresh.h"
#include "presenter/StatusBarController.h"
#include "presenter/StatusSurface.h"
#include "text/Unicode.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>

namespace glintar::presenter {

using namespace std::chrono_literals;

namespace {

// The phantom coin's identifiers.
constexpr const char* kEthereumId = "ethereum";
constexpr const char* kEthereumSymbol = "ETH";

/// Exchanges whose coins are known by their symbols. The source configuration does not tell; their names do.
bool namesCoinsBySymbol(std::string_view source) {
    return source.contains("binance") || source.contains("gate");
}

}  // namespace

/// What one fetch brings. The engine's callbacks fill their own fields, each before it leaves the group; the completion
/// reads them after the group has emptied.
struct StatusBarController::FetchResult {
    Wish wish;
    std::vector<config::Coin> coins;  ///< as saved, without the phantom
    bool askedForQuotes = true;
    market::MarketDataMap quotes;
    std::optional<std::string> error;
    struct Fee {
        std::int64_t gasSource = 0;  ///< whose it is
        std::optional<double> price;
    };
    std::optional<Fee> fee;  ///< when one was asked for
};

Wish StatusBarController::wish() {
    Wish wish{.source = config::Settings::load(platform_.preferences).selectedSourceID};
    for (const auto& coin : config::loadSavedCoins(platform_)) {
        wish.coins.push_back(coin.apiId);
    }
    // A source that names no header has no use for a key, and asking a key ring costs.
    const auto& config = market::CryptoService::shared(platform_).loadedConfig();
    if (const auto* source = config ? config->source(wish.source) : nullptr; source && source->header) {
        wish.key = keystore::KeychainHelper(platform_).apiKeyOf(wish.source);
    }
    return wish;
}

void StatusBarController::performFetch(Scope scope) {
    if (isPaused_) {
        cycle_.nextFetchDue = platform_.runLoop.bootNow();
        return;
    }
    if (cycle_.isFetching) {
        return;
    }
    const auto result = std::make_shared<FetchResult>();
    result->coins = config::loadSavedCoins(platform_);
    if (result->coins.empty()) {
        return;
    }
    result->wish = wish();
    if (shared_ && isLeftToOthers(result->wish)) {
        return;
    }
    cycle_.isFetching = true;
    cycle_.isStale = cycle_.isDoubtful = false;
    cycle_.lastRequestTime = platform_.runLoop.now();
    platform::DispatchGroup group;
    auto& service = market::CryptoService::shared(platform_);
    auto fetched = result->coins;
    const auto settings = config::Settings::load(platform_.preferences);
    if (settings.showGasFee) {
        result->fee.emplace(settings.gasSource);
        addPhantomCoin(fetched);
        if (fetched.size() > result->coins.size()) {
            platform_.console.debug("⛽️ [Gas] Injecting phantom coin for pricing: " + fetched.back().apiId);
        }
        group.enter();
        service.fetchGasPrice([result, group](std::optional<double> fee) mutable {
            result->fee->price = fee;
            group.leave();
        });
    } else {
        currentGasPrice_.reset();
    }
    if (scope == Scope::OnlyGas && isAnsweredByCache(fetched)) {
        result->askedForQuotes = false;
    } else {
        group.enter();
        service.fetchMarketData(
            fetched, [result, group](market::MarketDataMap quotes, std::optional<std::string> error) mutable {
                result->quotes = std::move(quotes);
                result->error = std::move(error);
                group.leave();
            });
    }
    group.notify(platform_.runLoop, lifetime_.guard([this, result] { handleFetchCompletion(*result); }));
}

/// The dollar cost of a transfer needs the Ethereum price: when none of the coins is Ethereum, it is fetched beside
/// them, and never shown.
void StatusBarController::addPhantomCoin(std::vector<config::Coin>& coins) {
    static constexpr std::array<std::string_view, 4> kEthereumIds{"ethereum", "eth", "ethusdt", "eth_usdt"};
    const bool hasEthereum = std::ranges::any_of(coins, [](const config::Coin& coin) {
        return std::ranges::find(kEthereumIds, text::lower(coin.apiId)) != kEthereumIds.end();
    });
    const auto settings = config::Settings::load(platform_.preferences);
    if (settings.gasSource != 0 || hasEthereum) {  // 0 alone, not all that mean Ethereum
        return;
    }
    const std::string id = namesCoinsBySymbol(settings.selectedSourceID) ? kEthereumSymbol : kEthereumId;
    coins.push_back(config::makeCoin(platform_.entropy, "ETH", id, std::nullopt));
}

bool StatusBarController::isAnsweredByCache(const std::vector<config::Coin>& coins) {
    if (!cachedMarketData_ || cachedMarketData_->empty()) {
        return false;
    }
    std::vector<std::string> missing;
    for (const auto& coin : coins) {
        if (!cachedMarketData_->contains(coin.apiId)) {
            missing.push_back(text::oneLine(coin.apiId));
        }
    }
    if (missing.empty()) {
        platform_.console.debug("✅ [Fetch] Cache Hit (All coins found). Skipping network request.");
        return true;
    }
    platform_.console.debug(fmt::format("⚠️ [Fetch] Cache Miss. Missing: {}. Forcing Network.", missing));
    return false;
}

void StatusBarController::handleFetchCompletion(FetchResult& result) {
    const auto now = wish();
    const auto settings = config::Settings::load(platform_.preferences);
    const auto after = afterFetch(
        cycle_, {.askedForQuotes = result.askedForQuotes,
                 .hasError = result.error.has_value(),
                 .isSameSource = result.wish.source == now.source,
                 .isSameWish = result.wish == now,
                 .isFeeRight = !settings.showGasFee || (result.fee && result.fee->gasSource == settings.gasSource)});
    if (after.isShown) {
        forgetWhatIsNotWanted();
        takeFee(result);
        if (after.takesQuotes) {
            if (result.wish.key == now.key) {
                noticeKeyRejection(result);
            }
            takeQuotes(result);
        }
        if (after.next == AfterFetch::Next::Everything) {
            forgetWhatIsNotWanted();
        }
    }
    switch (after.next) {
        case AfterFetch::Next::Nothing:
            break;
        case AfterFetch::Next::Everything:
            fetchAndDisplayPrice(Urgency::Forced, Scope::Everything);
            break;
        case AfterFetch::Next::OnlyGas:
            fetchAndDisplayPrice(Urgency::Forced, Scope::OnlyGas);
            break;
        case AfterFetch::Next::Early:
            refreshSoon();
            break;
    }
    if (!after.isShown) {
        return;
    }
    if (result.wish == now && !publish(now)) {
        return;
    }
    showAll();
    checkVisibilityAfter(500ms);
    surface_.refreshCompleted();  // last: it may end the program
}

/// A fee that did not come stays, as an old one. That of a network that has been deselected meanwhile would be shown in
/// the wrong unit.
void StatusBarController::takeFee(const FetchResult& result) {
    if (!result.fee || result.fee->gasSource != config::Settings::load(platform_.preferences).gasSource) {
        return;
    }
    if (result.fee->price) {
        currentGasPrice_ = {*result.fee->price, {platform_.runLoop.wallNow(), platform_.runLoop.now()}};
    } else if (currentGasPrice_) {
        currentGasPrice_->arrival.isOld = true;
    }
}

/// Quotes that did not come stay, as old ones, while their coins are watched.
void StatusBarController::takeQuotes(FetchResult& result) {
    outcome_ = Outcome{.error = std::move(result.error),
                       .hasPrices = std::ranges::any_of(
                           result.coins, [&](const auto& coin) { return result.quotes.contains(coin.apiId); }),
                       .time = platform_.localTime.clockText(platform_.runLoop.wallNow()),
                       .asked = result.wish.coins};
    outcomeText_ = tooltipText(outcome_->error, outcome_->hasPrices, isApiKeyInvalid_, outcome_->time);
    for (auto& [id, quote] : result.quotes) {
        quote.arrival = {platform_.runLoop.wallNow(), platform_.runLoop.now()};
    }
    if (cachedMarketData_) {
        for (auto& [id, quote] : *cachedMarketData_) {
            quote.arrival.isOld = true;
        }
        result.quotes.merge(*cachedMarketData_);
    }
    if (!result.quotes.empty()) {
        cachedMarketData_ = std::move(result.quotes);
        state_.latestMarketData = *cachedMarketData_;
    }
}

/// A service that was sent no key did not refuse one.
void StatusBarController::noticeKeyRejection(const FetchResult& result) {
    const bool hadKey = keystore::KeychainHelper::canBeSent(result.wish.key);
    if (hadKey && result.error && isKeyRejection(*result.error) && !isApiKeyInvalid_) {
        platform_.console.debug("🚨 [API] 检测到 Key 失效 (401/403)，触发自动降级！");
        isApiKeyInvalid_ = true;
        restartTimers();
    }
}

void StatusBarController::forgetAll() {
    outcome_.reset();
    cachedMarketData_.reset();
    state_.latestMarketData.clear();
    currentGasPrice_.reset();
}

/// Quotes of another source go, and those of coins that are not watched any more.
void StatusBarController::forgetWhatIsNotWanted() {
    const auto settings = config::Settings::load(platform_.preferences);
    if (settings.selectedSourceID != cachedSource_) {
        cachedSource_ = settings.selectedSourceID;
        forgetAll();
    }
    const auto coins = config::loadSavedCoins(platform_);
    const auto isWatched = [&](std::string_view id) {
        return std::ranges::find(coins, id, &config::Coin::apiId) != coins.end();
    };
    if (outcome_) {
        std::erase_if(outcome_->asked, [&](const auto& id) { return !isWatched(id); });
        if (outcome_->asked.empty()) {  // nobody has asked for these coins yet
            forgetAll();
        }
    }
    if (cachedMarketData_) {
        const bool hasPhantom = settings.showGasFee && settings.gasSource == 0;
        std::erase_if(*cachedMarketData_, [&](const auto& entry) {
            const bool isPhantom = hasPhantom && (entry.first == kEthereumId || entry.first == kEthereumSymbol);
            return !isPhantom && !isWatched(entry.first);
        });
        state_.latestMarketData = *cachedMarketData_;
    }
}

}  // namespace glintar::presenter
