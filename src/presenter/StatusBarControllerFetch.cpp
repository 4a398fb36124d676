// StatusBarController: one fetch, from its requests to what is shown.

#include "config/Settings.h"
#include "market/CryptoService.h"
#include "platform/Console.h"
#include "platform/Machine.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "presenter/RefreshState.h"
#include "presenter/StatusBarController.h"
#include "presenter/StatusSurface.h"
#include "text/Unicode.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>

namespace glintar::presenter {

using namespace std::chrono_literals;

/// What one fetch brings. The engine's callbacks fill their own fields, each before it leaves the group; the completion
/// reads them after the group has emptied.
struct StatusBarController::FetchResult {
    std::vector<config::Coin> coins;  ///< as saved, without the phantom
    market::MarketDataMap quotes;
    std::optional<std::string> error;
    struct Fee {
        std::int64_t gasSource = 0;  ///< whose it is
        std::optional<double> price;
    };
    std::optional<Fee> fee;  ///< when one was asked for
};

void StatusBarController::performFetch(Scope scope) {
    if (isFetching_) {
        return;
    }
    const auto result = std::make_shared<FetchResult>();
    result->coins = config::loadSavedCoins(platform_);
    if (result->coins.empty()) {
        return;
    }
    isFetching_ = true;
    isFetchStale_ = isFetchDoubtful_ = false;
    lastRequestTime_ = platform_.runLoop.now();
    platform::DispatchGroup group;
    auto& service = market::CryptoService::shared(platform_);
    auto fetched = result->coins;
    if (platform_.preferences.boolean(config::kShowGasFee)) {
        result->fee.emplace(platform_.preferences.integer(config::kGasSource));
        addPhantomCoin(fetched);
        group.enter();
        service.fetchGasPrice([result, group](std::optional<double> fee) mutable {
            result->fee->price = fee;
            group.leave();
        });
    } else {
        currentGasPrice_.reset();
    }
    if (scope == Scope::OnlyGas && isAnsweredByCache(fetched)) {
        result->quotes = *cachedMarketData_;
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
    if (platform_.preferences.integer(config::kGasSource) != 0 || hasEthereum) {  // 0 alone, not all that mean Ethereum
        return;
    }
    const auto source = config::selectedSourceID(platform_.preferences);
    const bool namesBySymbol = source.contains("binance") || source.contains("gate");
    const std::string id = namesBySymbol ? "ETH" : "ethereum";
    platform_.console.debug("⛽️ [Gas] Injecting phantom coin for pricing: " + id);
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
    isFetching_ = false;
    if (isFetchStale_) {
        refreshSoon();
        return;
    }
    if (result.fee) {
        // The fee of a network that has been deselected meanwhile would be shown in the wrong unit.
        const bool isWanted = result.fee->gasSource == platform_.preferences.integer(config::kGasSource);
        currentGasPrice_ = isWanted ? result.fee->price : std::nullopt;
        if (!isWanted) {
            fetchAndDisplayPrice(Urgency::Forced, Scope::OnlyGas);
        }
    }
    if (!result.quotes.empty()) {
        cachedMarketData_ = std::move(result.quotes);
        state_.latestMarketData = *cachedMarketData_;
    }
    hasFailed_ = result.error.has_value();
    if (hasFailed_ && isFetchDoubtful_) {
        refreshSoon();
    }
    if (currentDisplayMode_ == DisplayMode::Line) {
        renderStatusItem(result.coins, cachedMarketData_.value_or(market::MarketDataMap{}), std::move(result.error));
    } else {
        updatePanel(result.coins);
    }
    checkVisibilityAfter(500ms);
    surface_.refreshCompleted();  // last: it may end the program
}

void StatusBarController::renderStatusItem(const std::vector<config::Coin>& coins, const market::MarketDataMap& quotes,
                                           std::optional<std::string> error) {
    if (error && isKeyRejection(*error) && !isApiKeyInvalid_) {
        platform_.console.debug("🚨 [API] 检测到 Key 失效 (401/403)，触发自动降级！");
        isApiKeyInvalid_ = true;
        restartTimers();
    }
    auto line = composeStatusLine(platform_.preferences, coins, quotes, currentGasPrice_, std::move(error));
    line.time = platform_.localTime.clockText(platform_.runLoop.wallNow());
    std::optional<std::string> tooltip;
    if (!line.isEmpty()) {
        tooltip = tooltipText(line.error, !quotes.empty(), isApiKeyInvalid_, line.time);
    }
    surface_.showLine(line, std::move(tooltip));
    if (timer_ && !progressTimer_) {
        onProgress();
    }
}

void StatusBarController::updatePanel(const std::vector<config::Coin>& coins) {
    const auto shown = std::min(coins.size(), kShownCoins);
    surface_.updatePanel({.coins = {coins.begin(), coins.begin() + static_cast<std::ptrdiff_t>(shown)},
                          .quotes = cachedMarketData_.value_or(market::MarketDataMap{}),
                          .gasPrice = currentGasPrice_,
                          .nextFetchTime = state_.nextFetchTime});
}

void StatusBarController::redisplayFromCache() {
    if (!cachedMarketData_) {
        return;
    }
    const auto coins = config::loadSavedCoins(platform_);
    if (currentDisplayMode_ == DisplayMode::Line) {
        renderStatusItem(coins, *cachedMarketData_, std::nullopt);
    } else {
        updatePanel(coins);
    }
}

}  // namespace glintar::presenter
